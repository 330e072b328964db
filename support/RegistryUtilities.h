// Reading of the 4-byte settings that the add-in takes from the registry.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

/// Reads the value `name` of `key` under HKEY_CURRENT_USER or, if that read gives -1, under
/// HKEY_LOCAL_MACHINE. Returns -1 when neither can be read.
std::int32_t ReadRegistryDword(const std::wstring& key, const std::wstring& name);

/// Reads the value `name` of `key` under `hive` as a signed number, whatever its registry type.
///
/// Returns -1 when the key or value is missing or the value is longer than 4 bytes; a stored 0xFFFFFFFF
/// cannot be told from that. A shorter value fills the low bytes.
std::int32_t ReadRegistryDwordFromHive(HKEY hive, const std::wstring& key, const std::wstring& name);
