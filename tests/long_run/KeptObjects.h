// Counts the GDI objects that a module creates and does not delete.
#pragma once

#include "harness/ImportHook.h"

#include <vector>

namespace orva::test
{

/// Counts brushes and fonts during its lifetime, and deletes them at its end: the add-in leaves its dialogs'
/// brushes and the bold font of the About dialog on purpose. One object at a time.
class CKeptObjects
{
public:
    explicit CKeptObjects(HMODULE module);
    ~CKeptObjects();
    CKeptObjects(const CKeptObjects&) = delete;
    CKeptObjects& operator=(const CKeptObjects&) = delete;

    /// Those that still exist: some of Wine's controls delete the brush that they were given.
    long long Brushes() const;
    long long Fonts() const;
    /// Deletes them all.
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
