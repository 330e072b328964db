// The download dialog.
#include "bench/BareRequest.h"
#include "bench/InsideCases.h"
#include "bench/Samples.h"
#include "bench/TimedDownload.h"
#include "bench/Turns.h"

#include <afxinet.h>

#include <stdexcept>

namespace orva::bench
{

namespace
{

// Each takes ten seconds and more.
constexpr int kRounds = 5;
constexpr DWORD kChunk = 1024;

double TimeBareDownload(const std::wstring& url, const std::wstring& file)
{
    DWORD service = 0;
    CString host;
    CString path;
    INTERNET_PORT port = 0;
    if (!AfxParseURL(url.c_str(), service, host, path, port))
    {
        throw std::runtime_error("the URL");
    }
    const double start = Now();
    BareDownload(host.GetString(), port, path.GetString(), file, kChunk);
    return Now() - start;
}

void RemoveDownload(const std::wstring& file, double mebibytes)
{
    WIN32_FILE_ATTRIBUTE_DATA data{};
    GetFileAttributesExW(file.c_str(), GetFileExInfoStandard, &data);
    const ULONGLONG size = static_cast<ULONGLONG>(data.nFileSizeHigh) << 32 | data.nFileSizeLow;
    DeleteFileW(file.c_str());
    if (static_cast<double>(size) != mebibytes * 1024 * 1024)
    {
        throw std::runtime_error("the file is not complete");
    }
}

} // namespace

void MeasureDownload(const std::wstring& url, const std::wstring& file, double mebibytes)
{
    // The first round is a warm-up and does not count.
    for (int round = -1; round < kRounds; ++round)
    {
        const double byDialog = mebibytes / TimeDownload(url, file);
        RemoveDownload(file, mebibytes);
        const double byBareLoop = mebibytes / TimeBareDownload(url, file);
        RemoveDownload(file, mebibytes);
        if (round >= 0)
        {
            AddSample("download", kProduct, byDialog);
            AddSample("download", kBaseline, byBareLoop);
        }
    }
}

void GrowDownload(const std::wstring& url, const std::wstring& file, double mebibytes)
{
    const double seconds = TimeDownload(url, file);
    AddPoint("download", mebibytes, seconds);
    RemoveDownload(file, mebibytes);
}

} // namespace orva::bench
