// The modal dialog that downloads an installer on a worker thread and shows the progress.
#pragma once

#include "res/resource.h"

#include <afxcmn.h>
#include <afxwin.h>

#include <wininet.h>

#include <atomic>

/// Posted by the worker when the download has ended; wParam is one of kDownloadSucceeded and kDownloadFailed,
/// lParam 0. In the WM_APP range, which neither Windows nor the dialog manager uses.
constexpr UINT WM_DOWNLOAD_FINISHED = WM_APP + 1;
constexpr WPARAM kDownloadSucceeded = 0;
constexpr WPARAM kDownloadFailed = 1;

/// Downloads `m_url` into `m_filePath`. The caller sets both and runs DoModal, which returns IDOK only when
/// the download has run to its end. A failure of the request or the file has been shown by then; a cancel, a
/// link that is no URL and a thread that cannot be started show nothing.
///
/// Two threads take part. The UI thread runs the dialog and its message handlers. The worker (Download, and
/// the operations below it) makes the request, writes the file and sets control texts directly; a control's
/// text is set by a message sent to the UI thread, so that thread must go on taking sent messages as long as
/// the worker runs. At its end the worker posts WM_DOWNLOAD_FINISHED. To stop it, the UI thread sets
/// m_cancelled and closes the WinINet handles, which makes a pending read fail. OnDestroy joins the worker,
/// so it never outlives the dialog. m_errorText is written by the worker before it posts, and read by the UI
/// thread only after that. There are no locks.
class CUpdateDownloadDlg : public CDialog
{
public:
    CUpdateDownloadDlg();

    enum
    {
        IDD = IDD_UPDATE_DOWNLOAD
    };

    CString m_url;
    CString m_filePath;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    BOOL OnInitDialog() override;
    void OnOK() override;
    void OnCancel() override;
    afx_msg void OnDestroy();
    afx_msg void OnClose();
    afx_msg LRESULT OnDownloadFinished(WPARAM wParam, LPARAM lParam);
    DECLARE_MESSAGE_MAP()

private:
    /// What UpdateProgress keeps from one chunk to the next. Times are GetTickCount milliseconds, counts are
    /// bytes.
    struct Progress
    {
        DWORD start;
        DWORD lastTick;
        DWORD received;
        DWORD lastReceived;
        int lastPercent;
        bool lengthKnown;
        DWORD total;
    };

    // UI thread.
    bool OpenTargetFile();
    bool StartWorker();
    void ShowSource();
    void CloseInternetHandles();
    void DisableCancelButton();
    void JoinWorker();

    // Worker thread.
    static UINT WorkerThread(LPVOID dialog);
    void Download();
    bool OpenRequest();
    bool SendRequest();
    bool QueryLength(DWORD& total) const;
    bool ReceiveBody(bool lengthKnown, DWORD total);
    bool WriteChunk(const void* data, DWORD size);
    void FinishFile();
    bool EndIfCancelled();
    void UpdateProgress(Progress& progress);
    void SetStatusText(const CString& text);
    void SetPercent(int percent);
    void SetTimes(int seconds, DWORD received, DWORD total);
    void SetRate(double rate);
    void FailWithError(const CString& message, int code = 0);
    void FailWithMessage(const CString& message);
    void PostFinished(WPARAM result);

    CStatic m_statusText;
    CStatic m_rateText;
    CStatic m_timeText;
    CProgressCtrl m_progress;
    CStatic m_sourceText;
    CString m_errorText;
    CString m_server;
    CString m_object;
    CString m_fileName;
    INTERNET_PORT m_port;
    DWORD m_serviceType;
    std::atomic<HINTERNET> m_hInternet;
    std::atomic<HINTERNET> m_hConnect;
    std::atomic<HINTERNET> m_hRequest;
    std::atomic<BOOL> m_cancelled;
    BOOL m_finished;
    CFile m_file;
    CWinThread* m_thread;
};
