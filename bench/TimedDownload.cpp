#include "bench/TimedDownload.h"

#include "bench/Turns.h"

#include <stdexcept>

namespace orva::bench
{

namespace
{

class CTimedDownloadDlg : public CUpdateDownloadDlg
{
public:
    double Seconds() const { return m_end - m_start; }

protected:
    BOOL OnInitDialog() override
    {
        m_start = Now();
        return CUpdateDownloadDlg::OnInitDialog();
    }

    LRESULT WindowProc(UINT message, WPARAM wParam, LPARAM lParam) override
    {
        if (message == WM_DOWNLOAD_FINISHED)
        {
            m_end = Now();
        }
        return CUpdateDownloadDlg::WindowProc(message, wParam, lParam);
    }

private:
    double m_start = 0;
    double m_end = 0;
};

} // namespace

double TimeDownload(const std::wstring& url, const std::wstring& file)
{
    CTimedDownloadDlg dialog;
    dialog.m_url = url.c_str();
    dialog.m_filePath = file.c_str();
    if (dialog.DoModal() != IDOK)
    {
        throw std::runtime_error("the download failed");
    }
    return dialog.Seconds();
}

} // namespace orva::bench
