#include "outlook/AddInRegistration.h"

namespace orva::test
{
namespace
{

constexpr const wchar_t* kRegisteredKeys[] = {
    kOfficeKey,  kProgIdKey,    kVersionedProgIdKey,    kClassKey,
    kLibraryKey, kInterfaceKey, kInterfaceFor32BitsKey,
};

} // namespace

CBothHivesGuard::CBothHivesGuard(std::span<const wchar_t* const> keys)
{
    for (const wchar_t* const key : keys)
    {
        for (const HKEY root : {HKEY_LOCAL_MACHINE, HKEY_CURRENT_USER})
        {
            m_trees.push_back(std::make_unique<CRegistryTreeGuard>(root, key));
        }
    }
}

void CBothHivesGuard::Remove()
{
    for (const auto& tree : m_trees)
    {
        tree->Remove();
    }
}

CRegistrationGuard::CRegistrationGuard() : CBothHivesGuard(kRegisteredKeys) {}

} // namespace orva::test
