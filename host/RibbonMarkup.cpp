#include "host/RibbonMarkup.h"

#include "host/MarkupFault.h"

#include <wrl/client.h>

#include <windows.h>
#include <comdef.h>
#include <msxml2.h>

namespace orva::host
{
namespace
{

using Microsoft::WRL::ComPtr;

constexpr wchar_t kSchema[] = L"http://schemas.microsoft.com/office/2009/07/customui";
constexpr const wchar_t* kParsers[] = {L"Msxml2.DOMDocument.6.0", L"Msxml2.DOMDocument.3.0"};

ComPtr<IXMLDOMDocument> MakeParser()
{
    ComPtr<IXMLDOMDocument> document;
    for (const wchar_t* progId : kParsers)
    {
        CLSID classId{};
        if (SUCCEEDED(CLSIDFromProgID(progId, &classId)) &&
            SUCCEEDED(CoCreateInstance(classId, nullptr, CLSCTX_INPROC_SERVER, IID_IXMLDOMDocument,
                                       reinterpret_cast<void**>(document.ReleaseAndGetAddressOf()))))
        {
            return document;
        }
    }
    return nullptr;
}

std::wstring CopyAndFree(BSTR text)
{
    std::wstring copy(text != nullptr ? text : L"", SysStringLen(text));
    SysFreeString(text);
    return copy;
}

std::wstring LocalName(IXMLDOMNode* node)
{
    BSTR name = nullptr;
    node->get_baseName(&name);
    return CopyAndFree(name);
}

std::wstring Attribute(IXMLDOMElement* element, const wchar_t* name)
{
    _variant_t value;
    if (element->getAttribute(_bstr_t(name), &value) != S_OK || value.vt != VT_BSTR)
    {
        return {};
    }
    return std::wstring(value.bstrVal, SysStringLen(value.bstrVal));
}

std::vector<ComPtr<IXMLDOMElement>> Children(IXMLDOMNode* node)
{
    std::vector<ComPtr<IXMLDOMElement>> children;
    ComPtr<IXMLDOMNode> child;
    node->get_firstChild(&child);
    while (child)
    {
        ComPtr<IXMLDOMElement> element;
        if (SUCCEEDED(child.CopyTo(IID_IXMLDOMElement, reinterpret_cast<void**>(element.GetAddressOf()))))
        {
            children.push_back(element);
        }
        ComPtr<IXMLDOMNode> next;
        child->get_nextSibling(&next);
        child = next;
    }
    return children;
}

// Reads the document and lists the elements that it ignores.
class CMarkupReader
{
public:
    explicit CMarkupReader(RibbonMarkup& markup) : m_markup(markup) {}

    void ReadRoot(IXMLDOMElement* root)
    {
        for (const auto& child : Children(root))
        {
            if (LocalName(child.Get()) == L"backstage")
            {
                ReadBackstage(child.Get());
            }
            else
            {
                Ignore(child.Get());
            }
        }
    }

private:
    void ReadBackstage(IXMLDOMElement* backstage)
    {
        for (const auto& child : Children(backstage))
        {
            if (LocalName(child.Get()) == L"tab")
            {
                ReadTab(child.Get());
            }
            else
            {
                Ignore(child.Get());
            }
        }
    }

    void ReadTab(IXMLDOMElement* element)
    {
        RibbonTab tab;
        tab.id = Attribute(element, L"id");
        tab.label = Attribute(element, L"label");
        for (const auto& child : Children(element))
        {
            const std::wstring name = LocalName(child.Get());
            if (name == L"firstColumn")
            {
                tab.firstColumn = ReadColumn(child.Get());
            }
            else if (name == L"secondColumn")
            {
                tab.secondColumn = ReadColumn(child.Get());
            }
            else
            {
                Ignore(child.Get());
            }
        }
        m_markup.tabs.push_back(tab);
    }

    std::vector<RibbonGroup> ReadColumn(IXMLDOMElement* column)
    {
        std::vector<RibbonGroup> groups;
        for (const auto& child : Children(column))
        {
            if (LocalName(child.Get()) == L"group")
            {
                groups.push_back(ReadGroup(child.Get()));
            }
            else
            {
                Ignore(child.Get());
            }
        }
        return groups;
    }

    RibbonGroup ReadGroup(IXMLDOMElement* element)
    {
        RibbonGroup group;
        group.id = Attribute(element, L"id");
        group.label = Attribute(element, L"label");
        group.helperText = Attribute(element, L"helperText");
        for (const auto& child : Children(element))
        {
            const std::wstring name = LocalName(child.Get());
            if (name == L"topItems")
            {
                group.top = ReadItems(child.Get());
            }
            else if (name == L"bottomItems")
            {
                group.bottom = ReadItems(child.Get());
            }
            else if (name == L"primaryItem")
            {
                const std::vector<RibbonItem> items = ReadItems(child.Get());
                if (!items.empty())
                {
                    group.primary = items.front();
                }
            }
            else
            {
                Ignore(child.Get());
            }
        }
        return group;
    }

    std::vector<RibbonItem> ReadItems(IXMLDOMElement* parent)
    {
        std::vector<RibbonItem> items;
        for (const auto& child : Children(parent))
        {
            RibbonItem item;
            const std::wstring name = LocalName(child.Get());
            if (name == L"imageControl")
            {
                item.kind = RibbonItemKind::Image;
            }
            else if (name == L"labelControl")
            {
                item.kind = RibbonItemKind::Label;
            }
            else if (name == L"hyperlink")
            {
                item.kind = RibbonItemKind::Link;
            }
            else if (name == L"button")
            {
                item.kind = RibbonItemKind::Button;
            }
            else
            {
                Ignore(child.Get());
                continue;
            }
            item.id = Attribute(child.Get(), L"id");
            item.label = Attribute(child.Get(), L"label");
            item.getImage = Attribute(child.Get(), L"getImage");
            item.onAction = Attribute(child.Get(), L"onAction");
            item.target = Attribute(child.Get(), L"target");
            item.screentip = Attribute(child.Get(), L"screentip");
            const std::wstring definitive = Attribute(child.Get(), L"isDefinitive");
            item.isDefinitive = definitive == L"true" || definitive == L"1";
            items.push_back(item);
        }
        return items;
    }

    void Ignore(IXMLDOMNode* node) { m_markup.ignored.push_back(LocalName(node)); }

    RibbonMarkup& m_markup;
};

void ReadError(IXMLDOMDocument* document, MarkupError& error)
{
    ComPtr<IXMLDOMParseError> parseError;
    BSTR reason = nullptr;
    if (SUCCEEDED(document->get_parseError(&parseError)) && parseError)
    {
        parseError->get_reason(&reason);
        parseError->get_line(&error.line);
        parseError->get_linepos(&error.position);
    }
    error.reason = CopyAndFree(reason);
    while (!error.reason.empty() && wcschr(L" \t\r\n", error.reason.back()) != nullptr)
    {
        error.reason.pop_back();
    }
    if (error.reason.empty())
    {
        error.reason = L"The text is not well-formed XML.";
    }
}

} // namespace

std::wstring MarkupError::Text() const
{
    return reason + L" (line " + std::to_wstring(line) + L", position " + std::to_wstring(position) + L")";
}

bool ParseRibbonMarkup(const std::wstring& text, RibbonMarkup& markup, MarkupError& error)
{
    const ComPtr<IXMLDOMDocument> document = MakeParser();
    if (!document)
    {
        error.reason = L"There is no XML parser on this machine.";
        return false;
    }
    document->put_async(VARIANT_FALSE);
    document->put_validateOnParse(VARIANT_FALSE);
    document->put_resolveExternals(VARIANT_FALSE);
    VARIANT_BOOL isLoaded = VARIANT_FALSE;
    const HRESULT loaded = document->loadXML(_bstr_t(text.c_str()), &isLoaded);
    if (loaded != S_OK || isLoaded == VARIANT_FALSE)
    {
        ReadError(document.Get(), error);
        if (error.line == 0)
        {
            LocateMarkupFault(text, error);
        }
        return false;
    }
    ComPtr<IXMLDOMElement> root;
    document->get_documentElement(&root);
    BSTR schema = nullptr;
    if (root)
    {
        root->get_namespaceURI(&schema);
    }
    const std::wstring schemaText = CopyAndFree(schema);
    if (!root || LocalName(root.Get()) != L"customUI" || schemaText != kSchema)
    {
        error.reason = L"The root element is not customUI of " + std::wstring(kSchema) + L".";
        return false;
    }
    CMarkupReader(markup).ReadRoot(root.Get());
    return true;
}

} // namespace orva::host
