// The ribbon's pictures as Office asks for them: by name, with a ribbon control, through Invoke.
#include "addin/AddInFixture.h"

#include <olectl.h>

namespace orva::test
{
namespace
{

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

constexpr DISPID kGetImageLogo = 42001;
constexpr DISPID kGetImageIcon = 42002;

// A ribbon control that counts how often its id is read.
class CFakeControl : public CFakeObject
{
public:
    explicit CFakeControl(CCallRecord& record) : CFakeObject(record, "control", {}), m_control(*this) {}
    int IdsRead() const { return m_control.idsRead; }

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        if (iid != IID_IRibbonControl)
        {
            return CFakeObject::QueryInterface(iid, object);
        }
        *object = static_cast<IRibbonControl*>(&m_control);
        AddRef();
        return S_OK;
    }

private:
    struct CRibbonControl : public IRibbonControl
    {
        explicit CRibbonControl(CFakeControl& control) : owner(control) {}
        virtual ~CRibbonControl() = default;

        STDMETHODIMP QueryInterface(REFIID iid, void** object) override
        {
            return owner.QueryInterface(iid, object);
        }
        STDMETHODIMP_(ULONG) AddRef() override { return owner.AddRef(); }
        STDMETHODIMP_(ULONG) Release() override { return owner.Release(); }
        STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
        STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
        STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
        STDMETHODIMP Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
        {
            return E_NOTIMPL;
        }
        STDMETHODIMP get_Id(BSTR* id) override
        {
            ++idsRead;
            *id = SysAllocString(L"OrvaLogo");
            return S_OK;
        }
        STDMETHODIMP get_Context(IDispatch**) override { return E_NOTIMPL; }
        STDMETHODIMP get_Tag(BSTR*) override { return E_NOTIMPL; }

        CFakeControl& owner;
        int idsRead = 0;
    };

    CRibbonControl m_control;
};

class RibbonPicturesTest : public CAddInTest
{
protected:
    RibbonPicturesTest()
    {
        m_control = new CFakeControl(m_record);
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

    // Width and height in pixels of a picture in a result; 0 by 0 without one.
    static SIZE SizeOf(const _variant_t& result)
    {
        ComPtr<IPicture> picture;
        if (result.vt != VT_DISPATCH || result.pdispVal == nullptr ||
            FAILED(result.pdispVal->QueryInterface(IID_IPicture,
                                                   reinterpret_cast<void**>(picture.GetAddressOf()))))
        {
            return {};
        }
        short type = 0;
        picture->get_Type(&type);
        EXPECT_EQ(type, PICTYPE_BITMAP);
        OLE_HANDLE handle = 0;
        picture->get_Handle(&handle);
        BITMAP bitmap{};
        EXPECT_NE(GetObjectW(reinterpret_cast<HBITMAP>(static_cast<LONG_PTR>(static_cast<int>(handle))),
                             sizeof(bitmap), &bitmap),
                  0);
        EXPECT_EQ(bitmap.bmBitsPixel, 32);
        return {bitmap.bmWidth, bitmap.bmHeight};
    }

    CCallRecord m_record;
    ComPtr<CFakeControl> m_control;
};

TEST_F(RibbonPicturesTest, TheLogoComesThroughInvoke)
{
    _variant_t result;
    EXPECT_EQ(Ask(kGetImageLogo, m_control.Get(), result), S_OK);
    EXPECT_EQ(SizeOf(result).cx, 132);
    EXPECT_EQ(SizeOf(result).cy, 55);
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::Invoke", "CConnect::GetImageLogo"));
}

TEST_F(RibbonPicturesTest, TheIconComesThroughInvoke)
{
    _variant_t result;
    EXPECT_EQ(Ask(kGetImageIcon, m_control.Get(), result), S_OK);
    EXPECT_EQ(SizeOf(result).cx, 36);
    EXPECT_EQ(SizeOf(result).cy, 36);
    EXPECT_THAT(NewLogLines(), ElementsAre("CConnect::Invoke", "CConnect::GetImageIcon"));
}

TEST_F(RibbonPicturesTest, TheControlsIdIsReadAndTheControlLetGo)
{
    _variant_t result;
    EXPECT_EQ(Ask(kGetImageIcon, m_control.Get(), result), S_OK);
    EXPECT_EQ(m_control->IdsRead(), 1);
    EXPECT_EQ(m_control->References(), 1);
}

TEST_F(RibbonPicturesTest, EachCallMakesAPictureOfItsOwn)
{
    _variant_t first;
    _variant_t second;
    EXPECT_EQ(Ask(kGetImageLogo, m_control.Get(), first), S_OK);
    EXPECT_EQ(Ask(kGetImageLogo, m_control.Get(), second), S_OK);
    EXPECT_NE(first.pdispVal, second.pdispVal);
}

TEST_F(RibbonPicturesTest, APictureOutlivesTheAddInsObjectAndItsModule)
{
    _variant_t result;
    EXPECT_EQ(Ask(kGetImageLogo, m_control.Get(), result), S_OK);
    ReleaseAll();
    EXPECT_EQ(SizeOf(result).cx, 132);
}

TEST_F(RibbonPicturesTest, WithoutAControlOrAResultPointerItIsEPointer)
{
    _variant_t result;
    EXPECT_EQ(Ask(kGetImageLogo, nullptr, result), E_POINTER);
    const auto callback = Query<IRibbonCallback>(__uuidof(IRibbonCallback));
    ComPtr<IPictureDisp> picture;
    EXPECT_EQ(callback->GetImageIcon(nullptr, &picture), E_POINTER);
    EXPECT_EQ(callback->GetImageIcon(m_control.Get(), nullptr), E_POINTER);
}

TEST_F(RibbonPicturesTest, AResourceThatIsNoImageGivesNoPictureAndNoFailure)
{
    // The header of a PNG file with the size of the logo.
    const std::string before("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\0\x84\0\0\0\x37", 24);
    const CAddInCopy copy(before, std::string(before.size(), 'x'));
    LoadInstead(copy.Path());
    EXPECT_EQ(Connect(kOutlook2010), S_OK);
    auto* const untouched = reinterpret_cast<IPictureDisp*>(0x1234);
    IPictureDisp* picture = untouched;
    EXPECT_EQ(Query<IRibbonCallback>(__uuidof(IRibbonCallback))->GetImageLogo(m_control.Get(), &picture),
              S_OK);
    EXPECT_EQ(picture, untouched);
    ComPtr<IPictureDisp> icon;
    EXPECT_EQ(Query<IRibbonCallback>(__uuidof(IRibbonCallback))->GetImageIcon(m_control.Get(), &icon), S_OK);
    EXPECT_NE(icon.Get(), nullptr);
    // The copy cannot be deleted while it is loaded.
    ReleaseAll();
}

} // namespace
} // namespace orva::test
