/// @file
/// Internal to qv/modtran: the line and fixed-column field reader of tape5
/// cards and tape7 tables.
///
/// Lines end at LF (a CR, or a NUL, anywhere ends the text too); the first
/// lineBytes - 1 bytes are kept in a zeroed buffer and the rest of a longer
/// line is skipped. PushBack hands the same line to the next Next(). The file is read in blocks; Finish() seeks it back
/// to just behind the last line taken, so that the next reader (the next run's)
/// starts there.
#pragma once

#include <cstdint>

namespace qv {

class IFile;

namespace modtran_detail {

inline constexpr int kCardBytes = 128;  ///< tape5 cards
inline constexpr int kTableBytes = 256; ///< tape7 lines
inline constexpr int kMaxLineBytes = 512; ///< the largest lineBytes; more is cut to it

/// @copydoc LineReader.h
class CLineReader {
public:
    /// Reads lines of file from its present position, keeping lineBytes - 1
    /// bytes of each. The file must outlive the reader.
    CLineReader(IFile &file, int lineBytes);
    CLineReader(CLineReader const &) = delete;
    CLineReader &operator=(CLineReader const &) = delete;

    /// The next line; false at the end of the file, or when a read failed
    /// (Failed() tells which: a failed read is never taken for the end).
    ///@{
    bool Next();
    bool Failed() const { return failed; }
    void PushBack() { pushedBack = true; }
    char const *Line() const { return line; }
    ///@}
    /// The field at column (0-based) and width, trimmed; "" past the text.
    ///@{
    char const *Text(int column, int width);
    int Int(int column, int width);
    float Float(int column, int width);
    double Double(int column, int width);
    char Letter(int column) const { return column >= 0 && column < lineBytes ? line[column] : '\0'; }
    ///@}
    /// Puts the file back behind the last line taken (a line pushed back
    /// counts as taken).
    void Finish();

private:
    bool Fill();

    IFile &file;
    int lineBytes;
    bool pushedBack;
    bool failed;      ///< the last read stopped short of the end
    int64_t start;    ///< file position of block[0]
    uint32_t used;    ///< bytes of block taken
    uint32_t length;  ///< bytes in block
    char block[4096];
    char line[kMaxLineBytes];
    char field[kMaxLineBytes];
};

/// A field's text as atol and atof read it.
///@{
int FieldInt(char const *text);
float FieldFloat(char const *text);
///@}

} // namespace modtran_detail
} // namespace qv
