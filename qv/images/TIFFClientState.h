/// @file
/// What the libtiff callbacks over an IFile keep: the file, and whether a
/// write, seek or read failed (see TIFFClient.h). No libtiff types here, so that
/// public headers can hold one.
#pragma once

namespace qv {
class IFile;
}

namespace qv::images {

/// @copydoc TIFFClientState.h
struct STiffClient {
    IFile *file = nullptr; ///< not owned
    bool failed = false; ///< a write, seek or read failed; later writes and seeks fail too
};

} // namespace qv::images
