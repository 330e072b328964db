// The user at the pages and messages of a setup and an uninstaller, in the language of Windows.
#pragma once

#include "harness/WindowDriver.h"

#include <string>

namespace orva::test
{

/// Controls of every page.
inline constexpr int kNext = 1;
inline constexpr int kCancel = 2;

/// The sentences of one language. {old} and {new} stand for the two versions, {folder} and {module} for the
/// installation's folder and the installed DLL.
struct CSetupTexts
{
    LANGID language;
    const wchar_t* caption;
    const wchar_t* installs;
    const wchar_t* install;
    const wchar_t* used;
    const wchar_t* replaces;
    const wchar_t* newCaption;
    const wchar_t* usesNew;
    const wchar_t* restart;
    const wchar_t* repairs;
    const wchar_t* repaired;
    const wchar_t* uninstallCaption;
    const wchar_t* logStays;
    const wchar_t* uninstall;
    const wchar_t* removed;
    const wchar_t* disappears;
    const wchar_t* newer;
    const wchar_t* busy;
    const wchar_t* nothingChanged;
    const wchar_t* cannotWrite;
    /// Without the path that follows.
    const wchar_t* diskFull;
    /// Without Windows' text, which follows these two.
    const wchar_t* cannotReplace;
    const wchar_t* cannotRemove;
    const wchar_t* stillInstalled;
    const wchar_t* cannotSave;
    const wchar_t* cannotRegister;
    const wchar_t* cannotStartRegsvr32;
    const wchar_t* cannotWriteEntry;
    const wchar_t* cannotUnregister;
    const wchar_t* cannotRemoveEntry;
    const wchar_t* removing;
    const wchar_t* notUninstalled;
};

/// The texts that a user of this Windows gets: English, if his language is none of the others.
const CSetupTexts& Texts();
/// Whether this Windows speaks the language that was asked for, if any was.
bool IsAskedLanguage();

/// A text with what stands in its braces replaced.
std::wstring Filled(std::wstring text);
/// Windows' text for the error that a file is in use, in the user's language.
std::wstring InUseText();

/// Waits until a program (0: any) shows a dialog with this text, and returns the dialog. Fails the test if it
/// does not.
HWND WaitForPage(const std::wstring& text, DWORD process);
/// Waits for the page and presses its button once it is enabled.
void Press(const std::wstring& text, int button, DWORD process);
/// Waits for a message box with exactly this text and presses its only button.
void AnswerMessage(const std::wstring& text, DWORD process);

} // namespace orva::test
