#include "harness/Report.h"

#include "harness/Text.h"

#include <windows.h>

#include <algorithm>
#include <stdexcept>

namespace orva::test
{

bool IsThorough()
{
    // The length includes the terminator.
    return GetEnvironmentVariableW(L"ORVA_THOROUGH", nullptr, 0) > 1;
}

int Repetitions(int few, int many)
{
    return IsThorough() ? many : few;
}

void AddReportRow(std::string_view table, const std::vector<std::string>& cells)
{
    std::string line;
    for (const std::string& cell : cells)
    {
        std::string text = cell;
        std::ranges::replace_if(
            text, [](char character) { return character == '\t' || character == '\r' || character == '\n'; },
            ' ');
        line += (line.empty() ? "" : "\t") + text;
    }
    line += '\n';

    CreateDirectoryW(L"report", nullptr);
    // Opened for appending and written with one call, so that rows of concurrent programs do not mix.
    const std::wstring path = L"report\\" + Widen(table) + L".tsv";
    const HANDLE file = CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                    nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
    {
        throw std::runtime_error("cannot open the report " + Utf8(path));
    }
    DWORD written = 0;
    const BOOL isWritten = WriteFile(file, line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
    CloseHandle(file);
    if (!isWritten || written != line.size())
    {
        throw std::runtime_error("cannot write the report " + Utf8(path));
    }
}

} // namespace orva::test
