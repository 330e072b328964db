// Measures the product's download dialog.
#pragma once

#include "ui/UpdateDownloadDlg.h"

#include <string>

namespace orva::bench
{

/// Downloads `url` into `file`. Returns the seconds from the opening of the dialog to the worker's last
/// message, without the second for which the dialog then shows its last state. Throws std::runtime_error if
/// the download failed.
double TimeDownload(const std::wstring& url, const std::wstring& file);

} // namespace orva::bench
