// What Windows' own tool exports of everything a registration touches, before and after, and how the two
// differ.
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
    /// Runs reg.exe on all that a registration is known to touch, in both hives; in the thorough run on the
    /// whole of both. Throws std::runtime_error if reg.exe fails on a key that is there. The 32-bit view is
    /// left out: it is the system's own affair.
    static CRegistrationExport Take();

    const std::set<std::string>& Lines() const { return m_lines; }

    /// How this one differs from an earlier one, in words: what is more or less, counted by what it belongs
    /// to. The same registry gives "nothing".
    std::string DifferenceFrom(const CRegistrationExport& before) const;

private:
    void Add(const std::wstring& key);

    std::set<std::string> m_lines;
};

} // namespace orva::test
