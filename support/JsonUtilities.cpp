#include "support/JsonUtilities.h"

const json_spirit::wmValue& FindValue(const json_spirit::wmObject& object, const std::wstring& name)
{
    static const json_spirit::wmValue null;
    const auto found = object.find(name);
    return found != object.end() ? found->second : null;
}

std::wstring GetStringValue(const json_spirit::wmObject& object, const std::wstring& name)
{
    const json_spirit::wmValue& value = FindValue(object, name);
    return value.is_null() ? std::wstring() : value.get_str();
}
