// Office's type libraries on a machine without Office.
#include "host/HostFixture.h"

#include <AddInDesignerObjects.h>
#include <Office.h>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <oleauto.h>

namespace
{

using namespace orva::test;
using Microsoft::WRL::ComPtr;

constexpr wchar_t kDesigner[] = L"Software\\Classes\\TypeLib\\{AC0714F2-3D04-11D1-AE7D-00A0C90F26F4}";
constexpr wchar_t kOffice[] = L"Software\\Classes\\TypeLib\\{2DF8D04C-5BFA-101B-BDE5-00AA0044DE52}";

class TypeLibrariesTest : public HostFixture
{
protected:
    TypeLibrariesTest()
    {
        for (CRegistryTreeGuard* const library : {&m_designer, &m_office, &m_userDesigner, &m_userOffice})
        {
            library->Remove();
        }
    }

    void RunHost()
    {
        StartHost({L"--quit-after-startup"});
        ASSERT_EQ(WaitForHost(), 0);
    }

    CRegistryTreeGuard m_designer{HKEY_LOCAL_MACHINE, kDesigner};
    CRegistryTreeGuard m_office{HKEY_LOCAL_MACHINE, kOffice};
    CRegistryTreeGuard m_userDesigner{HKEY_CURRENT_USER, kDesigner};
    CRegistryTreeGuard m_userOffice{HKEY_CURRENT_USER, kOffice};
};

// The dispatch id of a member of an interface in a library; DISPID_UNKNOWN if there is none.
MEMBERID FindMember(const GUID& library, WORD major, WORD minor, const IID& id, const wchar_t* name)
{
    ComPtr<ITypeLib> loaded;
    ComPtr<ITypeInfo> information;
    MEMBERID member = DISPID_UNKNOWN;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    if (SUCCEEDED(LoadRegTypeLib(library, major, minor, 0, &loaded)) &&
        SUCCEEDED(loaded->GetTypeInfoOfGuid(id, &information)))
    {
        information->GetIDsOfNames(names, 1, &member);
    }
    return member;
}

TEST_F(TypeLibrariesTest, AreRegisteredAtTheFirstStartWithTheirMembersAndLeftAloneAtTheNext)
{
    RunHost();
    EXPECT_TRUE(HasTrace("Outlook: type library AddInDesignerObjects registered with 0x00000000"))
        << TraceText();
    EXPECT_TRUE(HasTrace("Outlook: type library Office registered with 0x00000000")) << TraceText();

    const wchar_t* lifeCycle[] = {L"OnConnection", L"OnDisconnection", L"OnAddInsUpdate",
                                  L"OnStartupComplete", L"OnBeginShutdown"};
    for (MEMBERID id = 1; id <= 5; ++id)
    {
        EXPECT_EQ(FindMember(LIBID_AddInDesignerObjects, 1, 0, IID__IDTExtensibility2, lifeCycle[id - 1]),
                  id);
    }
    EXPECT_EQ(FindMember(LIBID_Office, 2, 4, IID_IRibbonExtensibility, L"GetCustomUI"), 1);
    EXPECT_EQ(FindMember(LIBID_Office, 2, 4, IID_IRibbonControl, L"Id"), 1);
    EXPECT_EQ(FindMember(LIBID_Office, 2, 4, IID_IRibbonControl, L"Context"), 2);
    EXPECT_EQ(FindMember(LIBID_Office, 2, 4, IID_IRibbonControl, L"Tag"), 3);
    EXPECT_EQ(FindMember(LIBID_Office, 2, 4, DIID__CommandBarButtonEvents, L"Click"), 1);

    // Whatever stands there, it may be a real Office's.
    CRegistryValue help(HKEY_LOCAL_MACHINE, std::wstring(kOffice) + L"\\2.4\\HELPDIR", L"");
    help.SetString(L"C:\\Office");
    const std::string before = ExportRegistryKey(HKEY_LOCAL_MACHINE, kOffice);
    RunHost();
    EXPECT_TRUE(HasTrace("Outlook: type library AddInDesignerObjects is registered")) << TraceText();
    EXPECT_TRUE(HasTrace("Outlook: type library Office is registered")) << TraceText();
    EXPECT_EQ(ExportRegistryKey(HKEY_LOCAL_MACHINE, kOffice), before);
}

} // namespace
