// PNG resources as picture objects for the ribbon, and failures to make them.
#include "harness/GdiPlusCounter.h"
#include "res/resource.h"
#include "ui/LocalizedResources.h"

#include <Office.h>

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <windows.h>
#include <ocidl.h>
#include <olectl.h>

#include <cstring>
#include <vector>

using Microsoft::WRL::ComPtr;

namespace
{
// Overwrites the beginning of a resource in memory for its lifetime.
class CDamagedResource
{
public:
    CDamagedResource(const wchar_t* type, WORD id)
    {
        const HMODULE module = GetModuleHandleW(nullptr);
        m_bytes = static_cast<BYTE*>(
            LockResource(LoadResource(module, FindResourceW(module, MAKEINTRESOURCEW(id), type))));
        std::memcpy(m_kept, m_bytes, sizeof(m_kept));
        Write(std::vector<BYTE>(sizeof(m_kept), 0xEE).data());
    }
    ~CDamagedResource() { Write(m_kept); }
    CDamagedResource(const CDamagedResource&) = delete;
    CDamagedResource& operator=(const CDamagedResource&) = delete;

private:
    void Write(const BYTE* bytes)
    {
        DWORD before = 0;
        VirtualProtect(m_bytes, sizeof(m_kept), PAGE_READWRITE, &before);
        std::memcpy(m_bytes, bytes, sizeof(m_kept));
        VirtualProtect(m_bytes, sizeof(m_kept), before, &before);
    }

    BYTE* m_bytes;
    BYTE m_kept[16];
};

// A ribbon control on the stack that counts how often its id is read and how often it is referenced.
class CFakeControl : public IRibbonControl
{
public:
    explicit CFakeControl(bool isRibbonControl = true) : m_isRibbonControl(isRibbonControl) {}
    virtual ~CFakeControl() = default;

    STDMETHOD(QueryInterface)(REFIID id, void** object) override
    {
        if (id == IID_IUnknown || id == IID_IDispatch || (m_isRibbonControl && id == IID_IRibbonControl))
        {
            *object = this;
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }
    STDMETHOD_(ULONG, AddRef)() override { return static_cast<ULONG>(++m_references); }
    STDMETHOD_(ULONG, Release)() override { return static_cast<ULONG>(--m_references); }
    STDMETHOD(GetTypeInfoCount)(UINT*) override { return E_NOTIMPL; }
    STDMETHOD(GetTypeInfo)(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHOD(GetIDsOfNames)(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHOD(Invoke)(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }
    STDMETHOD(get_Id)(BSTR* id) override
    {
        ++m_idsRead;
        *id = SysAllocString(L"OrvaLogo");
        return S_OK;
    }
    STDMETHOD(get_Context)(IDispatch**) override { return E_NOTIMPL; }
    STDMETHOD(get_Tag)(BSTR*) override { return E_NOTIMPL; }

    int References() const { return m_references; }
    int IdsRead() const { return m_idsRead; }

private:
    bool m_isRibbonControl;
    int m_references = 1;
    int m_idsRead = 0;
};

HBITMAP HandleOf(IPictureDisp* picture)
{
    ComPtr<IPicture> access;
    EXPECT_EQ(picture->QueryInterface(IID_PPV_ARGS(&access)), S_OK);
    short type = 0;
    EXPECT_EQ(access->get_Type(&type), S_OK);
    EXPECT_EQ(type, PICTYPE_BITMAP);
    OLE_HANDLE handle = 0;
    EXPECT_EQ(access->get_Handle(&handle), S_OK);
    return reinterpret_cast<HBITMAP>(static_cast<LONG_PTR>(static_cast<int>(handle)));
}

// The pixels of a picture of 32 bits a pixel, top row first.
std::vector<DWORD> PixelsOf(IPictureDisp* picture)
{
    const HBITMAP bitmap = HandleOf(picture);
    BITMAP attributes = {};
    EXPECT_EQ(GetObjectW(bitmap, sizeof(attributes), &attributes), static_cast<int>(sizeof(attributes)));
    EXPECT_EQ(attributes.bmBitsPixel, 32);
    std::vector<DWORD> pixels(static_cast<size_t>(attributes.bmWidth * attributes.bmHeight));
    GetBitmapBits(bitmap, static_cast<LONG>(pixels.size() * sizeof(DWORD)), pixels.data());
    return pixels;
}

class LocalizedResourcesPictureTest : public testing::Test
{
protected:
    orva::test::CGdiPlusCounter m_counter{GetModuleHandleW(nullptr)};
    CLocalizedResources m_resources;
    CFakeControl m_control;
};
} // namespace

// Sizes and contents of the pictures are tested in tests/res.
TEST_F(LocalizedResourcesPictureTest, TransparencyIsKeptOnATransparentBlackBackground)
{
    constexpr size_t kWidth = 132;
    ComPtr<IPictureDisp> picture;
    ASSERT_EQ(m_resources.LoadPngPicture(&m_control, &picture, IDR_LOGO_PNG), S_OK);
    const std::vector<DWORD> pixels = PixelsOf(picture.Get());
    EXPECT_EQ(pixels.at(0), 0u);
    EXPECT_EQ(pixels.back(), 0u);
    // On the left ring, in its own colour and opaque.
    EXPECT_EQ(pixels.at(27 * kWidth + 6), 0xFF1B5A9Du);
}

TEST_F(LocalizedResourcesPictureTest, ThePictureIsADispatchThatOwnsItsBitmap)
{
    ComPtr<IPictureDisp> picture;
    ASSERT_EQ(m_resources.LoadPngPicture(&m_control, &picture, IDR_LOGO_PNG), S_OK);
    {
        ComPtr<IDispatch> dispatch;
        EXPECT_EQ(picture->QueryInterface(IID_PPV_ARGS(&dispatch)), S_OK);
        EXPECT_EQ(static_cast<IUnknown*>(dispatch.Get()), static_cast<IUnknown*>(picture.Get()));
    }
    const HBITMAP bitmap = HandleOf(picture.Get());
    EXPECT_EQ(GetObjectType(bitmap), static_cast<DWORD>(OBJ_BITMAP));
    picture.Reset();
    EXPECT_EQ(GetObjectType(bitmap), 0u);
}

TEST_F(LocalizedResourcesPictureTest, EachCallStartsAndStopsGdiplusAndDecodesAnew)
{
    ComPtr<IPictureDisp> first;
    ComPtr<IPictureDisp> second;
    m_resources.LoadPngPicture(&m_control, &first, IDR_ICON_PNG);
    m_resources.LoadPngPicture(&m_control, &second, IDR_ICON_PNG);
    EXPECT_NE(first.Get(), second.Get());
    EXPECT_EQ(m_counter.starts, 2);
    EXPECT_EQ(m_counter.ends, 2);
    EXPECT_EQ(m_counter.lastInput.version, 1u);
    EXPECT_EQ(m_counter.lastInput.debugCallback, nullptr);
    EXPECT_FALSE(m_counter.lastInput.suppressBackgroundThread);
    EXPECT_FALSE(m_counter.lastInput.suppressExternalCodecs);
}

TEST_F(LocalizedResourcesPictureTest, TheControlsIdIsReadAndTheControlLetGo)
{
    ComPtr<IPictureDisp> picture;
    m_resources.LoadPngPicture(&m_control, &picture, IDR_ICON_PNG);
    EXPECT_EQ(m_control.IdsRead(), 1);
    EXPECT_EQ(m_control.References(), 1);
}

TEST_F(LocalizedResourcesPictureTest, AMissingResourceLeavesThePictureAsItWasAndGdiplusStarted)
{
    auto* const untouched = reinterpret_cast<IPictureDisp*>(0x1234);
    IPictureDisp* picture = untouched;
    EXPECT_EQ(m_resources.LoadPngPicture(&m_control, &picture, 209), S_OK);
    EXPECT_EQ(picture, untouched);
    EXPECT_EQ(m_counter.starts, 1);
    EXPECT_EQ(m_counter.ends, 0);
    EXPECT_EQ(m_control.References(), 1);
}

TEST_F(LocalizedResourcesPictureTest, BytesThatAreNoImageGiveNoPictureAndStopGdiplus)
{
    const CDamagedResource damage(L"PNG", IDR_LOGO_PNG);
    auto* const untouched = reinterpret_cast<IPictureDisp*>(0x1234);
    IPictureDisp* picture = untouched;
    EXPECT_EQ(m_resources.LoadPngPicture(&m_control, &picture, IDR_LOGO_PNG), S_OK);
    EXPECT_EQ(picture, untouched);
    EXPECT_EQ(m_counter.starts, 1);
    EXPECT_EQ(m_counter.ends, 1);
}

TEST_F(LocalizedResourcesPictureTest, AControlThatIsNoRibbonControlGetsItsPictureAllTheSame)
{
    CFakeControl other(false);
    ComPtr<IPictureDisp> picture;
    EXPECT_EQ(m_resources.LoadPngPicture(&other, &picture, IDR_ICON_PNG), S_OK);
    EXPECT_NE(picture.Get(), nullptr);
    EXPECT_EQ(other.IdsRead(), 0);
}

TEST_F(LocalizedResourcesPictureTest, WithoutAControlOrAPlaceForThePictureNothingIsDone)
{
    ComPtr<IPictureDisp> picture;
    EXPECT_EQ(m_resources.LoadPngPicture(nullptr, &picture, IDR_ICON_PNG), E_POINTER);
    EXPECT_EQ(picture.Get(), nullptr);
    EXPECT_EQ(m_resources.LoadPngPicture(&m_control, nullptr, IDR_ICON_PNG), E_POINTER);
    EXPECT_EQ(m_counter.starts, 0);
}
