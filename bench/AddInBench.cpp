// Measures one case with the built DLL: AddInBench.exe CASE [ARGUMENT]. bench/cases-lib.sh has the calls.
#include "bench/AddInCases.h"
#include "bench/Samples.h"
#include "harness/Files.h"
#include "outlook/AddInModule.h"

#include <objbase.h>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace orva::bench
{

namespace
{

void Run(const std::string& name, const std::string& argument)
{
    const AddInPaths paths{test::BuiltFile(test::kAddInModule), test::BuiltFile(L"EmptyAddIn.dll")};
    if (name == "start-cold")
    {
        DemandThatOutlooksLibrariesAreMissing();
    }
    else
    {
        LoadWhatOutlookLoads();
    }
    if (name == "start" || name == "start-cold")
    {
        MeasureStart(name, paths);
    }
    else if (name == "memory")
    {
        const bool isProduct = argument == kProduct;
        MeasureMemory(isProduct ? paths.product : paths.empty, isProduct ? kProduct : kBaseline);
    }
    else if (name == "custom-ui")
    {
        MeasureCustomUi(paths);
    }
    else if (name == "check-log")
    {
        MeasureLogSwitch(paths);
    }
    else if (name == "share")
    {
        MeasureShare(argument, paths);
    }
    else
    {
        throw std::runtime_error("no such case");
    }
}

} // namespace

} // namespace orva::bench

int main(int count, char** arguments)
{
    if (count < 2)
    {
        static_cast<void>(std::fprintf(stderr, "usage: AddInBench.exe CASE [ARGUMENT]\n"));
        return 2;
    }
    CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
    try
    {
        orva::bench::Run(arguments[1], count > 2 ? arguments[2] : "");
    }
    catch (const std::exception& exception)
    {
        static_cast<void>(std::fprintf(stderr, "AddInBench %s: %s\n", arguments[1], exception.what()));
        return 1;
    }
    CoUninitialize();
    return 0;
}
