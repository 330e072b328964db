// Reads the built module's resources with the system's functions, without the add-in's code.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <vector>

namespace orva::test
{

/// The four languages of the texts.
inline constexpr WORD kEnglish = 1033;
inline constexpr WORD kGerman = 1031;
inline constexpr WORD kSpanish = 10;
inline constexpr WORD kTurkish = 31;
inline constexpr WORD kLanguages[] = {kEnglish, kGerman, kSpanish, kTurkish};

const char* LanguageName(WORD language);

/// The bytes of a resource of this program, in whatever language it is stored; nothing if there is none.
std::optional<std::vector<BYTE>> ReadResource(const wchar_t* type, WORD id);

/// The languages under which a resource is stored, ascending.
std::vector<WORD> ResourceLanguages(const wchar_t* type, WORD id);

/// A string of the table stored under exactly `language`; empty if there is none.
std::wstring ModuleString(WORD language, UINT id);

} // namespace orva::test
