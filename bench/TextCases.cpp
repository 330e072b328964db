// Localized texts and the update-information file.
#include "bench/InsideCases.h"
#include "bench/Samples.h"
#include "bench/Turns.h"
#include "harness/Files.h"
#include "harness/Text.h"
#include "res/resource.h"
#include "ui/LocalizedResources.h"

#include <json_spirit.h>

#include <stdexcept>

namespace orva::bench
{

namespace
{

constexpr UINT kFirstText = IDS_CANCEL;
constexpr UINT kLastText = IDS_LINK3_HREF;
constexpr int kLongestText = 512;
constexpr int kOffice2010 = 14;

// Loads all texts with the product. Returns their total length.
int LoadByProduct()
{
    int length = 0;
    for (UINT id = kFirstText; id <= kLastText; ++id)
    {
        length += GetLocalizedResources().LoadString(id).GetLength();
    }
    return length;
}

int LoadBySystem()
{
    wchar_t text[kLongestText];
    int length = 0;
    for (UINT id = kFirstText; id <= kLastText; ++id)
    {
        length += LoadStringW(GetModuleHandleW(nullptr), id, text, kLongestText);
    }
    return length;
}

std::wstring ReadText(const std::wstring& path)
{
    const std::optional<std::string> bytes = test::ReadFileBytes(path);
    if (!bytes)
    {
        throw std::runtime_error("an update-information file");
    }
    return test::Widen(*bytes);
}

TimedWork Reading(const std::wstring& text)
{
    return Timed([&text] {
        json_spirit::wmValue root;
        json_spirit::read_or_throw(text, root);
    });
}

} // namespace

void MeasureLoadString()
{
    GetLocalizedResources().SetOfficeVersion(kOffice2010);
    if (LoadByProduct() != LoadBySystem())
    {
        throw std::runtime_error("the texts differ");
    }
    TakeTurns("load-string", Timed([] { LoadByProduct(); }), Timed([] { LoadBySystem(); }), {.rounds = 31});
}

void MeasureJson(const std::wstring& small, const std::wstring& large)
{
    const std::wstring smallText = ReadText(small);
    const std::wstring largeText = ReadText(large);
    TakeTurns("json-growth", Reading(largeText), Reading(smallText));
}

} // namespace orva::bench
