// COM classes: object map, class factory, reference counting, interface map, IDispatch and event sinks.
//
// Left out: connection points of our own, enumerators, error information, IPersist..., categories, tear-off
// and cached tear-off interfaces, CComObjectStack and ...Global, locked and licensed class factories,
// IDispEventImpl. Otherwise than the original:
// - the original's limits of eight sink parameters and its order of layout are kept, but an event whose
// arguments
//   differ in number or type from the sink's _ATL_FUNC_INFO is refused (DISP_E_BADPARAMCOUNT,
//   DISP_E_TYPEMISMATCH) instead of being called with them;
// - IDispatchImpl keeps no cache of names of its own; ITypeInfo answers each time;
// - COM_INTERFACE_ENTRY(x) needs an interface whose id g++ knows (__CRT_UUID_DECL), else use
// COM_INTERFACE_ENTRY_IID.
#pragma once

#include "platform/atl/AtlClassFactory.h"
#include "platform/atl/AtlComObject.h"
#include "platform/atl/AtlDispEvent.h"
#include "platform/atl/AtlDispatch.h"

#ifndef _ATL_NO_AUTOMATIC_NAMESPACE
using namespace ATL;
#endif
