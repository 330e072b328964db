#include "publishing/Names.h"

#include "publishing/Text.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace publishing
{
namespace
{

struct CHint
{
    std::wstring_view name;
    const wchar_t* text;
};

// What people expect to work.
constexpr CHint kHints[] = {
    {L"en", L"English users read \"default\""},
    {L"x86", L"it is read by 32-bit add-ins only"},
};

std::wstring Lower(std::wstring_view name)
{
    std::wstring lower(name);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](wchar_t unit) {
        return unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit + 32) : unit;
    });
    return lower;
}

// The number of units to be inserted, removed or replaced to make one of the other.
std::size_t Distance(const std::wstring& left, const std::wstring& right)
{
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i)
    {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < right.size(); ++j)
        {
            const std::size_t replaced = diagonal + (left[i] == right[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
}

// Short names differ by a letter without meaning the same.
bool LooksLike(std::wstring_view name, std::wstring_view known)
{
    constexpr std::size_t kLongest = 64;
    constexpr std::size_t kShortest = 4;
    const std::wstring left = Lower(name);
    const std::wstring right = Lower(known);
    return left == right ||
           (left.size() <= kLongest && right.size() >= kShortest && Distance(left, right) <= 2);
}

std::wstring Suggestion(std::wstring_view name, std::initializer_list<std::wstring_view> known)
{
    const auto* const hint = std::ranges::find(kHints, name, &CHint::name);
    if (hint != std::end(kHints))
    {
        return std::wstring(L": ") + hint->text;
    }
    const auto* const meant =
        std::ranges::find_if(known, [&](std::wstring_view other) { return LooksLike(name, other); });
    return meant != known.end() ? L"; perhaps " + Quoted(*meant) + L" is meant" : std::wstring();
}

} // namespace

void CheckNames(const json_spirit::wmObject& object, const std::wstring& path,
                std::initializer_list<std::wstring_view> known, CFindings& findings)
{
    for (const auto& [name, value] : object)
    {
        if (std::ranges::find(known, std::wstring_view(name)) == known.end())
        {
            findings.Warning("unknown-name", JoinPath(path, name),
                             L"is a name that the add-in does not know" + Suggestion(name, known));
        }
    }
}

std::wstring JoinPath(const std::wstring& path, std::wstring_view name)
{
    return path.empty() ? std::wstring(name) : path + L"." + std::wstring(name);
}

} // namespace publishing
