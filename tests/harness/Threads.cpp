#include "harness/Threads.h"

#include "harness/Waiting.h"

#include <tlhelp32.h>

namespace orva::test
{

std::set<DWORD> ThreadIds()
{
    const UniqueHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    std::set<DWORD> ids;
    for (BOOL more = Thread32First(snapshot.get(), &entry); more; more = Thread32Next(snapshot.get(), &entry))
    {
        if (entry.th32OwnerProcessID == GetCurrentProcessId())
        {
            ids.insert(entry.th32ThreadID);
        }
    }
    return ids;
}

} // namespace orva::test
