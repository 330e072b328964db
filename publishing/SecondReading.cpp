#include "publishing/SecondReading.h"

#include "publishing/Text.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <set>
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

    bool parse_error(std::size_t position, const std::string& token, const json::exception&) override
    {
        if (m_isRead)
        {
            // The position is behind the token, which may hold what is not shown as it is.
            const std::size_t begin = position - std::min(position, std::max<std::size_t>(token.size(), 1));
            Report(Wide(m_utf8).size() -
                   Wide(std::string_view(m_utf8).substr(std::min(begin, m_utf8.size()))).size());
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
        if (m_open.empty())
        {
            m_isComplete = true;
        }
        else if (m_open.back().isArray)
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

    void Report(std::size_t index)
    {
        const std::wstring text = Wide(m_utf8);
        index = SkipWhiteSpace(text, index);
        const std::wstring there = PlaceOf(text, index) + L": " + WhatStandsAt(text, index);
        if (m_isComplete)
        {
            m_findings.Error("text-after-value", {}, there + L" stands behind the end of the value");
        }
        else
        {
            m_findings.Error(
                "not-json", {},
                there + L" is not JSON, although the add-in reads it; what follows could not be checked");
        }
    }

    const std::string& m_utf8;
    bool m_isRead;
    CFindings& m_findings;
    std::vector<CLevel> m_open;
    bool m_isComplete = false;
};

} // namespace

void CheckBySecondReading(const std::wstring& text, bool isRead, CFindings& findings)
{
    const std::string utf8 = Utf8(text);
    CReading reading(utf8, isRead, findings);
    json::sax_parse(utf8, &reading);
}

} // namespace publishing
