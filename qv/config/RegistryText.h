/// @file
/// The registry editor's export text form of one root (see qv/config/Registry.h
/// for the form). Internal to libqv; pure functions, any thread.
#pragma once

#include <cstdint>
#include <string>

#include "qv/config/RegistryTree.h"

namespace qv {

/// Files above this size are refused as unreadable rather than held in memory.
inline constexpr size_t kMaxRegistryFileSize = 64u << 20;

/// Fills root (emptied first) from the file's bytes. rootName is the first
/// item every key line must carry ("HKEY_CURRENT_USER"). False for anything
/// that is not the form; root is then empty.
bool ParseRegistryText(std::string const &bytes, char16_t const *rootName, SRegNode &root);

/// The file's bytes: UTF-16LE with a byte-order mark, CR LF line ends.
std::string FormatRegistryText(SRegNode const &root, char16_t const *rootName);

} // namespace qv
