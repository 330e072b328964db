// The cases that call the product's functions directly.
#pragma once

#include <string>

namespace orva::bench
{

/// CheckForUpdate with nothing newer published, compared with BareGet of the same file and the same debugger
/// lines.
void MeasureCheck();

/// All English texts by LoadString, compared with LoadStringW of the same table.
void MeasureLoadString();

/// Reading the update-information file `large`, compared with reading `small`.
void MeasureJson(const std::wstring& small, const std::wstring& large);

/// The download of `url`, `mebibytes` large, into `file` by the dialog, compared with BareDownload with the
/// same size of reads.
void MeasureDownload(const std::wstring& url, const std::wstring& file, double mebibytes);

/// A point of the curve "check": milliseconds for a check with a file of `kilobytes`.
void GrowCheck(double kilobytes);

/// A point of the curve "download": seconds for `mebibytes` by the dialog.
void GrowDownload(const std::wstring& url, const std::wstring& file, double mebibytes);

/// A point of the curve "log": seconds for writing `lines` lines.
void GrowLog(int lines);

} // namespace orva::bench
