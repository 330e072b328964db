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

CKeptObjects* CKeptObjects::s_current = nullptr;

CKeptObjects::CKeptObjects(HMODULE module)
    : m_createBrush(module, "gdi32.dll", "CreateSolidBrush", &OnCreateSolidBrush),
      m_createFont(module, "gdi32.dll", "CreateFontIndirectW", &OnCreateFontIndirect),
      m_delete(module, "gdi32.dll", "DeleteObject", &OnDeleteObject)
{
    s_current = this;
}

CKeptObjects::~CKeptObjects()
{
    Discard();
    s_current = nullptr;
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
    const HBRUSH brush = s_current->m_createBrush.Original<decltype(OnCreateSolidBrush)>()(colour);
    s_current->m_brushes.push_back(brush);
    return brush;
}

HFONT WINAPI CKeptObjects::OnCreateFontIndirect(const LOGFONTW* description)
{
    const HFONT font = s_current->m_createFont.Original<decltype(OnCreateFontIndirect)>()(description);
    s_current->m_fonts.push_back(font);
    return font;
}

BOOL WINAPI CKeptObjects::OnDeleteObject(HGDIOBJ object)
{
    std::erase(s_current->m_brushes, object);
    std::erase(s_current->m_fonts, object);
    return s_current->m_delete.Original<decltype(OnDeleteObject)>()(object);
}

} // namespace orva::test
