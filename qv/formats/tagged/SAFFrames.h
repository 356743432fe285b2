/// @file
/// CSAFFrames: the frames of counts of a SAF image file, described by its
/// header tags "KeyWrd" = "IMG", "BytOrd" = "LH", "DaType" = "UInt16",
/// "ADBits", "xPixls", "yPixls" and "IMSize" (bytes per frame). Frames lie
/// one after the other from the data position; their count is the whole
/// frames the data holds.
///
///   qv::CSAFFrames frames;
///   if (frames.Open(u"sample.saf")) frames.ReadFrame(0, counts.data());
///
/// Ownership: a file opened by path stays open until Close or destruction; a
/// file given to Open(IFile *) stays the caller's and must outlive the use.
/// Failures: Open gives false (and holds nothing) for an unreadable file, a
/// header that is not an image header as above, an IMSize smaller than a
/// frame of xPixls x yPixls 16-bit counts, or sizes above kMaxFramePixels.
/// ReadFrame gives false for a frame out of range or a short read.
/// Threads: one object belongs to one thread at a time.
#pragma once

#include <cstdint>
#include <memory>

#include "qv/core/Export.h"

namespace qv {

class IFile;

/// @copydoc SAFFrames.h
class QV_API CSAFFrames {
public:
    static constexpr uint32_t kMaxFramePixels = 1u << 26; ///< bounds what a header can ask for

    /// An object holding no frames; not copyable.
    ///@{
    CSAFFrames();
    ~CSAFFrames();
    CSAFFrames(CSAFFrames const &) = delete;
    CSAFFrames &operator=(CSAFFrames const &) = delete;
    ///@}

    /// Reads the header of the file at path on the disk (read-only, shared
    /// for reading); false, holding nothing, for a file refused as above.
    bool Open(char16_t const *path);
    /// The same over an open file, read from its start.
    bool Open(IFile *file);
    /// Drops the frames and closes a file opened by path.
    void Close();

    uint32_t Width() const { return m_width; }   ///< "xPixls"
    uint32_t Height() const { return m_height; } ///< "yPixls"
    uint32_t Bits() const { return m_bits; }            ///< "ADBits"; 16 when absent
    uint32_t FrameBytes() const { return m_frameBytes; } ///< "IMSize"
    uint32_t FrameCount() const { return m_frameCount; }     ///< whole frames in the data
    uint32_t DataPosition() const { return m_dataPosition; } ///< where the first frame starts

    /// Width() * Height() counts of frame n, host order, into counts.
    bool ReadFrame(uint32_t n, uint16_t *counts);

private:
    struct SFile;
    bool Take(std::unique_ptr<SFile> state);
    std::unique_ptr<SFile> m_file;
    uint32_t m_width = 0, m_height = 0, m_bits = 0, m_frameBytes = 0, m_frameCount = 0, m_dataPosition = 0;
};

} // namespace qv
