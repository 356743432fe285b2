/// @file
/// What the SAF reader and writer share: the line limits, the words the reader
/// treats specially, the padding rule and the checks on tag text. Internal to
/// the library (not exported).
#pragma once

#include <cstdint>
#include <string>

namespace qv::saf {

/// The reader takes a line with one 512-byte read, so a line's text (name,
/// blank, value) may have 510 bytes before its CR LF.
///@{
constexpr int kLineBuffer = 512;
constexpr uint32_t kMaxLineText = kLineBuffer - 2;
///@}
/// A header of more lines is taken to end there: no real header comes near.
constexpr uint32_t kMaxHeaderLines = 65536;

/// Names the reader and writer treat specially: the header size, the end
/// of the header, the padding tag (skipped on reading).
///@{
inline constexpr char16_t kHdSize[] = u"HdSize";
inline constexpr char16_t kData[] = u"DATA";
inline constexpr char16_t kPadding[] = u"saf_padding";
///@}
inline constexpr char kDataLine[] = "DATA\r\n"; ///< the header's last line, as written
constexpr uint32_t kDataLineSize = sizeof(kDataLine) - 1; ///< its bytes, without a terminator

/// Slack rules of a rewrite: a padding line needs 14 bytes around its text, so
/// 16 is the smallest usable slack; beyond 4096 the header is shrunk back.
///@{
constexpr uint32_t kMinSlack = 16;
constexpr uint32_t kMaxSlack = 4096;
constexpr uint32_t kFreshPadding = 2048;
///@}

/// Appends exactly `bytes` bytes of padding lines (bytes is 0 or at least 16).
void AppendPadding(std::string &out, uint32_t bytes);

/// Whether a tag line built from this text reads back as the same tag.
///@{
bool IsWritableName(char16_t const *name);
bool IsWritableValue(char16_t const *name, char16_t const *value);
///@}
/// Names the reader treats specially and that no added tag may carry.
bool IsReservedName(char16_t const *name);

} // namespace qv::saf
