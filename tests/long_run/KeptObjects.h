// The GDI objects that a module makes and does not delete.
#pragma once

#include "harness/ImportHook.h"

#include <vector>

namespace orva::test
{

/// What the add-in leaves on purpose: the brushes that its dialogs colour their controls with, and the bold
/// font of the About dialog. Counts what the DLL makes and does not delete, for its lifetime. One at a time.
class CKeptObjects
{
public:
    explicit CKeptObjects(HMODULE module);
    ~CKeptObjects();
    CKeptObjects(const CKeptObjects&) = delete;
    CKeptObjects& operator=(const CKeptObjects&) = delete;

    /// Those that still exist: some controls of Wine's delete the brush that they were given.
    long long Brushes() const;
    long long Fonts() const;
    /// All that were made and not deleted by the DLL.
    long long BrushesMade() const { return static_cast<long long>(m_brushes.size()); }
    /// Deletes them all, for the test's next part.
    void Discard();

private:
    static HBRUSH WINAPI OnCreateSolidBrush(COLORREF colour);
    static HFONT WINAPI OnCreateFontIndirect(const LOGFONTW* description);
    static BOOL WINAPI OnDeleteObject(HGDIOBJ object);

    static CKeptObjects* s_current;

    std::vector<HGDIOBJ> m_brushes;
    std::vector<HGDIOBJ> m_fonts;
    CImportHook m_createBrush;
    CImportHook m_createFont;
    CImportHook m_delete;
};

} // namespace orva::test
