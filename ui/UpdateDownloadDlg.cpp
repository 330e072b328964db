#include "ui/UpdateDownloadDlg.h"

#include "ui/DownloadPaths.h"
#include "ui/FileName.h"
#include "ui/LocalizedResources.h"

#include <afxinet.h>

namespace
{

constexpr short kProgressMaximum = 100;

// How long the final state stays visible before the dialog closes.
constexpr DWORD kFinalStateMilliseconds = 1000;

// The part of a URL's object after its last "/" or, if it has none, after its last "\"; the whole object if
// it has neither or at most one character.
CString FileNameOfObject(const CString& object)
{
    int separator = object.ReverseFind(L'/');
    if (separator < 0)
    {
        separator = object.ReverseFind(L'\\');
    }
    return separator < 0 || object.GetLength() <= 1 ? object : object.Mid(separator + 1);
}

void CloseInternetHandle(std::atomic<HINTERNET>& handle)
{
    if (const HINTERNET open = handle.exchange(nullptr))
    {
        InternetCloseHandle(open);
    }
}

} // namespace

CUpdateDownloadDlg::CUpdateDownloadDlg()
    : CDialog(CUpdateDownloadDlg::IDD, nullptr), m_port(0), m_serviceType(0), m_hInternet(nullptr),
      m_hConnect(nullptr), m_hRequest(nullptr), m_cancelled(FALSE), m_finished(FALSE), m_thread(nullptr)
{
}

void CUpdateDownloadDlg::DoDataExchange(CDataExchange* pDX)
{
    CDialog::DoDataExchange(pDX);
    DDX_Control(pDX, IDC_DOWNLOAD_STATUS, m_statusText);
    DDX_Control(pDX, IDC_DOWNLOAD_RATE, m_rateText);
    DDX_Control(pDX, IDC_DOWNLOAD_TIME, m_timeText);
    DDX_Control(pDX, IDC_DOWNLOAD_PROGRESS, m_progress);
    DDX_Control(pDX, IDC_DOWNLOAD_SOURCE, m_sourceText);
}

BEGIN_MESSAGE_MAP(CUpdateDownloadDlg, CDialog)
    ON_WM_DESTROY()
    ON_WM_CLOSE()
    ON_MESSAGE(WM_DOWNLOAD_FINISHED, &CUpdateDownloadDlg::OnDownloadFinished)
END_MESSAGE_MAP()

BOOL CUpdateDownloadDlg::OnInitDialog()
{
    SetDlgItemText(IDCANCEL, GetLocalizedResources().LoadString(IDS_CANCEL));
    CDialog::OnInitDialog();

    if (!AfxParseURL(m_url, m_serviceType, m_server, m_object, m_port) || !OpenTargetFile())
    {
        EndDialog(IDCANCEL);
        return TRUE;
    }
    m_fileName = FileNameOfObject(m_object);
    ShowSource();
    m_progress.SetRange(0, kProgressMaximum);
    if (!StartWorker())
    {
        EndDialog(IDCANCEL);
    }
    return TRUE;
}

// Shows the reason itself and returns false when the file cannot be created.
bool CUpdateDownloadDlg::OpenTargetFile()
{
    if (IsPlainFileName(GetFileNameFromUrl(m_url).GetString()))
    {
        if (m_file.Open(m_filePath, CFile::modeCreate | CFile::modeWrite | CFile::shareDenyWrite))
        {
            return true;
        }
    }
    else
    {
        // The name would not give a file in the new folder. The error is the one of Windows for an invalid
        // file name.
        SetLastError(ERROR_INVALID_NAME);
    }
    const int error = static_cast<int>(GetLastError());
    CString message;
    message.Format(GetLocalizedResources().LoadString(IDS_FILE_NOT_CREATED), error);
    GetLocalizedResources().ShowMessage(m_hWnd, message);
    return false;
}

void CUpdateDownloadDlg::ShowSource()
{
    CString source;
    source.Format(GetLocalizedResources().LoadString(IDS_FILE_OF_SERVER), m_fileName.GetString(),
                  m_server.GetString());
    m_sourceText.SetWindowText(source);
    SetDlgItemText(IDC_DOWNLOAD_TIME_LABEL, GetLocalizedResources().LoadString(IDS_TIME_REMAINING));
    SetDlgItemText(IDC_DOWNLOAD_RATE_LABEL, GetLocalizedResources().LoadString(IDS_TRANSFER_RATE));
}

bool CUpdateDownloadDlg::StartWorker()
{
    m_thread = AfxBeginThread(WorkerThread, this, THREAD_PRIORITY_NORMAL, 0, CREATE_SUSPENDED);
    if (m_thread == nullptr)
    {
        return false;
    }
    // The dialog waits for the thread and deletes its object.
    m_thread->m_bAutoDelete = FALSE;
    m_thread->ResumeThread();
    return true;
}

// Without a default button Enter sends IDOK, which would end the dialog as if the file were complete and
// start a half-written installer.
void CUpdateDownloadDlg::OnOK() {}

void CUpdateDownloadDlg::OnCancel()
{
    if (m_finished)
    {
        return;
    }
    CloseInternetHandles();
    m_cancelled = TRUE;
    DisableCancelButton();
    m_statusText.SetWindowText(GetLocalizedResources().LoadString(IDS_DOWNLOAD_CANCELED));
}

void CUpdateDownloadDlg::OnClose()
{
    if (m_finished)
    {
        CDialog::OnClose();
        return;
    }
    m_cancelled = TRUE;
    DisableCancelButton();
}

LRESULT CUpdateDownloadDlg::OnDownloadFinished(WPARAM wParam, LPARAM)
{
    m_finished = TRUE;
    Sleep(kFinalStateMilliseconds);
    if (m_cancelled)
    {
        EndDialog(IDCANCEL);
    }
    else if (wParam == kDownloadSucceeded)
    {
        EndDialog(IDOK);
    }
    else
    {
        GetLocalizedResources().ShowMessage(m_hWnd, m_errorText);
        EndDialog(IDCANCEL);
    }
    return 0;
}

void CUpdateDownloadDlg::OnDestroy()
{
    if (m_thread != nullptr)
    {
        if (!m_finished)
        {
            // The window is destroyed during the download, for instance because its owner was. Without this
            // the wait could last as long as the server does not answer.
            CloseInternetHandles();
            m_cancelled = TRUE;
        }
        JoinWorker();
    }
    CloseInternetHandles();
    CDialog::OnDestroy();
}

// Waits for the worker without time limit and handles sent messages meanwhile. WaitForSingleObject alone
// would deadlock with a worker that is setting a control's text, because that sends a message to this thread.
void CUpdateDownloadDlg::JoinWorker()
{
    HANDLE thread = m_thread->m_hThread;
    while (MsgWaitForMultipleObjects(1, &thread, FALSE, INFINITE, QS_SENDMESSAGE) == WAIT_OBJECT_0 + 1)
    {
        MSG message;
        PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE | PM_QS_SENDMESSAGE);
    }
    WaitForSingleObject(thread, INFINITE);
    delete m_thread;
    m_thread = nullptr;
}

void CUpdateDownloadDlg::CloseInternetHandles()
{
    CloseInternetHandle(m_hRequest);
    CloseInternetHandle(m_hConnect);
    CloseInternetHandle(m_hInternet);
}

void CUpdateDownloadDlg::DisableCancelButton()
{
    if (CWnd* const button = GetDlgItem(IDCANCEL))
    {
        button->EnableWindow(FALSE);
    }
}
