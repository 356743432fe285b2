// Internal to qv/modtran: the line and field reader of tape5 cards.
//
// Lines end at LF (a CR before it, or anywhere, ends the text too); the
// first 127 bytes are kept in a zeroed 128-byte buffer and the rest of a
// longer line is skipped. The file is read in blocks; Finish() seeks it back
// to just behind the last line taken, so that the next reader (the next run's)
// starts there.
#pragma once

#include <cstdint>

namespace qv {

class IFile;

namespace modtran_detail {

inline constexpr int kCardBytes = 128;

class CCardReader {
public:
    explicit CCardReader(IFile &file);
    CCardReader(CCardReader const &) = delete;
    CCardReader &operator=(CCardReader const &) = delete;

    // The next line; false at the end of the file.
    bool Next();
    char const *Line() const { return line; }
    // The field at column (0-based) and width, trimmed; "" past the text.
    char const *Text(int column, int width);
    int Int(int column, int width);
    float Float(int column, int width);
    char Letter(int column) const { return column < kCardBytes ? line[column] : '\0'; }
    // Puts the file back behind the last line taken.
    void Finish();

private:
    bool Fill();

    IFile &file;
    int64_t start;    // file position of block[0]
    uint32_t used;    // bytes of block taken
    uint32_t length;  // bytes in block
    char block[4096];
    char line[kCardBytes];
    char field[kCardBytes];
};

// A field's text as atol and atof read it.
int FieldInt(char const *text);
float FieldFloat(char const *text);

} // namespace modtran_detail
} // namespace qv
