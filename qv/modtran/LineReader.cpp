// The line and fixed-column field reader of tape5 and tape7 files.
#include "qv/modtran/LineReader.h"

#include <cstring>

#include "qv/core/FloatNarrow.h"
#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"

namespace qv::modtran_detail {

namespace {

bool IsBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

} // namespace

CLineReader::CLineReader(IFile &file, int lineBytes)
    : file(file), lineBytes(lineBytes < kMaxLineBytes ? lineBytes : kMaxLineBytes), pushedBack(false), failed(false),
      start(file.GetPosition()), used(0), length(0) {
    std::memset(line, 0, sizeof line);
}

// A read that stops short of both the block and the end of the file failed:
// taken for the end, it would cut a line, and the next read would make the
// line's rest a line of its own.
bool CLineReader::Fill() {
    start += length;
    used = 0;
    length = file.Read(block, sizeof block);
    failed = length < sizeof block && file.GetRemaining() > 0;
    return length > 0 && !failed;
}

bool CLineReader::Next() {
    if (pushedBack) {
        pushedBack = false;
        return true;
    }
    std::memset(line, 0, sizeof line);
    if (used == length && !Fill()) return false;
    int kept = 0;
    bool ended = false;
    while (true) {
        while (used < length) {
            char c = block[used++];
            if (c == '\n') return true;
            ended |= c == '\r' || c == '\0';
            if (!ended && kept < lineBytes - 1) line[kept++] = c;
        }
        if (!Fill()) return !failed; // the last line, without LF
    }
}

char const *CLineReader::Text(int column, int width) {
    field[0] = '\0';
    if (column < 0 || width <= 0 || column >= lineBytes - 1) return field;
    int n = 0;
    for (int i = column; i < column + width && i < lineBytes - 1 && line[i]; ++i)
        field[n++] = line[i];
    while (n > 0 && IsBlank(field[n - 1])) --n;
    field[n] = '\0';
    char const *text = field;
    while (IsBlank(*text)) ++text;
    return text;
}

int CLineReader::Int(int column, int width) {
    return FieldInt(Text(column, width));
}

float CLineReader::Float(int column, int width) {
    return FieldFloat(Text(column, width));
}

double CLineReader::Double(int column, int width) {
    return c_atof(Text(column, width));
}

void CLineReader::Finish() {
    file.Seek(start + used, 1);
}

int FieldInt(char const *text) {
    char16_t wide[kMaxLineBytes];
    int n = 0;
    for (; n < kMaxLineBytes - 1 && text[n]; ++n)
        wide[n] = char16_t(static_cast<unsigned char>(text[n]));
    wide[n] = 0;
    return int(_wtol(wide));
}

float FieldFloat(char const *text) {
    return NarrowToFloat(c_atof(text));
}

} // namespace qv::modtran_detail
