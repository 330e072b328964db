// Measures one case with the product's classes: OrvaBench.exe CASE [ARGUMENTS]. bench/cases-lib.sh has the
// calls.
#include "bench/InsideCases.h"

#include <windows.h>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>
#include <vector>

namespace orva::bench
{

namespace
{

void Run(const std::wstring& name, const std::vector<std::wstring>& arguments)
{
    if (name == L"check")
    {
        MeasureCheck();
    }
    else if (name == L"load-string")
    {
        MeasureLoadString();
    }
    else if (name == L"json")
    {
        MeasureJson(arguments.at(0), arguments.at(1));
    }
    else if (name == L"download")
    {
        MeasureDownload(arguments.at(0), arguments.at(1), std::stod(arguments.at(2)));
    }
    else if (name == L"grow-check")
    {
        GrowCheck(std::stod(arguments.at(0)));
    }
    else if (name == L"grow-download")
    {
        GrowDownload(arguments.at(0), arguments.at(1), std::stod(arguments.at(2)));
    }
    else if (name == L"grow-log")
    {
        GrowLog(std::stoi(arguments.at(0)));
    }
    else
    {
        throw std::runtime_error("no such case");
    }
}

} // namespace

} // namespace orva::bench

int wmain(int count, wchar_t** values)
{
    if (count < 2)
    {
        static_cast<void>(std::fprintf(stderr, "usage: OrvaBench.exe CASE [ARGUMENTS]\n"));
        return 2;
    }
    try
    {
        orva::bench::Run(values[1], {values + 2, values + count});
    }
    catch (const std::exception& exception)
    {
        static_cast<void>(std::fprintf(stderr, "OrvaBench %ls: %s\n", values[1], exception.what()));
        return 1;
    }
    return 0;
}
