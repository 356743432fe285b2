/// @file
/// Moving the tail of a file up to open a gap, for containers whose entries
/// grow in place (CCDFileSystem). Internal to libqv.
///
/// MoveTailUp(file, from, delta) moves the bytes [from, end) to
/// [from + delta, end + delta) and fills the gap [from, from + delta) with
/// zeros. It first reserves the room (SetSize), then copies blocks from the end
/// down, one Read and one Write a block, through one heap block. With nothing
/// behind from it changes nothing (the next write extends the file).
///
/// Failure: false when the block cannot be had, the room cannot be reserved or
/// a transfer (the gap's zeros included) falls short. Before it answers false it puts every moved byte
/// back and cuts the file to its old size, so a failure that passes leaves the
/// file as it was; only a file that keeps failing while that runs is left
/// partly moved. The file's position is not kept.
#pragma once

#include <cstdint>

namespace qv {

class IFile;

/// Opens a zeroed gap of delta bytes at from (see the top of this file).
bool MoveTailUp(IFile &file, int64_t from, int64_t delta);

} // namespace qv
