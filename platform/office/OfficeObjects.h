// Office and Outlook objects that are only ever called by name: their interface ids as empty types over
// IDispatch.
//
// Query for one of these ids, then look members up with GetIDsOfNames and call Invoke. The originals are dual
// interfaces whose slots differ from one Office version to the next; by name, one build serves them all. So
// no slot behind IDispatch is declared here, and no object may be called through any.
#pragma once

#include <oaidl.h>

namespace Office
{
MIDL_INTERFACE("000C0302-0000-0000-C000-000000000046") CommandBars : public IDispatch{};
MIDL_INTERFACE("000C0304-0000-0000-C000-000000000046") CommandBar : public IDispatch{};
MIDL_INTERFACE("000C0306-0000-0000-C000-000000000046") CommandBarControls : public IDispatch{};
MIDL_INTERFACE("000C0308-0000-0000-C000-000000000046") CommandBarControl : public IDispatch{};
MIDL_INTERFACE("000C030A-0000-0000-C000-000000000046") CommandBarPopup : public IDispatch{};
MIDL_INTERFACE("000C030E-0000-0000-C000-000000000046") _CommandBarButton : public IDispatch{};
} // namespace Office

namespace Outlook
{
MIDL_INTERFACE("00063001-0000-0000-C000-000000000046") _Application : public IDispatch{};
MIDL_INTERFACE("00063003-0000-0000-C000-000000000046") _Explorer : public IDispatch{};
} // namespace Outlook

// mingw-w64 has no __declspec(uuid): __uuidof finds an id only where it was declared so.
#ifdef __CRT_UUID_DECL
__CRT_UUID_DECL(Office::CommandBars, 0x000C0302, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
__CRT_UUID_DECL(Office::CommandBar, 0x000C0304, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
__CRT_UUID_DECL(Office::CommandBarControls, 0x000C0306, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
__CRT_UUID_DECL(Office::CommandBarControl, 0x000C0308, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
__CRT_UUID_DECL(Office::CommandBarPopup, 0x000C030A, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
__CRT_UUID_DECL(Office::_CommandBarButton, 0x000C030E, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
__CRT_UUID_DECL(Outlook::_Application, 0x00063001, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
__CRT_UUID_DECL(Outlook::_Explorer, 0x00063003, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46)
#endif
