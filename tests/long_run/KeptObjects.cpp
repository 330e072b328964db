#include "long_run/KeptObjects.h"

#include <algorithm>

namespace orva::test
{

namespace
{

long long CountExisting(const std::vector<HGDIOBJ>& objects)
{
    return std::ranges::count_if(objects, [](HGDIOBJ object) { return GetObjectType(object) != 0; });
}

} // namespace

CKeptObjects* CKeptObjects::the = nullptr;

CKeptObjects::CKeptObjects(HMODULE module)
    : m_createBrush(module, "gdi32.dll", "CreateSolidBrush", &OnCreateSolidBrush),
      m_createFont(module, "gdi32.dll", "CreateFontIndirectW", &OnCreateFontIndirect),
      m_delete(module, "gdi32.dll", "DeleteObject", &OnDeleteObject)
{
    the = this;
}

CKeptObjects::~CKeptObjects()
{
    the = nullptr;
}

long long CKeptObjects::Brushes() const
{
    return CountExisting(m_brushes);
}

long long CKeptObjects::Fonts() const
{
    return CountExisting(m_fonts);
}

void CKeptObjects::Discard()
{
    for (std::vector<HGDIOBJ>* const objects : {&m_brushes, &m_fonts})
    {
        for (const HGDIOBJ object : *objects)
        {
            DeleteObject(object);
        }
        objects->clear();
    }
}

HBRUSH WINAPI CKeptObjects::OnCreateSolidBrush(COLORREF colour)
{
    const HBRUSH brush = the->m_createBrush.Original<decltype(OnCreateSolidBrush)>()(colour);
    the->m_brushes.push_back(brush);
    return brush;
}

HFONT WINAPI CKeptObjects::OnCreateFontIndirect(const LOGFONTW* description)
{
    const HFONT font = the->m_createFont.Original<decltype(OnCreateFontIndirect)>()(description);
    the->m_fonts.push_back(font);
    return font;
}

BOOL WINAPI CKeptObjects::OnDeleteObject(HGDIOBJ object)
{
    std::erase(the->m_brushes, object);
    std::erase(the->m_fonts, object);
    return the->m_delete.Original<decltype(OnDeleteObject)>()(object);
}

} // namespace orva::test
