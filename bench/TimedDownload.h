// The product's download dialog with a stopwatch.
#pragma once

#include "ui/UpdateDownloadDlg.h"

#include <string>

namespace orva::bench
{

/// Downloads `url` into `file` and returns the seconds from the opening of the dialog to the worker's last
/// message. The second for which the dialog goes on showing its last state is not among them. Throws
/// std::runtime_error if the download did not succeed.
double TimeDownload(const std::wstring& url, const std::wstring& file);

} // namespace orva::bench
