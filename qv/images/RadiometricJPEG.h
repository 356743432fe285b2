/// @file
/// The radiometric JPEG: an ordinary JPEG picture whose APP1 segments that
/// begin with "VORK" carry chunks of a payload, a VQR container (CVQRFile)
/// that the analysis software opens while a viewer just shows the picture.
///
/// A chunk segment's data (after the two length bytes): "VORK", four bytes of
/// chunk header, then the chunk. The payload is the chunks joined in file
/// order; readers never look at the chunk header (no sequence test, no gap
/// or repetition noticed), and existing files depend on that. qv writes a
/// 16-bit big-endian chunk number from 1 and the chunk count there.
///
/// Reading goes through LoadJPEG(file, payload) (Images.h): the picture is
/// decoded and only after its last row are the chunks written to the payload;
/// a broken or cut JPEG writes none. RadiometricJPEG answers whether the
/// payload is larger than kMinRadiometricPayload bytes: a smaller one does not
/// count as radiometric data, although it stays in the payload. The payload
/// is then opened as a VQR container:
///
///     CMemFile payload;
///     CVQRFile vqr;
///     if (RadiometricJPEG(fs, path, &payload) && vqr.Open(&payload, true)) ...
///
/// Writing: WriteRadiometricJPEG copies a JPEG segment by segment, drops its
/// old chunk segments and puts the new ones where the first old one stood,
/// or else after the application segments that follow the start of the
/// picture. Every other byte of the picture is copied as it is, so the
/// picture decodes to the same pixels.
///
/// Failures: false, no message. A JPEG that libjpeg cannot read, a segment
/// whose length runs past the end of the file, a file without a scan or an
/// end marker, and a payload too large for 65535 chunks are refused.
///
/// Ownership: every file stays the caller's. Threads: calls on different
/// files may run at once.
#pragma once

#include <cstdint>

#include "qv/core/Export.h"

namespace qv {

class IFile;
class IFileSystem;

/// The segment marker and word of a chunk, the bytes before the chunk in a
/// segment's data, and the payload size that still does not count.
///@{
inline constexpr int kRadiometricMarker = 0xE1;
inline constexpr char kRadiometricWord[4] = {'V', 'O', 'R', 'K'};
inline constexpr uint32_t kRadiometricChunkHeader = 8;
inline constexpr int64_t kMinRadiometricPayload = 0xF18;
///@}

/// The largest chunk in one segment: a segment's data is at most 65533 bytes.
inline constexpr uint32_t kMaxRadiometricChunk = 0xFFFF - 2 - kRadiometricChunkHeader;

/// Writes the chunks of the JPEG at path (opened read-only) or in file (read
/// from its start) to payload at its position, then seeks payload to its
/// start. True when payload's size exceeds kMinRadiometricPayload. False,
/// with payload untouched, when the file cannot be opened or is no JPEG;
/// false too when the picture does not decode (payload keeps what was
/// written by then).
///@{
QV_API bool RadiometricJPEG(IFileSystem *fs, char16_t const *path, IFile *payload);
QV_API bool RadiometricJPEG(IFile *file, IFile *payload);
///@}

/// Writes jpeg (read from its start) to out at out's position with the whole
/// of payload (from its start to its end) as its chunks, in segments of
/// kMaxRadiometricChunk bytes and a last shorter one. An empty payload
/// removes the chunks. False when the JPEG is refused (see above) or a read
/// or write fails; out may then hold part of the copy.
QV_API bool WriteRadiometricJPEG(IFile *jpeg, IFile *payload, IFile *out);

/// WriteRadiometricJPEG into a whole new file at path, written beside it and
/// renamed over it (CAtomicSave): a failure leaves an old file at path whole
/// on file systems that rename.
QV_API bool SaveRadiometricJPEG(IFileSystem *fs, char16_t const *path, IFile *jpeg, IFile *payload);

} // namespace qv
