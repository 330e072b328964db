#include "json_spirit_reader_template.h"

namespace json_spirit
{
void read_or_throw(const std::wstring& text, wmValue& value)
{
    Reader<wmValue>(text, value).read_or_throw();
}
} // namespace json_spirit
