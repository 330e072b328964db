// The page of the gallery: a row for each window, a column for each language.
#pragma once

#include <string>

namespace orva::demo
{

/// The languages in the order of the columns.
inline constexpr const char* kGalleryLanguages[] = {"en", "de", "es", "tr"};

/// The file of a window's picture.
std::wstring GalleryPicture(const std::wstring& folder, const std::string& row, const std::string& language);
/// Why a language has no such window; null if it has one.
const char* WhyNoWindow(const std::string& row, const std::string& language);
/// Writes index.html for the pictures that there are. Returns how many of this language are missing.
int WriteGalleryPage(const std::wstring& folder, const std::string& language);

} // namespace orva::demo
