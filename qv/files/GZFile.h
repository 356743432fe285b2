/// @file
/// CGZFile: an IFile that compresses into, or decompresses from, a "TGZF"
/// stream held by another IFile: "TGZF", two zero bytes, the uncompressed size
/// as an Int64 (0 until the writer is closed), then one zlib stream (default
/// level, window bits 15, memory level 8, default strategy). Data streams
/// through a buffer of 16 KiB; nothing holds the whole data.
///
/// CGZFile(f, flags, owned). flags must hold exactly one of 0x10 (read) and
/// 0x20 (write); a writer needs an empty file, a reader a non-empty one.
/// Otherwise, or when the stream cannot be set up, the object is unusable: it
/// has no file, GetSize is 0, and every operation does nothing (an owned file
/// is deleted at once). A reader whose file does not start with "TGZF" passes
/// the file through uncompressed (files stored plain depend on it): Read,
/// Write, Seek and GetPosition go straight to the file, GetSize is the file's
/// size, and the file is left standing behind its first four bytes, so seek
/// before reading.
///
/// Reading. Read cuts n to the recorded size and gives what the stream
/// delivers; damaged or truncated data ends a Read early with the bytes that
/// came (and the recorded size is never trusted for memory: it only cuts
/// reads). Seek clamps the target to 0 .. size; a seek backward decompresses
/// again from the start, a seek forward decompresses and discards up to the
/// target, and a target the stream cannot reach leaves the position where the
/// stream ended. The compressed input is fetched from its own offset at every
/// refill, so the inner file's position may be shared.
///
/// Writing. Write compresses n bytes and returns n when it took them all. The
/// output goes to the inner file in pieces of 16 KiB, so a Write that returns
/// n has not necessarily reached it. When the inner file refuses a write, the
/// compressed output held back is lost with it, so the stream is broken: that
/// Write returns 0 and every later one too. Seek does nothing and returns the
/// position. Finish ends the stream and fills in the size field in the head;
/// it is true only if every byte reached the inner file (the stream is then
/// complete; callers that must know, call it before Close). A broken stream
/// keeps the size field 0 and reads back as empty. Close finishes the stream if
/// Finish was not called (its result is then lost), closes the inner file and
/// deletes it if owned; closing twice does nothing; the destructor closes.
///
/// GetSize and GetPosition count uncompressed bytes; SetSize is false; Flush,
/// GetFilename and GetFileSystem are the inner file's. A writer gives 0 from
/// Read, a reader 0 from Write.
///
/// Copies. A copy never owns the inner file, which must outlive it. A copy of a
/// reader opens the stream again on the same file and seeks to the original's
/// position; a copy of a pass-through shares the file; a copy of a writer (two
/// writers cannot share one stream) or of an unusable object is unusable.
///
/// Threads: an object belongs to one thread at a time, with its inner file.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/files/IFile.h"

struct z_stream_s;

namespace qv {

/// @copydoc GZFile.h
class QV_API CGZFile : public IFile {
public:
    /// A reader or writer over f (see the top of this file); owned: Close
    /// deletes f.
    CGZFile(IFile *f, uint32_t flags, bool owned);
    /// See Copies at the top of this file; assignment closes this object first.
    ///@{
    CGZFile(CGZFile const &other);
    CGZFile &operator=(CGZFile const &other);
    ///@}
    ~CGZFile() override;

    char16_t *GetFilename(char16_t *buf, int size) override;
    IFileSystem &GetFileSystem() override;
    uint32_t Write(void const *p, uint32_t n) override;
    uint32_t Read(void *p, uint32_t n) override;
    int64_t GetSize() override;
    int64_t GetPosition() override;
    int64_t Seek(int64_t offset, uint32_t origin) override;
    bool SetSize(int64_t size) override;
    void Flush() override;
    void Close() override;
    /// Writer: ends the stream; true if it is complete (see Writing above).
    /// False on a reader, a pass-through or an unusable object. Once called,
    /// Write gives 0; calling again gives the same answer.
    bool Finish();

protected:
    IFile *file = nullptr; ///< the inner file; null for an unusable object
    uint8_t *buffer = nullptr; ///< compressed data; a reader's second half takes discarded output
    uint32_t bufferSize = 0; ///< bytes at buffer
    int64_t position = 0;    ///< uncompressed position
    int64_t size = 0; ///< uncompressed
    uint32_t flags = 0;           ///< 0x10 reader, 0x20 writer
    z_stream_s *stream = nullptr; ///< the zlib state; null when there is none
    bool raw = true;              ///< a pass-through or unusable object
    int64_t dataStart = 0;        ///< inner-file offset where the zlib stream begins
    bool owned = false;           ///< Close deletes file

private:
    void Open(IFile *f, uint32_t mode, bool own);
    bool StartWriting();
    bool StartReading();
    bool AllocateStream(uint32_t bufferBlocks);
    void ReleaseStream();
    void Clear(); ///< closes and returns to the state of an unusable object
    void CopyFrom(CGZFile const &other);
    bool Reading() const;
    bool Writing() const;
    /// Reader: decompresses up to n bytes into p; the bytes that came.
    ///@{
    uint32_t Inflate(uint8_t *p, uint32_t n);
    void Refill();
    void Restart();
    void Discard(int64_t n);
    ///@}
    /// Writer: hands the buffered output to the file.
    ///@{
    bool WriteOutput();
    void FinishWriting();
    ///@}

    int64_t inputOffset = 0; ///< inner-file offset of the next compressed byte
    bool writeFailed = false;
    bool ended = false; ///< Finish ran
};

} // namespace qv
