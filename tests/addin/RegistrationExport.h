// The registry as reg.exe exports it, before and after a registration, and how the two differ.
#pragma once

#include <set>
#include <string>
#include <vector>

namespace orva::test
{

/// The lines of one or several exports: "[KEY]" for a key and "[KEY] "name"=data" for a value.
class CRegistrationExport
{
public:
    /// Exports the keys that a registration touches, in both hives; in the thorough run both hives as a
    /// whole. The 32-bit view, which the system maintains, is left out. Throws std::runtime_error if reg.exe
    /// fails on an existing key.
    static CRegistrationExport Take();

    const std::set<std::string>& Lines() const { return m_lines; }

    /// The difference from an earlier export in words: added (+) and removed (-) keys and values, counted per
    /// tree; "nothing" if there is none.
    std::string DifferenceFrom(const CRegistrationExport& before) const;

private:
    void Add(const std::wstring& key);

    std::set<std::string> m_lines;
};

} // namespace orva::test
