// Plays Outlook for one case: AddInBench.exe CASE [ARGUMENTS]. See bench/run for what is called how.
#include "bench/AddInCases.h"
#include "bench/Samples.h"

#include <objbase.h>

#include <cstdio>
#include <exception>
#include <stdexcept>
#include <string>

namespace orva::bench
{

namespace
{

std::wstring Beside(const wchar_t* name)
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    std::wstring folder(path);
    folder.erase(folder.rfind(L'\\') + 1);
    return folder + name;
}

void Run(const std::string& name, const std::string& argument)
{
    const AddInPaths paths{Beside(L"OrvaOscAddin.dll"), Beside(L"EmptyAddIn.dll"),
                           Beside(L"ManifestAddIn.dll")};
    if (name != "start-cold")
    {
        LoadWhatOutlookLoads();
    }
    if (name == "start" || name == "start-cold")
    {
        MeasureStart(name, paths);
    }
    else if (name == "start-steps")
    {
        MeasureStartSteps(paths);
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
