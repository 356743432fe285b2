// Text lines and the classic six-form UTF-8 characters.
#include <bit>
#include <cstring>

#include "qv/files/IFile.h"

namespace qv {

bool IFile::GetLine(char *buf, int size) {
    LineOutcome outcome;
    return GetLine(buf, size, outcome);
}

bool IFile::GetLine(char *buf, int size, LineOutcome &outcome) {
    outcome = LineOutcome::TooLong;
    if (size <= 0) return false;
    uint32_t got = Read(buf, uint32_t(size));
    // A short read is the end only if the file has no more bytes; otherwise
    // the read failed part-way and its bytes are no line.
    if (got < uint32_t(size) && !AtEnd()) {
        outcome = LineOutcome::Failed;
        return false;
    }
    if (got == 0) {
        outcome = LineOutcome::End;
        return false;
    }
    for (uint32_t i = 0; i < got; ++i) {
        if (buf[i] == '\r') buf[i] = 0;
        if (buf[i] != '\n') continue;
        buf[i] = 0;
        uint32_t after = got - i - 1;
        outcome = after && Seek(-int64_t(after), 2) < 0 ? LineOutcome::Failed : LineOutcome::Line;
        return outcome == LineOutcome::Line;
    }
    if (got == uint32_t(size)) { // too long for the buffer
        if (Seek(-int64_t(got), 2) < 0) outcome = LineOutcome::Failed;
        return false;
    }
    buf[got] = 0; // the last line, without line end
    outcome = LineOutcome::Line;
    return true;
}

bool IFile::AtEnd() {
    int64_t position = GetPosition();
    int64_t size = GetSize();
    return position >= 0 && size >= 0 && position >= size;
}

namespace {

// Bytes of a classic UTF-8 sequence by its lead: 2..6, or 0 for no lead.
int SequenceLength(uint8_t lead) {
    int ones = std::countl_one(lead);
    return ones >= 2 && ones <= 6 ? ones : 0;
}

// The value bits of a lead byte of an n-byte sequence.
uint32_t LeadMask(int n) {
    return 0x7Fu >> n;
}

} // namespace

bool IFile::PutUTF8Character(int32_t v) {
    static constexpr uint32_t kLimits[] = {0x80, 0x800, 0x10000, 0x200000, 0x4000000};
    static constexpr uint8_t kLeads[] = {0, 0, 0xC0, 0xE0, 0xF0, 0xF8, 0xFC};
    auto value = uint32_t(v);
    int n = 1;
    while (n <= 5 && value >= kLimits[n - 1])
        ++n;
    uint8_t bytes[6];
    for (int i = n - 1; i > 0; --i, value >>= 6)
        bytes[i] = uint8_t(0x80 | (value & 0x3F));
    bytes[0] = n == 1 ? uint8_t(value) : uint8_t(kLeads[n] | (value & LeadMask(n)));
    Write(bytes, uint32_t(n));
    return true; // whatever the write did, as callers expect
}

// Continuation bytes are taken whole, unchecked and unmasked: their top bits
// reach the value. Existing files were written against this decoding.
bool IFile::GetUTF8Character(int32_t &v) {
    uint8_t lead;
    if (!GetBYTE(lead)) return false;
    if (lead < 0x80) {
        v = lead;
        return true;
    }
    int n = SequenceLength(lead);
    uint8_t rest[5];
    if (n == 0 || !ReadBytes(rest, uint32_t(n - 1))) return false;
    uint32_t value = lead & LeadMask(n);
    for (int i = 0; i < n - 1; ++i)
        value = (value << 6) | rest[i];
    v = int32_t(value);
    return true;
}

int32_t IFile::GetUTF8Character() {
    int32_t v = 0;
    GetUTF8Character(v);
    return v;
}

} // namespace qv
