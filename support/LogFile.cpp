#include "support/LogFile.h"

#include "support/FileUtilities.h"
#include "support/RegistryUtilities.h"

#include <fcntl.h>
#include <io.h>
#include <share.h>
#include <sys/stat.h>

#include <cstdint>
#include <string>

namespace
{
constexpr wchar_t kSwitchKey[] = L"SOFTWARE\\ORVA Connector";
constexpr wchar_t kSwitchName[] = L"EnableDebugLog";
constexpr std::int32_t kSwitchOn = 1;
constexpr wchar_t kFileName[] = L"logfile_OrvaAddIn.txt";

// A larger file is emptied when it is opened. It may grow beyond this while it stays open.
constexpr std::int32_t kLargestKeptFile = 0x100000;
} // namespace

CLogFile::CLogFile() noexcept
{
    try
    {
        Open();
    }
    catch (...)
    {
        // No failure of the log reaches its caller: the file stays closed.
    }
}

CLogFile::~CLogFile()
{
    if (IsOpen())
    {
        _close(m_file);
    }
}

void CLogFile::Write(std::string_view text)
{
    // The result counts line feeds as one byte, although two are written.
    if (IsOpen() && !m_hasFailed)
    {
        m_hasFailed =
            _write(m_file, text.data(), static_cast<unsigned>(text.size())) != static_cast<int>(text.size());
    }
}

void CLogFile::Open()
{
    if (ReadRegistryDword(kSwitchKey, kSwitchName) != kSwitchOn)
    {
        return;
    }
    const std::wstring folder = GetAppDataFolder();
    if (folder.empty())
    {
        return;
    }

    const std::wstring path = folder + kFileName;
    CreateDirectoriesForPath(path, true);
    const int keepOrEmpty = GetExistingFileSize(path) <= kLargestKeptFile ? _O_APPEND : _O_TRUNC;

    // By its wide path, for profiles whose names the code page does not know.
    m_file =
        _wsopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_TEXT | keepOrEmpty, _SH_DENYNO, _S_IREAD | _S_IWRITE);
}
