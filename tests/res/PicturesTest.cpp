// The pictures that the module carries: sizes, depths, and what is transparent.
#include "res/ModuleResources.h"
#include "res/resource.h"

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <windows.h>
#include <objidl.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

using std::max;
using std::min;
#include <gdiplus.h>

using Microsoft::WRL::ComPtr;
using namespace orva::test;

namespace
{
// Starts GDI+ for each test.
class PicturesTest : public testing::Test
{
protected:
    PicturesTest()
    {
        const Gdiplus::GdiplusStartupInput input;
        Gdiplus::GdiplusStartup(&m_token, &input, nullptr);
    }
    ~PicturesTest() override { Gdiplus::GdiplusShutdown(m_token); }

    static std::unique_ptr<Gdiplus::Bitmap> Png(WORD id)
    {
        const auto bytes = ReadResource(L"PNG", id).value();
        const HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, bytes.size());
        std::memcpy(GlobalLock(block), bytes.data(), bytes.size());
        GlobalUnlock(block);
        ComPtr<IStream> stream;
        CreateStreamOnHGlobal(block, TRUE, &stream);
        return std::unique_ptr<Gdiplus::Bitmap>(new Gdiplus::Bitmap(stream.Get(), FALSE));
    }

    static Gdiplus::Color Pixel(Gdiplus::Bitmap& bitmap, int x, int y)
    {
        Gdiplus::Color color;
        EXPECT_EQ(bitmap.GetPixel(x, y, &color), Gdiplus::Ok);
        return color;
    }

    static void ExpectTransparentCornersAndOpaqueInside(Gdiplus::Bitmap& bitmap)
    {
        const int right = static_cast<int>(bitmap.GetWidth()) - 1;
        const int bottom = static_cast<int>(bitmap.GetHeight()) - 1;
        for (const auto& [x, y] : {POINT{0, 0}, POINT{right, 0}, POINT{0, bottom}, POINT{right, bottom}})
        {
            EXPECT_EQ(Pixel(bitmap, x, y).GetAlpha(), 0) << x << "," << y;
        }
        int opaque = 0;
        for (int y = 0; y <= bottom; ++y)
        {
            for (int x = 0; x <= right; ++x)
            {
                opaque += Pixel(bitmap, x, y).GetAlpha() == 255;
            }
        }
        EXPECT_GT(opaque, right * bottom / 10);
    }

private:
    ULONG_PTR m_token = 0;
};

DWORD BigEndian(const std::vector<BYTE>& bytes, size_t position)
{
    return static_cast<DWORD>(bytes.at(position) << 24 | bytes.at(position + 1) << 16 |
                              bytes.at(position + 2) << 8 | bytes.at(position + 3));
}

} // namespace

TEST_F(PicturesTest, ThePngsAreRgbaOfTheirSizesWithTransparentCorners)
{
    struct CPicture
    {
        WORD id;
        DWORD width;
        DWORD height;
    };
    for (const auto& [id, width, height] : {CPicture{IDR_LOGO_PNG, 132, 55}, CPicture{IDR_ICON_PNG, 36, 36}})
    {
        SCOPED_TRACE(id);
        const auto bytes = ReadResource(L"PNG", id);
        ASSERT_TRUE(bytes.has_value());
        ASSERT_EQ(std::string(bytes->begin(), bytes->begin() + 8), "\x89PNG\r\n\x1a\n");
        // From the file's own header: eight bits a channel, and colour type 6 (red, green, blue, alpha).
        EXPECT_EQ(BigEndian(*bytes, 16), width);
        EXPECT_EQ(BigEndian(*bytes, 20), height);
        EXPECT_EQ(bytes->at(24), 8);
        EXPECT_EQ(bytes->at(25), 6);
        const auto picture = Png(id);
        ASSERT_EQ(picture->GetLastStatus(), Gdiplus::Ok);
        ExpectTransparentCornersAndOpaqueInside(*picture);
    }
}

TEST_F(PicturesTest, TheBitmapIs132By55In24Bits)
{
    const auto bytes = ReadResource(RT_BITMAP, IDB_LOGO);
    ASSERT_TRUE(bytes.has_value());
    BITMAPINFOHEADER header;
    ASSERT_GE(bytes->size(), sizeof(header));
    std::memcpy(&header, bytes->data(), sizeof(header));
    EXPECT_EQ(header.biWidth, 132);
    EXPECT_EQ(header.biHeight, 55);
    EXPECT_EQ(header.biBitCount, 24);
    EXPECT_EQ(header.biCompression, static_cast<DWORD>(BI_RGB));
}

TEST_F(PicturesTest, TheBitmapIsTheLogoOnWhite)
{
    const auto logo = Png(IDR_LOGO_PNG);
    Gdiplus::Bitmap bitmap(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(IDB_LOGO));
    ASSERT_EQ(bitmap.GetLastStatus(), Gdiplus::Ok);
    EXPECT_EQ(Pixel(bitmap, 0, 0).GetValue(), 0xFFFFFFFFu);
    EXPECT_EQ(Pixel(bitmap, 131, 54).GetValue(), 0xFFFFFFFFu);
    for (int y = 0; y != 55; ++y)
    {
        for (int x = 0; x != 132; ++x)
        {
            const Gdiplus::Color above = Pixel(*logo, x, y);
            const Gdiplus::Color shown = Pixel(bitmap, x, y);
            const auto onWhite = [&](int channel) { return 255 + (channel - 255) * above.GetAlpha() / 255; };
            // Rounding in the blend may differ by little.
            EXPECT_LE(std::abs(onWhite(above.GetR()) - shown.GetR()), 4) << x << "," << y;
            EXPECT_LE(std::abs(onWhite(above.GetG()) - shown.GetG()), 4) << x << "," << y;
            EXPECT_LE(std::abs(onWhite(above.GetB()) - shown.GetB()), 4) << x << "," << y;
        }
    }
}
