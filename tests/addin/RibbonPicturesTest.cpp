// The ribbon's pictures as Office asks for them: by id, with a control, through Invoke. How a picture is made
// is tested with the localized resources.
#include "addin/AddInFixture.h"

#include <olectl.h>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::Pair;

constexpr DISPID kGetImageLogo = 42001;
constexpr DISPID kGetImageIcon = 42002;

class RibbonPicturesTest : public CAddInTest
{
protected:
    RibbonPicturesTest()
    {
        EXPECT_EQ(Connect(kOutlook2010), S_OK);
        NewLogLines();
    }

    // Calls a getImage callback as Office does.
    HRESULT Ask(DISPID id, IDispatch* control, _variant_t& result)
    {
        VARIANT argument{};
        argument.vt = VT_DISPATCH;
        argument.pdispVal = control;
        DISPPARAMS parameters{&argument, nullptr, 1, 0};
        EXCEPINFO exception{};
        const HRESULT invoked = Dispatch()->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD,
                                                   &parameters, &result, &exception, nullptr);
        return invoked == DISP_E_EXCEPTION ? exception.scode : invoked;
    }

    // Width and height in pixels of the picture in a result.
    static std::pair<LONG, LONG> SizeOf(const _variant_t& result)
    {
        EXPECT_EQ(result.vt, VT_DISPATCH);
        ComPtr<IPicture> picture;
        EXPECT_EQ(
            result.pdispVal->QueryInterface(IID_IPicture, reinterpret_cast<void**>(picture.GetAddressOf())),
            S_OK);
        OLE_HANDLE handle = 0;
        picture->get_Handle(&handle);
        BITMAP bitmap{};
        GetObjectW(reinterpret_cast<HBITMAP>(static_cast<LONG_PTR>(static_cast<int>(handle))), sizeof(bitmap),
                   &bitmap);
        return {bitmap.bmWidth, bitmap.bmHeight};
    }

    CCallRecord m_record;
    ComPtr<CFakeObject> m_control{new CFakeObject(m_record, "control", {})};
};

TEST_F(RibbonPicturesTest, EachCallbackGivesItsPictureAndLetsTheControlGo)
{
    _variant_t logo;
    EXPECT_EQ(Ask(kGetImageLogo, m_control.Get(), logo), S_OK);
    EXPECT_THAT(SizeOf(logo), Pair(132, 55));
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::Invoke", "CConnect::GetImageLogo"));
    _variant_t icon;
    EXPECT_EQ(Ask(kGetImageIcon, m_control.Get(), icon), S_OK);
    EXPECT_THAT(SizeOf(icon), Pair(36, 36));
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::Invoke", "CConnect::GetImageIcon"));
    EXPECT_EQ(m_control->References(), 1);
}

TEST_F(RibbonPicturesTest, APictureOutlivesTheAddInsObjectAndItsModule)
{
    _variant_t result;
    EXPECT_EQ(Ask(kGetImageLogo, m_control.Get(), result), S_OK);
    ReleaseAll();
    EXPECT_THAT(SizeOf(result), Pair(132, 55));
}

TEST_F(RibbonPicturesTest, TheFailureToMakeAPictureIsReturned)
{
    const auto callback = Query<IRibbonCallback>(__uuidof(IRibbonCallback));
    for (const DISPID id : {kGetImageLogo, kGetImageIcon})
    {
        _variant_t result;
        EXPECT_EQ(Ask(id, nullptr, result), E_POINTER);
    }
    EXPECT_EQ(callback->GetImageLogo(m_control.Get(), nullptr), E_POINTER);
    EXPECT_EQ(callback->GetImageIcon(m_control.Get(), nullptr), E_POINTER);
}

} // namespace
} // namespace orva::test
