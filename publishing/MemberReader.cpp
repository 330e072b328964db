#include "publishing/MemberReader.h"

#include "publishing/Names.h"

namespace publishing
{
namespace
{

// In the order of Value_type.
constexpr const wchar_t* kTypes[] = {L"an object",     L"an array",   L"a text",
                                     L"a truth value", L"an integer", L"a number with a point or an exponent",
                                     L"null"};

} // namespace

const json_spirit::wmValue* FindMember(const json_spirit::wmObject& object, const std::wstring& path,
                                       const std::wstring& name, json_spirit::Value_type type,
                                       CFindings& findings)
{
    const auto found = object.find(name);
    if (found == object.end())
    {
        findings.Error("missing", JoinPath(path, name), L"is missing");
        return nullptr;
    }
    return CheckType(found->second, JoinPath(path, name), type, findings) ? &found->second : nullptr;
}

bool CheckType(const json_spirit::wmValue& value, const std::wstring& path, json_spirit::Value_type type,
               CFindings& findings)
{
    if (value.type() == type)
    {
        return true;
    }
    findings.Error("wrong-type", path,
                   std::wstring(path.empty() ? L"the file is " : L"is ") + kTypes[value.type()] +
                       L", and has to be " + kTypes[type]);
    return false;
}

} // namespace publishing
