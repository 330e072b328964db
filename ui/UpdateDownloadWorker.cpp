// The download dialog's part on the worker thread: the request, the file and the progress texts.
#include "ui/LocalizedResources.h"
#include "ui/UpdateDownloadDlg.h"

#include <array>
#include <limits>

namespace
{

constexpr DWORD kChunkSize = 1024;
constexpr DWORD kInfoCharacters = 16;
constexpr int kHttpOk = 200;

// Rate and remaining time are drawn at most once in this many milliseconds.
constexpr DWORD kRateInterval = 1000;

// The size texts count in 1024 bytes. The rate is shown in bytes per millisecond, so its "kb" is 1000 bytes.
constexpr int kKbShift = 10;

constexpr DWORD kRequestFlags =
    INTERNET_FLAG_RELOAD | INTERNET_FLAG_NO_CACHE_WRITE | INTERNET_FLAG_KEEP_CONNECTION;
constexpr wchar_t kAcceptEncoding[] = L"Accept-Encoding: identity, *;q=0\r\n";
constexpr wchar_t kUserAgent[] = L"User-Agent: ORVA OSC Outlook Add-In\r\n";
constexpr DWORD kTerminated = static_cast<DWORD>(-1);

// Truncates towards zero. A number beyond the range of int, as a wrong length from the server may give,
// becomes the nearest int: its conversion would be undefined.
int TruncateToInt(double value)
{
    constexpr double kMinimum = std::numeric_limits<int>::min();
    constexpr double kMaximum = std::numeric_limits<int>::max();
    if (!(value > kMinimum))
    {
        return std::numeric_limits<int>::min();
    }
    return value < kMaximum ? static_cast<int>(value) : std::numeric_limits<int>::max();
}

// One header as text. False when the response has none or it does not fit.
bool QueryText(HINTERNET request, DWORD level, std::array<wchar_t, kInfoCharacters>& text)
{
    text.fill(L'\0');
    DWORD size = sizeof(text);
    return HttpQueryInfoW(request, level, text.data(), &size, nullptr) != FALSE;
}

CString ConnectError()
{
    return GetLocalizedResources().LoadString(IDS_CONNECT_ERROR);
}

// Whether `operation` ended without a CFileException. If not, `osError` is the system's error code.
template <typename Operation> bool RunFileOperation(Operation operation, int& osError)
{
    try
    {
        operation();
        return true;
    }
    catch (CFileException* exception)
    {
        osError = static_cast<int>(exception->m_lOsError);
        exception->Delete();
        return false;
    }
}

// Whether `operation` ended without an exception. Nothing is logged: only the UI thread writes to the log.
template <typename Operation> bool EndsWithoutException(Operation operation) noexcept
{
    try
    {
        operation();
        return true;
    }
    catch (CException* exception)
    {
        exception->Delete();
        return false;
    }
    catch (...)
    {
        return false;
    }
}

} // namespace

UINT CUpdateDownloadDlg::WorkerThread(LPVOID dialog)
{
    auto* const self = static_cast<CUpdateDownloadDlg*>(dialog);
    // Only this message ends the dialog, so it is posted even if FailWithError fails too.
    if (!EndsWithoutException([self] { self->Download(); }) &&
        !EndsWithoutException([self] { self->FailWithError(ConnectError()); }))
    {
        self->PostFinished(kDownloadFailed);
    }
    return 0;
}

void CUpdateDownloadDlg::Download()
{
    if (!OpenRequest() || !SendRequest())
    {
        return;
    }
    DWORD total = 0;
    const bool lengthKnown = QueryLength(total);
    SetStatusText(GetLocalizedResources().LoadString(IDS_DOWNLOAD_STARTED));
    if (ReceiveBody(lengthKnown, total))
    {
        FinishFile();
    }
}

bool CUpdateDownloadDlg::OpenRequest()
{
    m_hInternet = InternetOpenW(AfxGetAppName(), INTERNET_OPEN_TYPE_PRECONFIG, nullptr, nullptr, 0);
    if (m_hInternet == nullptr)
    {
        FailWithError(ConnectError());
        return false;
    }
    if (EndIfCancelled())
    {
        return false;
    }
    m_hConnect = InternetConnectW(m_hInternet, m_server, m_port, nullptr, nullptr, m_serviceType, 0, 0);
    if (m_hConnect == nullptr)
    {
        FailWithError(ConnectError());
        return false;
    }
    if (EndIfCancelled())
    {
        return false;
    }
    LPCWSTR acceptTypes[] = {L"*/*", nullptr};
    m_hRequest =
        HttpOpenRequestW(m_hConnect, nullptr, m_object, nullptr, nullptr, acceptTypes, kRequestFlags, 0);
    if (m_hRequest == nullptr)
    {
        FailWithError(ConnectError());
        return false;
    }
    return !EndIfCancelled();
}

// Sends the request and checks the status; any other than 200 is a failure.
bool CUpdateDownloadDlg::SendRequest()
{
    HttpAddRequestHeadersW(m_hRequest, kAcceptEncoding, kTerminated, HTTP_ADDREQ_FLAG_ADD);
    HttpAddRequestHeadersW(m_hRequest, kUserAgent, kTerminated, HTTP_ADDREQ_FLAG_ADD);
    if (!HttpSendRequestW(m_hRequest, nullptr, 0, nullptr, 0))
    {
        FailWithError(ConnectError());
        return false;
    }
    std::array<wchar_t, kInfoCharacters> text;
    if (!QueryText(m_hRequest, HTTP_QUERY_STATUS_CODE, text))
    {
        // Unlike after every other failure the file stays open and on disk. Kept on purpose.
        FailWithMessage(ConnectError());
        return false;
    }
    const int status = _wtol(text.data());
    if (status != kHttpOk)
    {
        FailWithError(ConnectError(), status);
        return false;
    }
    // Queried but not used: the request allows no other coding than identity.
    QueryText(m_hRequest, HTTP_QUERY_CONTENT_ENCODING, text);
    return true;
}

// False when the server sends no length, 0, or one that is not a number.
bool CUpdateDownloadDlg::QueryLength(DWORD& total) const
{
    std::array<wchar_t, kInfoCharacters> text;
    if (!QueryText(m_hRequest, HTTP_QUERY_CONTENT_LENGTH, text))
    {
        return false;
    }
    total = static_cast<DWORD>(_wtol(text.data()));
    return total != 0;
}

// Reads until the end of the data or until m_cancelled is set. False when it has failed and reported it.
bool CUpdateDownloadDlg::ReceiveBody(bool lengthKnown, DWORD total)
{
    const DWORD start = GetTickCount();
    Progress progress{start, start, 0, 0, 0, lengthKnown, total};
    std::array<char, kChunkSize> chunk;
    do
    {
        DWORD read = 0;
        if (!InternetReadFile(m_hRequest, chunk.data(), kChunkSize, &read))
        {
            FailWithError(ConnectError());
            return false;
        }
        if (read == 0)
        {
            break;
        }
        if (!m_cancelled)
        {
            if (!WriteChunk(chunk.data(), read))
            {
                return false;
            }
            progress.received += read;
            UpdateProgress(progress);
        }
    } while (!m_cancelled);
    return true;
}

bool CUpdateDownloadDlg::WriteChunk(const void* data, DWORD size)
{
    int osError = 0;
    if (!RunFileOperation([&] { m_file.Write(data, size); }, osError))
    {
        FailWithError(ConnectError(), osError);
        return false;
    }
    return true;
}

void CUpdateDownloadDlg::FinishFile()
{
    int osError = 0;
    if (!RunFileOperation([&] { m_file.Close(); }, osError))
    {
        FailWithError(ConnectError(), osError);
        return;
    }
    if (m_cancelled)
    {
        DeleteFileW(m_filePath);
    }
    PostFinished(kDownloadSucceeded);
}

// After a cancel before the first byte, success is posted and the empty file stays. The dialog still ends
// with IDCANCEL, because m_cancelled is set.
bool CUpdateDownloadDlg::EndIfCancelled()
{
    if (!m_cancelled)
    {
        return false;
    }
    PostFinished(kDownloadSucceeded);
    return true;
}

void CUpdateDownloadDlg::UpdateProgress(Progress& progress)
{
    if (progress.lengthKnown)
    {
        const int percent = TruncateToInt(progress.received * 100.0 / progress.total);
        if (percent != progress.lastPercent)
        {
            SetPercent(percent);
            progress.lastPercent = percent;
        }
    }
    const DWORD now = GetTickCount();
    const DWORD elapsed = now - progress.lastTick;
    if (elapsed <= kRateInterval)
    {
        return;
    }
    SetRate(static_cast<double>(progress.received - progress.lastReceived) / elapsed);
    progress.lastTick = now;
    progress.lastReceived = progress.received;
    if (progress.lengthKnown && progress.received != 0)
    {
        const double perByte =
            (static_cast<double>(now) - static_cast<double>(progress.start)) / progress.received;
        const DWORD remaining = progress.total - progress.received;
        SetTimes(TruncateToInt(perByte * remaining / 1000.0), progress.received, progress.total);
    }
}

void CUpdateDownloadDlg::SetStatusText(const CString& text)
{
    m_statusText.SetWindowText(text);
}

void CUpdateDownloadDlg::SetPercent(int percent)
{
    CString number;
    number.Format(L"%d", percent);
    CString caption;
    caption.Format(GetLocalizedResources().LoadString(IDS_DOWNLOAD_PERCENT), number.GetString(),
                   m_fileName.GetString());
    SetWindowText(caption);
    m_progress.SetPos(percent);
}

void CUpdateDownloadDlg::SetTimes(int seconds, DWORD received, DWORD total)
{
    CString sizes;
    sizes.Format(GetLocalizedResources().LoadString(IDS_KB_OF_KB), static_cast<int>(received >> kKbShift),
                 static_cast<int>(total >> kKbShift));
    CString text;
    text.Format(GetLocalizedResources().LoadString(IDS_SECONDS_COMPLETE), seconds, sizes.GetString());
    m_timeText.SetWindowText(text);
}

void CUpdateDownloadDlg::SetRate(double rate)
{
    CString text;
    text.Format(GetLocalizedResources().LoadString(IDS_KB_PER_SECOND), TruncateToInt(rate));
    m_rateText.SetWindowText(text);
}

// `code`, an HTTP status or a system error, is not used.
void CUpdateDownloadDlg::FailWithError(const CString& message, int /*code*/)
{
    m_errorText = message;
    int osError = 0;
    RunFileOperation([&] { m_file.Close(); }, osError);
    DeleteFileW(m_filePath);
    PostFinished(kDownloadFailed);
}

void CUpdateDownloadDlg::FailWithMessage(const CString& message)
{
    m_errorText = message;
    PostFinished(kDownloadFailed);
}

void CUpdateDownloadDlg::PostFinished(WPARAM result)
{
    PostMessage(WM_DOWNLOAD_FINISHED, result, 0);
}
