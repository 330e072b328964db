// Localized texts and the update-information file.
#include "bench/InsideCases.h"
#include "bench/Samples.h"
#include "bench/Turns.h"
#include "res/resource.h"
#include "ui/LocalizedResources.h"

#include <json_spirit.h>

#include <map>
#include <stdexcept>

namespace orva::bench
{

namespace
{

constexpr UINT kFirstText = IDS_CANCEL;
constexpr UINT kLastText = IDS_LINK3_HREF;
constexpr int kLongestText = 512;
constexpr int kOffice2010 = 14;

// A character that no text holds: the pass goes to the end.
constexpr wchar_t kNowhere = L'\xFFFF';

struct UpdateInfo
{
    std::wstring text;
    json_spirit::wmObject members;
};

// All texts by the product; their length together.
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
    const HANDLE file =
        CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        throw std::runtime_error("an update-information file");
    }
    std::string bytes(GetFileSize(file, nullptr), '\0');
    DWORD read = 0;
    ReadFile(file, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr);
    CloseHandle(file);
    // The files of the measurement are ASCII.
    return std::wstring(bytes.begin(), bytes.begin() + read);
}

// All members of all objects, as the keys of one map.
void CollectMembers(const json_spirit::wmObject& object, json_spirit::wmObject& members)
{
    for (const auto& [name, value] : object)
    {
        members[name];
        if (value.type() == json_spirit::obj_type)
        {
            CollectMembers(value.get_obj(), members);
        }
    }
}

UpdateInfo ReadUpdateInfo(const std::wstring& path)
{
    UpdateInfo info{ReadText(path), {}};
    json_spirit::wmValue root;
    json_spirit::read_or_throw(info.text, root);
    CollectMembers(root.get_obj(), info.members);
    return info;
}

TimedWork Reading(const UpdateInfo& info)
{
    return Timed([&info] {
        json_spirit::wmValue root;
        json_spirit::read_or_throw(info.text, root);
    });
}

TimedWork PassAndInsertions(const UpdateInfo& info)
{
    return Timed([&info] {
        if (std::char_traits<wchar_t>::find(info.text.data(), info.text.size(), kNowhere) != nullptr)
        {
            throw std::runtime_error("the text holds a character that it must not hold");
        }
        json_spirit::wmObject members;
        for (const auto& [name, value] : info.members)
        {
            members.emplace(name, json_spirit::wmValue());
        }
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
    const UpdateInfo smallInfo = ReadUpdateInfo(small);
    const UpdateInfo largeInfo = ReadUpdateInfo(large);
    TakeTurns("json-1", Reading(smallInfo), PassAndInsertions(smallInfo));
    TakeTurns("json-250", Reading(largeInfo), PassAndInsertions(largeInfo));
    TakeTurns("json-growth", Reading(largeInfo), Reading(smallInfo));
}

} // namespace orva::bench
