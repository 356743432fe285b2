/// @file
/// IFile: the library's one byte-stream contract, and the typed layer that
/// fixes how numbers and strings look in its binary formats.
///
/// Implementations (CFile on disk, CMemFile in memory, the wrappers) supply the
/// ten virtual operations; everything else here is built on them.
///
/// Byte order. Multi-byte values are little-endian in the file unless m_swap is
/// set, which makes every multi-byte value go through reversed (big-endian
/// files). Readers that detect the byte order set m_swap directly. Copying an
/// IFile copies only this flag.
///
/// Seek origins: 1 from the start, 2 from the current position, 3 from the
/// end. Other values are invalid (implementations move nothing).
///
/// Failure. Nothing throws: results are bool, byte counts, or positions.
/// Typed Put/Get (reference form) are true when all bytes passed; after a
/// failed numeric read the position is NOT restored and the target is left
/// unchanged. The value-returning Get forms report nothing: on a short read
/// they return 0 (GetGUID: see there); check with the reference form where a
/// failure matters. A failed string Put/Get seeks back so the file stands where
/// it stood before the call.
///
/// Untrusted lengths. String readers never allocate more than the bytes that
/// remain in the file (GetRemaining) for a length field: a length beyond them
/// fails as a short read would, without allocating.
///
/// Threads: no locks; an IFile belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"
#include "qv/core/Guid.h"
#include "qv/core/String.h"

namespace qv {

class IFileSystem;

/// @copydoc IFile.h
class QV_API IFile {
public:
    /// false: machine (little-endian) order; true: multi-byte values reversed.
    bool m_swap = false;

    /// The base holds only m_swap, which copies.
    ///@{
    IFile() = default;
    IFile(IFile const &) = default;
    IFile &operator=(IFile const &) = default;
    ///@}

    /// ---- The contract, in slot order ----
    virtual ~IFile();
    /// Copies the name into buf, at most size units with terminator; returns buf.
    ///@{
    virtual char16_t *GetFilename(char16_t *buf, int size) = 0;
    virtual IFileSystem &GetFileSystem() = 0;
    virtual uint32_t Write(void const *p, uint32_t n) = 0; ///< bytes written
    virtual uint32_t Read(void *p, uint32_t n) = 0;        ///< bytes read; 0 at the end
    virtual int64_t GetSize() = 0;
    virtual int64_t GetPosition() = 0;
    virtual int64_t Seek(int64_t offset, uint32_t origin) = 0; ///< returns the new position
    virtual bool SetSize(int64_t size) = 0;
    virtual void Flush() = 0;
    virtual void Close() = 0;
    ///@}

    /// ---- Positioning ----
    ///@{
    int64_t SetPosition(int64_t p); ///< Seek(p, 1)
    int64_t SeekToBegin();
    int64_t SeekToEnd();
    int64_t GetLength();            ///< GetSize
    void SetLength(int64_t length); ///< SetSize
    int64_t GetRemaining();         ///< GetSize() - GetPosition(); negative past the end
    ///@}

    /// ---- Raw bytes ----
    /// n of 0 is true at once; otherwise true if all n bytes passed.
    ///@{
    bool ReadBytes(void *p, uint32_t n);
    bool WriteBytes(void const *p, uint32_t n);
    ///@}
    /// Reads count * itemSize bytes, then reverses each item if m_swap. A total
    /// of 0 is true at once; a total above 32 bits is false without reading.
    bool ReadArray(void *p, uint32_t count, uint32_t itemSize);
    /// Without m_swap as WriteBytes. With m_swap the items are reversed in a
    /// temporary block and written, and the result is ALWAYS false, whatever
    /// the write did: existing callers see this asymmetry with ReadArray.
    bool WriteArray(void const *p, uint32_t count, uint32_t itemSize);

    /// ---- Typed values: Put, Get by reference, Get by value ----
    /// 1 byte, never swapped.
    ///@{
    bool PutChar(char v);
    bool GetChar(char &v);
    char GetChar();
    bool PutInt8(int8_t v);
    bool GetInt8(int8_t &v);
    int8_t GetInt8();
    bool PutBYTE(uint8_t v);
    bool GetBYTE(uint8_t &v);
    uint8_t GetBYTE();
    bool PutUInt8(uint8_t v);
    bool GetUInt8(uint8_t &v);
    uint8_t GetUInt8();
    ///@}
    /// 2 bytes.
    ///@{
    bool PutShort(int16_t v);
    bool GetShort(int16_t &v);
    int16_t GetShort();
    bool PutInt16(int16_t v);
    bool GetInt16(int16_t &v);
    int16_t GetInt16();
    bool PutWORD(uint16_t v);
    bool GetWORD(uint16_t &v);
    uint16_t GetWORD();
    bool PutUInt16(uint16_t v);
    bool GetUInt16(uint16_t &v);
    uint16_t GetUInt16();
    ///@}
    /// 4 bytes.
    ///@{
    bool PutLong(int32_t v);
    bool GetLong(int32_t &v);
    int32_t GetLong();
    bool PutInt32(int32_t v);
    bool GetInt32(int32_t &v);
    int32_t GetInt32();
    bool PutDWORD(uint32_t v);
    bool GetDWORD(uint32_t &v);
    uint32_t GetDWORD();
    bool PutUInt32(uint32_t v);
    bool GetUInt32(uint32_t &v);
    uint32_t GetUInt32();
    bool PutFloat(float v);
    bool GetFloat(float &v);
    float GetFloat();
    bool PutFlt32(float v);
    bool GetFlt32(float &v);
    float GetFlt32();
    ///@}
    /// 8 bytes.
    ///@{
    bool PutDouble(double v);
    bool GetDouble(double &v);
    double GetDouble();
    bool PutFlt64(double v);
    bool GetFlt64(double &v);
    double GetFlt64();
    bool PutInt64(int64_t v);
    bool GetInt64(int64_t &v);
    int64_t GetInt64();
    bool PutQWORD(uint64_t v);
    bool GetQWORD(uint64_t &v);
    uint64_t GetQWORD();
    bool PutUInt64(uint64_t v);
    bool GetUInt64(uint64_t &v);
    uint64_t GetUInt64();
    ///@}
    /// 1 byte: writes 1 or 0; reads true only for the byte 1.
    ///@{
    bool PutBool(bool v);
    bool GetBool(bool &v);
    bool GetBool();
    ///@}
    /// A plain 4-byte integer. GetBOOL(int32_t &) stores what came and returns
    /// true without looking at the read: existing callers depend on it.
    ///@{
    bool PutBOOL(int32_t v);
    bool GetBOOL(int32_t &v);
    int32_t GetBOOL();
    ///@}
    /// 16 bytes: Data1 (4), Data2 (2), Data3 (2), each reversed if m_swap, then
    /// Data4 as 8 raw bytes. The value form returns {0, 0, 4, {0...}} on
    /// failure, deliberately not the null identifier.
    ///@{
    bool PutGUID(GUID const &v);
    bool GetGUID(GUID &v);
    GUID GetGUID();
    ///@}
    /// Classic UTF-8 of up to six bytes for a 31-bit value (v taken as
    /// unsigned; the six-byte form carries the low 31 bits). Put is true
    /// regardless of the writes. Get: false on a bad lead byte or a short read
    /// (position not restored). Continuation bytes are neither checked nor
    /// masked, so their top bits reach the result: files were written against
    /// this decoding. The value form gives 0 on failure.
    ///@{
    bool PutUTF8Character(int32_t v);
    bool GetUTF8Character(int32_t &v);
    int32_t GetUTF8Character();
    ///@}

    /// ---- Streaming: the binary forms above; failures are swallowed ----
    /// A failed read leaves its target alone.
    ///@{
    IFile &operator<<(char v);
    IFile &operator<<(unsigned char v);
    IFile &operator<<(int16_t v);
    IFile &operator<<(uint16_t v);
    IFile &operator<<(int32_t v);
    IFile &operator<<(uint32_t v);
    IFile &operator<<(float v);
    IFile &operator<<(double v);
    IFile &operator<<(int64_t v);
    IFile &operator<<(uint64_t v);
    IFile &operator<<(bool v);
    IFile &operator>>(char &v);
    IFile &operator>>(unsigned char &v);
    IFile &operator>>(int16_t &v);
    IFile &operator>>(uint16_t &v);
    IFile &operator>>(int32_t &v);
    IFile &operator>>(uint32_t &v);
    IFile &operator>>(float &v);
    IFile &operator>>(double &v);
    IFile &operator>>(int64_t &v);
    IFile &operator>>(uint64_t &v);
    IFile &operator>>(bool &v);
    ///@}

    /// ---- Length-prefixed strings ----
    /// A 4-byte length (a DWORD, so it honours m_swap) then the bytes; no
    /// terminator is stored. A null text is length 0.
    ///@{
    bool PutString(char const *utf8);
    bool PutString(char16_t const *s);                    ///< converted to UTF-8
    bool PutString(uint32_t codePage, char16_t const *s); ///< converted to codePage
    ///@}
    /// The bytes taken as UTF-8. The value form gives the empty text on failure.
    ///@{
    bool GetString(CString &out);
    CString GetString();
    ///@}
    /// A length above size - 1 seeks back over the length field and is false;
    /// otherwise the bytes are stored and terminated.
    bool GetString(char *buf, int size);
    /// Converted from UTF-8; a converted count not below size goes back to the
    /// start of the field and is false; otherwise terminated.
    ///@{
    bool GetString(char16_t *buf, int size);
    bool GetString(uint32_t codePage, CString &out);
    CString GetString(uint32_t codePage);
    bool GetString(uint32_t codePage, char16_t *buf, int size);
    ///@}

    /// A 4-byte length in characters (honouring m_swap), then two bytes a
    /// character. The characters are NOT reversed under m_swap, only the
    /// length: files depend on it.
    bool PutUnicodeString(char16_t const *s);
    /// The CString forms end the text at the first NUL in the data.
    ///@{
    bool GetUnicodeString(CString &out);
    CString GetUnicodeString();
    bool GetUnicodeString(char16_t *buf, int size); ///< a length not below size: back, false
    ///@}

    /// Archive strings: byte length n below 255 as one byte; up to 65533 as
    /// 0xFF and a 16-bit n; above, 0xFF, 0xFFFF and a 32-bit n (the 16- and
    /// 32-bit values honour m_swap); then the bytes. Put is true if the last
    /// write (the text's bytes) moved any byte, so an empty text gives false.
    bool PutArchiveString(char const *utf8);
    /// Reads are not checked: the bytes that came are taken as UTF-8, and the
    /// result is always true.
    ///@{
    bool GetArchiveString(CString &out);
    CString GetArchiveString();
    ///@}

    /// ---- Text and fixed fields ----
    /// One Read of size bytes. CRs become NULs; the first LF ends the line
    /// (NUL, position just behind it, true). No LF in a full buffer: the
    /// position goes back and the result is false (line too long). No LF in a
    /// short read: the last line, terminated, true. Nothing read: false.
    ///
    /// The outcome form tells the falses apart: End (nothing left), TooLong,
    /// or Failed, which is a read or seek the file refused, or a short read
    /// that stopped before the end of the file (its bytes are no line). A
    /// reader must not take Failed for the end of its text.
    ///@{
    enum class LineOutcome { Line, End, TooLong, Failed };
    bool GetLine(char *buf, int size);
    bool GetLine(char *buf, int size, LineOutcome &outcome);
    bool WriteString(char const *s); ///< the bytes, no terminator, no length
    ///@}
    /// Narrow printf family of qv/core/WideFormat.h (locale-free; %s is UTF-8,
    /// %S char16_t); writes the text without terminator. Text up to 2048 bytes
    /// with terminator is formatted on the stack, longer text in a temporary block.
    bool WriteFormattedString(char const *fmt, ...);
    /// One operation: reads n bytes, stores a terminator at buf[n] (buf holds
    /// n + 1 bytes), true if all n came.
    ///@{
    bool ReadString(char *buf, uint32_t n);
    bool GetFixedLengthString(char *buf, uint32_t n);
    ///@}
    /// min(strlen(s), n) bytes, then zeros up to n; false only if the text
    /// write falls short.
    bool PutFixedLengthString(char const *s, uint32_t n);
    /// Zeros in pieces of at most 512 bytes; false at the first short write.
    bool WriteZeros(uint32_t n);

    /// ---- Editing in place ----
    /// Both stream the tail through one block (0x80000 bytes, growing with the
    /// file size up to 0x500000), with no second file: one Read per block.
    /// Remove writes each block whole, from the bottom up. Insert of 0x40000
    /// bytes or more writes pieces no longer than n. Insert of fewer moves
    /// blocks of 0x40000 bytes and writes each whole, after a copy of it to
    /// scratch room past the new end (through EditView where the file lends
    /// one; the room is given back before it returns; no room for it is no
    /// room).
    /// The bytes inside an inserted gap are left as they were. With an empty
    /// tail (pos at or past the end) or n of 0 both change nothing and are
    /// true; Remove of the whole tail is one SetSize(pos).
    ///
    /// On failure (false), outcome says what is left:
    ///   Unchanged  the file is byte for byte as before: a negative pos, no
    ///              memory for the block, no room (Insert grows the file with
    ///              SetSize before moving anything, which on a disk reserves
    ///              the blocks, so a full disk lands here), or a transfer that
    ///              failed and was undone;
    ///   Damaged    a transfer failed and undoing it failed too: the file is
    ///              neither the old nor the new layout. Every original byte
    ///              is still at its old place or its new one (no write
    ///              covers a byte before that byte reached its new place),
    ///              or, for the block in flight of Insert or of Remove's
    ///              undo (which also takes scratch room past the end when it
    ///              can), in the scratch room past the end, from its start;
    ///              Remove's dropped bytes are kept for the undo only up to
    ///              one block.
    /// On success outcome is Done.
    ///@{
    enum class EditOutcome { Done, Unchanged, Damaged };
    bool Remove(int64_t pos, uint32_t n);
    bool Insert(int64_t pos, uint32_t n);
    bool Remove(int64_t pos, uint32_t n, EditOutcome &outcome);
    bool Insert(int64_t pos, uint32_t n, EditOutcome &outcome);
    ///@}

protected:
    /// Insert's scratch copies: a file that can lend a writable view of its
    /// own bytes [pos, pos + n), shared with it (what is stored through the
    /// view is in the file as a Write would leave it), returns one, valid
    /// until ReleaseEditView(view, n); Insert then reads its blocks straight
    /// into it. The default lends none (null), and the copies go through
    /// Write. pos and n lie inside the file, on room its SetSize reserved.
    ///@{
    virtual void *EditView(int64_t pos, uint32_t n);
    virtual void ReleaseEditView(void *view, uint32_t n);
    ///@}

    /// For files that clamp their position to 0..size: the target of a Seek by
    /// origin (1 start, 2 current, 3 end), with extreme offsets saturating.
    /// False for any other origin, which must move nothing.
    static bool ClampedSeekTarget(int64_t offset, uint32_t origin, int64_t position, int64_t size, int64_t &target);

private:
    /// True when the position is known and at or past the known size.
    bool AtEnd();
    /// Reads/writes size bytes (at most 8), reversed when m_swap is set.
    ///@{
    bool PutScalar(void const *p, uint32_t size);
    bool GetScalar(void *p, uint32_t size);
    ///@}
    /// A 4-byte length, then n bytes; on a short write seeks back over both.
    bool PutCountedBytes(uint32_t length, void const *p, uint32_t n);
    /// Reads a 4-byte length and refuses (seeking back over it) a length whose
    /// bytes (length * unitSize) exceed what remains or that no text can hold.
    bool GetCountedLength(uint32_t &length, uint32_t unitSize);
    /// Reads the n bytes behind a length field; on a short read seeks back over
    /// them and the length field.
    ///@{
    bool ReadCountedBody(void *p, uint32_t n);
    bool GetCodePageString(uint32_t codePage, CString &out);
    bool GetCodePageString(uint32_t codePage, char16_t *buf, int size);
    ///@}
};

} // namespace qv
