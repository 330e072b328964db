// The Backstage markup as the module carries it: its encoding, and every element and attribute as the
// system's parser reads them.
#include "harness/Text.h"
#include "res/ModuleResources.h"

#include <gtest/gtest.h>
#include <wrl/client.h>

#include <windows.h>
#include <msxml2.h>
#include <oleauto.h>

#include <algorithm>
#include <cstring>

using Microsoft::WRL::ComPtr;
using namespace orva::test;

namespace
{
std::wstring Markup()
{
    const auto bytes = ReadResource(L"XML", 203).value_or(std::vector<BYTE>());
    std::wstring text(bytes.size() / 2, L'\0');
    std::memcpy(text.data(), bytes.data(), text.size() * 2);
    return text;
}

std::string Utf8AndFree(BSTR text)
{
    std::string utf8 = text != nullptr ? Utf8(std::wstring_view(text, SysStringLen(text))) : "";
    SysFreeString(text);
    return utf8;
}

// The attributes as ` name="value"`, sorted by name.
std::string Attributes(IXMLDOMNode* node)
{
    ComPtr<IXMLDOMNamedNodeMap> map;
    long count = 0;
    std::vector<std::string> attributes;
    if (SUCCEEDED(node->get_attributes(&map)) && map != nullptr)
    {
        map->get_length(&count);
    }
    for (long index = 0; index != count; ++index)
    {
        ComPtr<IXMLDOMNode> attribute;
        map->get_item(index, &attribute);
        BSTR name = nullptr;
        BSTR value = nullptr;
        if (attribute == nullptr)
        {
            continue;
        }
        attribute->get_nodeName(&name);
        // Parsers differ in whether a namespace declaration is an attribute. Namespaces are compared
        // separately.
        if (Utf8(name) == "xmlns")
        {
            SysFreeString(name);
            continue;
        }
        attribute->get_text(&value);
        attributes.push_back(" " + Utf8AndFree(name) + "=\"" + Utf8AndFree(value) + "\"");
    }
    std::sort(attributes.begin(), attributes.end());
    std::string text;
    for (const std::string& attribute : attributes)
    {
        text += attribute;
    }
    return text;
}

// One line for each node: its level, its name (marked if its namespace is not Office's) and its attributes;
// for a comment "!" and its text.
void Describe(IXMLDOMNode* node, int level, std::vector<std::string>& lines)
{
    DOMNodeType type = NODE_INVALID;
    node->get_nodeType(&type);
    BSTR text = nullptr;
    if (type == NODE_ELEMENT)
    {
        node->get_baseName(&text);
        BSTR space = nullptr;
        node->get_namespaceURI(&space);
        const bool office = Utf8AndFree(space) == "http://schemas.microsoft.com/office/2009/07/customui";
        lines.push_back(std::to_string(level) + (office ? " " : " FOREIGN ") + Utf8AndFree(text) +
                        Attributes(node));
    }
    else if (type == NODE_COMMENT)
    {
        node->get_text(&text);
        lines.push_back(std::to_string(level) + " !" + Utf8AndFree(text));
    }
    ComPtr<IXMLDOMNode> child;
    node->get_firstChild(&child);
    while (child != nullptr)
    {
        Describe(child.Get(), level + 1, lines);
        ComPtr<IXMLDOMNode> next;
        child->get_nextSibling(&next);
        child = next;
    }
}
} // namespace

TEST(BackstageMarkupTest, BeginsWithAByteOrderMarkHasCrlfLineEndsAndNoTerminator)
{
    const auto bytes = ReadResource(L"XML", 203);
    ASSERT_TRUE(bytes.has_value());
    ASSERT_GT(bytes->size(), 1000u);
    EXPECT_EQ(bytes->size() % 2, 0u);
    EXPECT_EQ((*bytes)[0], 0xFF);
    EXPECT_EQ((*bytes)[1], 0xFE);

    const std::wstring markup = Markup();
    EXPECT_EQ(markup.find(L'\0'), std::wstring::npos);
    EXPECT_EQ(markup.find(L'\uFEFF', 1), std::wstring::npos);
    for (size_t position = 0; position != markup.size(); ++position)
    {
        if (markup[position] == L'\n')
        {
            EXPECT_EQ(markup[position - 1], L'\r') << position;
        }
        if (markup[position] == L'\r')
        {
            ASSERT_LT(position + 1, markup.size());
            EXPECT_EQ(markup[position + 1], L'\n') << position;
        }
    }
    EXPECT_GT(std::count(markup.begin(), markup.end(), L'\n'), 30);
}

TEST(BackstageMarkupTest, DeclaresUtf16)
{
    EXPECT_EQ(Utf8(Markup().substr(1, 39)), "<?xml version=\"1.0\" encoding=\"utf-16\"?>");
}

TEST(BackstageMarkupTest, HasEveryElementWithItsAttributesAndNoOther)
{
    ASSERT_TRUE(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)));
    std::vector<std::string> lines;
    {
        CLSID parser = {};
        ASSERT_EQ(CLSIDFromProgID(L"MSXML2.DOMDocument.3.0", &parser), S_OK);
        ComPtr<IXMLDOMDocument> document;
        ASSERT_EQ(CoCreateInstance(parser, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument, &document),
                  S_OK);
        BSTR markup = SysAllocString(Markup().c_str() + 1);
        VARIANT_BOOL parsed = VARIANT_FALSE;
        document->loadXML(markup, &parsed);
        SysFreeString(markup);
        ASSERT_EQ(parsed, VARIANT_TRUE);
        ComPtr<IXMLDOMElement> root;
        document->get_documentElement(&root);
        ASSERT_NE(root, nullptr);
        Describe(root.Get(), 1, lines);
    }
    CoUninitialize();

    const std::vector<std::string> expected = {
        R"(1 customUI)",
        R"(2 backstage)",
        R"(3 tab id="OrvaOSCBackStageTab" label="ORVA")",
        R"(4 firstColumn)",
        R"(5 group id="grpDescription" label="__IDS_APPTITLE__")",
        R"(6 bottomItems)",
        R"(7 imageControl getImage="GetImageLogo" id="OrvaLogo")",
        R"(7 labelControl id="lblText0" label="__IDS_DESCRIPTION1__")",
        R"(7 labelControl id="lblText1" label="__IDS_DESCRIPTION2__")",
        R"(7 labelControl id="lblText2" label="__IDS_DESCRIPTION3__")",
        R"(4 secondColumn)",
        R"(5 group helperText="__IDS_LINKS_DESCRIPTION__" id="grpOSCLinks" label="__IDS_LINKS_TITLE__")",
        R"(6 topItems)",
        R"(7 hyperlink id="hyperlink1" label="__IDS_LINK1_TITLE__" target="__IDS_LINK1_HREF__")",
        R"(7 hyperlink id="hyperlink2" label="__IDS_LINK2_TITLE__" target="__IDS_LINK2_HREF__")",
        R"(7 hyperlink id="hyperlink3" label="__IDS_LINK3_TITLE__" target="__IDS_LINK3_HREF__")",
        R"(5 group helperText="__IDS_VERSION_DESCRIPTION__" id="grpVersion" label="__IDS_VERSION_TITLE__")",
        R"(6 primaryItem)",
        std::string(R"(7 button getImage="GetImageIcon" id="btnCheckUpdate" isDefinitive="false")") +
            R"( label="__IDS_UPDBUTTON_LABEL__" onAction="ButtonClicked" screentip="__IDS_UPDBUTTON_TIP__")",
        R"(6 bottomItems)",
        R"(7 ! make some vertical space )",
        R"(7 labelControl id="lblVersion0")",
        R"(7 labelControl id="lblVersion1" label="__IDS_VERSION_LINE1__")",
        R"(7 labelControl id="lblVersion2" label="__IDS_VERSION_LINE2__")",
    };
    ASSERT_EQ(lines.size(), expected.size());
    for (size_t index = 0; index != expected.size(); ++index)
    {
        EXPECT_EQ(lines[index], expected[index]);
    }
}
