/// @file
/// The 14-byte head of a "TGZF" stream: "TGZF", two zero bytes, the
/// uncompressed size as an Int64 of the typed layer (so it honours the file's
/// m_swap), then one zlib stream. Internal to the file layer.
#pragma once

#include <cstdint>

#include "qv/files/IFile.h"

namespace qv {

constexpr int64_t kTGZFDataStart = 14; ///< where the zlib stream begins
constexpr int64_t kTGZFSizeOffset = 6; ///< where the uncompressed size stands

/// Writes the head with a size of 0 (filled in when the stream is closed).
bool WriteTGZFHeader(IFile &f);
/// Reads the magic at the file's position. False (standing behind up to four
/// bytes) if it is not "TGZF". Otherwise true with size read from the head; a
/// head cut short or a negative size gives a size of 0.
bool ReadTGZFHeader(IFile &f, int64_t &size);
/// Writes size into the head, the file's position unchanged.
bool PatchTGZFSize(IFile &f, int64_t size);

} // namespace qv
