// The controls of modal dialogs: bound to members, a link, rich text.
#include "MfcResources.h"
#include "MfcTestDialog.h"
#include "harness/DebugOutput.h"

#include <afxcmn.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace
{

using namespace orva::test;

using MfcDialogControlsTest = CMfcDialogTest;

// Binds controls of the plain dialog; `m_missing` to an id that it has not.
class CBoundDialog : public CTestDialog
{
public:
    explicit CBoundDialog(int missing = 0) : CTestDialog(IDD_PLAIN), m_missing(missing) {}

    CStatic m_text;
    CProgressCtrl m_bar;
    CStatic m_other;

protected:
    void DoDataExchange(CDataExchange* exchange) override
    {
        CTestDialog::DoDataExchange(exchange);
        DDX_Control(exchange, IDC_TEXT, m_text);
        DDX_Control(exchange, IDC_BAR, m_bar);
        if (m_missing)
        {
            DDX_Control(exchange, m_missing, m_other);
        }
    }

private:
    const int m_missing;
};

TEST_F(MfcDialogControlsTest, ControlsAreBoundToTheirMembers)
{
    CBoundDialog dialog;
    dialog.m_onInit = [&](CTestDialog& self) {
        EXPECT_EQ(&dialog.m_text, self.GetDlgItem(IDC_TEXT));
        EXPECT_EQ(L"Template text", ChildText(self.m_hWnd, IDC_TEXT));
        dialog.m_text.SetWindowText(L"New text");
        dialog.m_bar.SetRange(0, 100);
        EXPECT_EQ(0, dialog.m_bar.SendMessage(PBM_GETRANGE, TRUE));
        EXPECT_EQ(100, dialog.m_bar.SendMessage(PBM_GETRANGE, FALSE));
        EXPECT_EQ(0, dialog.m_bar.SetPos(30));
        EXPECT_EQ(30, dialog.m_bar.SetPos(70));
        EXPECT_EQ(70, dialog.m_bar.SendMessage(PBM_GETPOS));
    };
    RunWith(dialog, L"Plain", [](HWND window) {
        EXPECT_EQ(L"New text", ChildText(window, IDC_TEXT));
        Click(window, IDOK);
    });
    EXPECT_EQ(nullptr, dialog.m_text.m_hWnd);
    EXPECT_EQ(nullptr, dialog.m_bar.m_hWnd);
}

TEST_F(MfcDialogControlsTest, MissingControlEndsItWithMinusOne)
{
    CBoundDialog dialog(IDC_LINK);
    const CDebugOutput output;
    EXPECT_EQ(-1, dialog.DoModal());
    EXPECT_THAT(output.Lines(),
                testing::Contains(testing::StartsWith("CWnd::UpdateData: CInvalidArgException")));
}

TEST_F(MfcDialogControlsTest, LinkControlIsThereAndItsClickReachesTheMap)
{
    class CLinkDialog : public CTestDialog
    {
    public:
        CLinkDialog() : CTestDialog(IDD_LINK) {}
        std::wstring m_url;

    protected:
        BOOL OnNotify(WPARAM wParam, LPARAM lParam, LRESULT* result) override
        {
            const auto* link = reinterpret_cast<const NMLINK*>(lParam);
            if (link->hdr.code == UINT(NM_CLICK))
            {
                m_url = link->item.szUrl;
            }
            return CTestDialog::OnNotify(wParam, lParam, result);
        }
    } dialog;
    RunWith(dialog, L"Link", [](HWND window) {
        const HWND link = ChildById(window, IDC_LINK);
        EXPECT_EQ(L"SysLink", WindowClassName(link));
        SendMessageW(link, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
        SendMessageW(link, WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
        Click(window, IDCANCEL);
    });
    EXPECT_EQ(L"http://example.invalid/", dialog.m_url);
}

TEST_F(MfcDialogControlsTest, RichEditControlIsThereOnceItsLibraryIsLoadedAndWrapsAtItsWidth)
{
    EXPECT_TRUE(AfxInitRichEdit2());
    EXPECT_TRUE(AfxInitRichEdit2());
    CTestDialog dialog(IDD_RICH_EDIT);
    CRichEditCtrl rich;
    dialog.m_onInit = [&](CTestDialog& self) {
        EXPECT_TRUE(rich.SubclassWindow(GetDlgItem(self.m_hWnd, IDC_RICH)));
        rich.SendMessage(EM_SETTARGETDEVICE);
        std::wstring text;
        for (int i = 0; i < 100; ++i)
        {
            text += L"word ";
        }
        rich.SetWindowText(text.c_str());
        EXPECT_GT(rich.SendMessage(EM_GETLINECOUNT), 5);
    };
    RunWith(dialog, L"Rich edit", [](HWND window) { Click(window, IDCANCEL); });
}

} // namespace
