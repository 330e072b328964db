// The dialog templates, field by field.
#include "harness/Text.h"
#include "res/ModuleResources.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <stdexcept>

using namespace orva::test;

namespace
{
// Reads the little-endian fields of an extended dialog template one after the other.
class CTemplateReader
{
public:
    explicit CTemplateReader(std::vector<BYTE> bytes) : m_bytes(std::move(bytes)) {}

    template <typename T> T Next()
    {
        if (m_position + sizeof(T) > m_bytes.size())
        {
            throw std::runtime_error("the template ends early");
        }
        T value;
        std::memcpy(&value, m_bytes.data() + m_position, sizeof(T));
        m_position += sizeof(T);
        return value;
    }

    // A text, or "#" and the number of an ordinal.
    std::string NextNameOrOrdinal()
    {
        const WORD first = Next<WORD>();
        if (first == 0xFFFF)
        {
            return "#" + std::to_string(Next<WORD>());
        }
        std::wstring text;
        for (WORD unit = first; unit != 0; unit = Next<WORD>())
        {
            text += static_cast<wchar_t>(unit);
        }
        return Utf8(text);
    }

    std::string NextRectangle()
    {
        const short x = Next<short>();
        const short y = Next<short>();
        const short width = Next<short>();
        const short height = Next<short>();
        return std::to_string(x) + "," + std::to_string(y) + " " + std::to_string(width) + "x" +
               std::to_string(height);
    }

    void AlignToDword() { m_position = (m_position + 3) & ~size_t{3}; }
    void Skip(size_t bytes) { m_position += bytes; }

private:
    std::vector<BYTE> m_bytes;
    size_t m_position = 0;
};

struct CControl
{
    DWORD id;
    std::string windowClass;
    std::string text;
    DWORD style;
    std::string rectangle;
    DWORD extendedStyle = 0;

    bool operator==(const CControl&) const = default;
};

void PrintTo(const CControl& control, std::ostream* out)
{
    *out << control.id << " " << control.windowClass << " \"" << control.text << "\" style 0x" << std::hex
         << control.style << " extended 0x" << control.extendedStyle << std::dec << " at "
         << control.rectangle;
}

struct CTemplate
{
    DWORD style = 0;
    DWORD extendedStyle = 0;
    std::string rectangle;
    std::string menu;
    std::string windowClass;
    std::string caption;
    WORD pointSize = 0;
    std::string font;
    std::vector<CControl> controls;
};

CTemplate ReadTemplate(WORD id)
{
    CTemplateReader reader(ReadResource(RT_DIALOG, id).value());
    if (reader.Next<WORD>() != 1 || reader.Next<WORD>() != 0xFFFF)
    {
        throw std::runtime_error("not an extended template");
    }
    reader.Skip(4); // Help id.
    CTemplate dialog;
    dialog.extendedStyle = reader.Next<DWORD>();
    dialog.style = reader.Next<DWORD>();
    const WORD count = reader.Next<WORD>();
    dialog.rectangle = reader.NextRectangle();
    dialog.menu = reader.NextNameOrOrdinal();
    dialog.windowClass = reader.NextNameOrOrdinal();
    dialog.caption = reader.NextNameOrOrdinal();
    dialog.pointSize = reader.Next<WORD>();
    reader.Skip(4); // Weight, italic, character set.
    dialog.font = reader.NextNameOrOrdinal();
    for (WORD item = 0; item != count; ++item)
    {
        reader.AlignToDword();
        reader.Skip(4); // Help id.
        CControl control;
        control.extendedStyle = reader.Next<DWORD>();
        control.style = reader.Next<DWORD>();
        control.rectangle = reader.NextRectangle();
        control.id = reader.Next<DWORD>();
        control.windowClass = reader.NextNameOrOrdinal();
        control.text = reader.NextNameOrOrdinal();
        reader.Skip(reader.Next<WORD>()); // Creation data.
        dialog.controls.push_back(control);
    }
    return dialog;
}

// Window classes by their ordinals. The others have names, here in capitals; the system ignores their case.
constexpr char kButton[] = "#128";
constexpr char kStatic[] = "#130";

constexpr DWORD kShown = WS_CHILD | WS_VISIBLE;
// No system menu, and so no close box.
constexpr DWORD kDialogStyle = WS_POPUP | WS_CAPTION | DS_MODALFRAME | DS_SETFONT;

void ExpectTemplate(WORD id, DWORD style, const char* rectangle, const char* caption,
                    const std::vector<CControl>& controls)
{
    const CTemplate dialog = ReadTemplate(id);
    EXPECT_EQ(dialog.style, style);
    EXPECT_EQ(dialog.extendedStyle, 0u);
    EXPECT_EQ(dialog.rectangle, rectangle);
    EXPECT_EQ(dialog.caption, caption);
    EXPECT_EQ(dialog.menu, "");
    EXPECT_EQ(dialog.windowClass, "");
    EXPECT_EQ(dialog.font, "MS Shell Dlg");
    EXPECT_EQ(dialog.pointSize, 8);
    EXPECT_THAT(dialog.controls, testing::ElementsAreArray(controls));
}
} // namespace

TEST(DialogTemplatesTest, UpdateAvailable)
{
    constexpr DWORD richEdit = kShown | WS_BORDER | WS_VSCROLL | ES_MULTILINE | ES_AUTOHSCROLL | ES_READONLY;
    constexpr DWORD text = kShown | SS_LEFT | WS_GROUP;
    ExpectTemplate(9, kDialogStyle | DS_SETFOREGROUND, "0,0 231x178", "Update available",
                   {{203, "RICHEDIT20W", "", richEdit, "2,38 227x119"},
                    {206, kStatic, "#2000", kShown | SS_BITMAP, "3,0 88x34"},
                    {204, kButton, "Button1", kShown | BS_DEFPUSHBUTTON | WS_TABSTOP, "163,162 66x14"},
                    {205, kButton, "Button2", kShown | BS_PUSHBUTTON | WS_TABSTOP, "2,162 62x14"},
                    {207, kStatic, "Static", text, "104,5 124x8", WS_EX_TRANSPARENT},
                    {208, kStatic, "Static", text, "104,17 123x8"}});
}

TEST(DialogTemplatesTest, Download)
{
    constexpr DWORD text = kShown | SS_LEFTNOWORDWRAP | SS_NOPREFIX;
    ExpectTemplate(163, kDialogStyle, "0,0 231x105", "Lade Update herunter",
                   {{2001, kStatic, "", text, "7,8 214x8"},
                    {2002, kStatic, "", text, "7,21 214x8"},
                    {202, "MSCTLS_PROGRESS32", "", kShown, "7,35 214x10"},
                    {2789, kStatic, "Restzeit", text, "7,52 64x8"},
                    {2003, kStatic, "", text, "73,52 148x8"},
                    {2790, kStatic, "", text, "7,65 64x8"},
                    {2004, kStatic, "", text, "73,65 148x8"},
                    {2, kButton, "Abbruch", kShown | BS_PUSHBUTTON | WS_TABSTOP, "171,83 50x14"}});
}

TEST(DialogTemplatesTest, About)
{
    constexpr DWORD text = kShown | SS_LEFT | WS_GROUP;
    constexpr DWORD link = kShown | WS_TABSTOP;
    ExpectTemplate(164, kDialogStyle, "0,0 533x242", "Dialog",
                   {{206, kStatic, "#2000", kShown | SS_BITMAP, "7,7 88x34"},
                    {216, kStatic, "Static", text, "9,48 244x8"},
                    {209, kStatic, "Static", text, "9,63 244x158"},
                    {217, kButton, "Static", kShown | BS_GROUPBOX, "266,39 256x88"},
                    {218, kStatic, "Static", text, "272,50 239x21"},
                    {213, "SYSLINK", "<a>SysLink</a>", link, "272,78 238x9"},
                    {214, "SYSLINK", "<a>SysLink</a>", link, "272,94 238x9"},
                    {215, "SYSLINK", "<a>SysLink</a>", link, "272,110 238x9"},
                    {219, kButton, "Static", kShown | BS_GROUPBOX, "266,128 256x89"},
                    {220, kStatic, "Static", text, "272,139 238x26"},
                    {223, kButton, "Button1", kShown | BS_PUSHBUTTON | WS_TABSTOP, "273,164 62x14"},
                    {221, kStatic, "Static", text, "272,188 236x13"},
                    {222, kStatic, "Static", text, "272,202 236x13"},
                    {224, kButton, "Button2", kShown | BS_DEFPUSHBUTTON | WS_TABSTOP, "455,221 66x14"}});
}
