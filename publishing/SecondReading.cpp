#include "publishing/SecondReading.h"

#include "publishing/Text.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string_view>
#include <vector>

namespace publishing
{
namespace
{

using nlohmann::json;

// Hears of every value in the order of the text.
class CReading : public nlohmann::json_sax<json>
{
public:
    CReading(const std::string& utf8, bool isRead, CFindings& findings)
        : m_utf8(utf8), m_isRead(isRead), m_findings(findings)
    {
    }

    bool null() override { return Value(); }
    bool boolean(bool) override { return Value(); }
    bool number_integer(number_integer_t) override { return Value(); }
    bool number_unsigned(number_unsigned_t) override { return Value(); }
    bool number_float(number_float_t, const string_t&) override { return Value(); }
    bool string(string_t&) override { return Value(); }
    bool binary(binary_t&) override { return Value(); }
    bool start_object(std::size_t) override { return Open({}); }
    bool start_array(std::size_t) override { return Open({.isArray = true, .name = L"[0]"}); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }

    bool key(string_t& name) override
    {
        CLevel& level = m_open.back();
        level.name = Wide(name);
        if (!level.names.insert(level.name).second && level.reported.insert(level.name).second)
        {
            m_findings.Error("duplicate-name", Path(), L"stands more than once: the add-in takes the last");
        }
        return true;
    }

    bool parse_error(std::size_t position, const std::string&, const json::exception&) override
    {
        if (m_isRead)
        {
            const std::string_view before =
                std::string_view(m_utf8).substr(0, position - std::min<std::size_t>(position, 1));
            const std::wstring text = Wide(m_utf8);
            const std::size_t index = Wide(before).size();
            m_findings.Error(
                "not-json", {},
                PlaceOf(text, index) + L": " + WhatStandsAt(text, index) +
                    L" is not JSON here, although the add-in reads it; what follows could not be checked");
        }
        return false;
    }

private:
    // An array or object that is open.
    struct CLevel
    {
        bool isArray = false;
        /// Of the member, or of the element, "[0]".
        std::wstring name = {};
        std::size_t index = 0;
        std::set<std::wstring> names = {};
        std::set<std::wstring> reported = {};
    };

    bool Open(CLevel level)
    {
        m_open.push_back(std::move(level));
        return true;
    }

    bool Close()
    {
        m_open.pop_back();
        return Value();
    }

    // After a value: it may be the file's, or an element of an array.
    bool Value()
    {
        if (!m_open.empty() && m_open.back().isArray)
        {
            m_open.back().name = L"[" + std::to_wstring(++m_open.back().index) + L"]";
        }
        return true;
    }

    std::wstring Path() const
    {
        std::wstring path;
        for (const CLevel& level : m_open)
        {
            path += path.empty() || level.isArray ? level.name : L"." + level.name;
        }
        return path;
    }

    const std::string& m_utf8;
    bool m_isRead;
    CFindings& m_findings;
    std::vector<CLevel> m_open;
};

} // namespace

void CheckBySecondReading(const std::wstring& text, bool isRead, CFindings& findings)
{
    const std::string utf8 = Utf8(text);
    std::istringstream stream(utf8);
    CReading reading(utf8, isRead, findings);
    constexpr bool kUpToTheEnd = false;
    if (!json::sax_parse(stream, &reading, json::input_format_t::json, kUpToTheEnd) || !isRead)
    {
        return;
    }
    const std::streamsize rest = stream.rdbuf()->in_avail();
    const std::wstring read =
        Wide(std::string_view(utf8).substr(0, utf8.size() - static_cast<std::size_t>(rest)));
    if (const std::size_t index = SkipWhiteSpace(text, read.size()); index < text.size())
    {
        findings.Error("text-after-value", {},
                       PlaceOf(text, index) + L": " + WhatStandsAt(text, index) +
                           L" stands behind the end of the value");
    }
}

} // namespace publishing
