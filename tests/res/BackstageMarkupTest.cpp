// The Backstage markup as the module carries it: its encoding, and every element and attribute.
#include "harness/Text.h"
#include "res/ModuleResources.h"
#include "res/resource.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace orva::test;

namespace
{
std::wstring Markup()
{
    const auto bytes = ReadResource(L"XML", IDR_BACKSTAGE_XML).value_or(std::vector<BYTE>());
    EXPECT_EQ(bytes.size() % 2, 0u);
    std::wstring text(bytes.size() / 2, L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * 2);
    return text;
}

// The elements, each with its attributes as they are written, and the comments, one a line. The levels are
// told by the closing tags.
constexpr char kElements[] =
    R"(<?xml version="1.0" encoding="utf-16"?>
<customUI xmlns="http://schemas.microsoft.com/office/2009/07/customui">
<backstage>
<tab id="OrvaOSCBackStageTab" label="ORVA">
<firstColumn>
<group id="grpDescription" label="__IDS_APPTITLE__">
<bottomItems>
<imageControl id="OrvaLogo" getImage="GetImageLogo"/>
<labelControl id="lblText0" label="__IDS_DESCRIPTION1__"/>
<labelControl id="lblText1" label="__IDS_DESCRIPTION2__"/>
<labelControl id="lblText2" label="__IDS_DESCRIPTION3__"/>
</bottomItems>
</group>
</firstColumn>
<secondColumn>
<group id="grpOSCLinks" label="__IDS_LINKS_TITLE__" helperText="__IDS_LINKS_DESCRIPTION__">
<topItems>
<hyperlink id="hyperlink1" label="__IDS_LINK1_TITLE__" target="__IDS_LINK1_HREF__"/>
<hyperlink id="hyperlink2" label="__IDS_LINK2_TITLE__" target="__IDS_LINK2_HREF__"/>
<hyperlink id="hyperlink3" label="__IDS_LINK3_TITLE__" target="__IDS_LINK3_HREF__"/>
</topItems>
</group>
<group id="grpVersion" label="__IDS_VERSION_TITLE__" helperText="__IDS_VERSION_DESCRIPTION__">
<primaryItem>
<button id="btnCheckUpdate" label="__IDS_UPDBUTTON_LABEL__" getImage="GetImageIcon")"
    R"( isDefinitive="false" onAction="ButtonClicked" screentip="__IDS_UPDBUTTON_TIP__"/>
</primaryItem>
<bottomItems>
<!-- make some vertical space -->
<labelControl id="lblVersion0"/>
<labelControl id="lblVersion1" label="__IDS_VERSION_LINE1__"/>
<labelControl id="lblVersion2" label="__IDS_VERSION_LINE2__"/>
</bottomItems>
</group>
</secondColumn>
</tab>
</backstage>
</customUI>
)";
} // namespace

TEST(BackstageMarkupTest, BeginsWithAByteOrderMarkHasCrlfLineEndsAndNoTerminator)
{
    const std::wstring markup = Markup();
    ASSERT_GT(markup.size(), 500u);
    EXPECT_EQ(markup.find(L'\uFEFF'), 0u);
    EXPECT_EQ(markup.find(L'\uFEFF', 1), std::wstring::npos);
    EXPECT_EQ(markup.find(L'\0'), std::wstring::npos);
    EXPECT_NE(markup.back(), L'\r');
    // Each of the two characters stands with the other only.
    for (size_t position = 0; position < markup.size(); ++position)
    {
        EXPECT_EQ(markup[position] == L'\n', position > 0 && markup[position - 1] == L'\r') << position;
    }
}

TEST(BackstageMarkupTest, HasEveryElementWithItsAttributesAndNoOther)
{
    std::string elements;
    for (const std::string& line : SplitLines(Utf8(Markup().substr(1))))
    {
        elements += line.substr(line.find_first_not_of(' ')) + "\n";
    }
    EXPECT_EQ(elements, kElements);
}
