// The cases that call the product's functions where they are.
#pragma once

#include <string>

namespace orva::bench
{

/// CheckForUpdate with a file that names nothing newer, against BareGet of the same file and the same lines
/// for the debugger.
void MeasureCheck();

/// All texts in English by LoadString, against LoadStringW of the same table.
void MeasureLoadString();

/// Reading the update-information file `large` against reading the file `small`.
void MeasureJson(const std::wstring& small, const std::wstring& large);

/// The download of `url`, `mebibytes` large, into `file` by the dialog, against a bare loop with the same
/// size of reads.
void MeasureDownload(const std::wstring& url, const std::wstring& file, double mebibytes);

/// A point of the curve "check": milliseconds for a check with a file of `kilobytes`.
void GrowCheck(double kilobytes);

/// A point of the curve "download": seconds for `mebibytes` by the dialog.
void GrowDownload(const std::wstring& url, const std::wstring& file, double mebibytes);

/// A point of the curve "log": seconds for so many lines.
void GrowLog(int lines);

} // namespace orva::bench
