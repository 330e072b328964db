// What the add-in's registration writes, and a guard that puts it back.
#pragma once

#include "harness/Registry.h"

#include <memory>
#include <span>
#include <vector>

namespace orva::test
{

inline constexpr wchar_t kAddInProgId[] = L"OrvaOscAddin.Connect.1";
inline constexpr wchar_t kOfficeKey[] = L"Software\\Microsoft\\Office";
inline constexpr wchar_t kAddIns[] = L"Software\\Microsoft\\Office\\Outlook\\Addins";
inline constexpr wchar_t kAddInKey[] = L"Software\\Microsoft\\Office\\Outlook\\Addins\\OrvaOscAddin.Connect";
inline constexpr wchar_t kClassKey[] = L"Software\\Classes\\CLSID\\{9C7130EA-AEC4-4EA5-97B8-7D7172C9E051}";
inline constexpr wchar_t kLibraryKey[] =
    L"Software\\Classes\\TypeLib\\{ABF2CDBF-30F7-4827-9110-3BD6A8F1B786}";
inline constexpr wchar_t kInterfaceKey[] =
    L"Software\\Classes\\Interface\\{CE895442-9981-4315-AA85-4B9A5C7739D8}";
/// What registering the type library notes for 32-bit programs with it.
inline constexpr wchar_t kInterfaceFor32BitsKey[] =
    L"Software\\Classes\\Wow6432Node\\Interface\\{CE895442-9981-4315-AA85-4B9A5C7739D8}";
inline constexpr wchar_t kProgIdKey[] = L"Software\\Classes\\OrvaOscAddin.Connect";
inline constexpr wchar_t kVersionedProgIdKey[] = L"Software\\Classes\\OrvaOscAddin.Connect.1";

/// Key trees in both hives, put back as they were at the end of the guard's life.
class CBothHivesGuard
{
public:
    explicit CBothHivesGuard(std::span<const wchar_t* const> keys);
    /// Removes them all.
    void Remove();

private:
    std::vector<std::unique_ptr<CRegistryTreeGuard>> m_trees;
};

/// Everything that registration may write, for a test's lifetime, in both hives; all of Office's keys are
/// among it, so that no other add-in is loaded either.
class CRegistrationGuard : public CBothHivesGuard
{
public:
    CRegistrationGuard();
};

} // namespace orva::test
