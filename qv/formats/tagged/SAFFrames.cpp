#include "qv/formats/tagged/SAFFrames.h"

#include <vector>

#include "qv/core/String.h"
#include "qv/files/File.h"
#include "qv/files/OpenFlags.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qv {

struct CSAFFrames::SFile {
    CFile disk;              // the file when opened by path
    IFile *file = nullptr;   // where the frames are read from
    std::vector<uint8_t> bytes; // one frame as stored
};

namespace {

// A decimal tag value; false when absent, empty, not all digits or above limit.
bool TagNumber(CSAFFile &saf, char16_t const *name, uint32_t limit, uint32_t &value) {
    char16_t const *text = saf.GetTagValue(name);
    if (!text || !*text) return false;
    uint64_t number = 0;
    for (; *text; ++text) {
        if (*text < u'0' || *text > u'9') return false;
        number = number * 10 + uint64_t(*text - u'0');
        if (number > limit) return false;
    }
    value = uint32_t(number);
    return true;
}

bool TagIs(CSAFFile &saf, char16_t const *name, char16_t const *expected) {
    char16_t const *text = saf.GetTagValue(name);
    return text && CString::CompareNoCase(text, expected) == 0;
}

} // namespace

CSAFFrames::CSAFFrames() = default;
CSAFFrames::~CSAFFrames() = default;

void CSAFFrames::Close() {
    m_file.reset();
    m_width = m_height = m_bits = m_frameBytes = m_frameCount = m_dataPosition = 0;
}

bool CSAFFrames::Open(char16_t const *path) {
    Close();
    auto state = std::make_unique<SFile>();
    if (!path || !state->disk.Open(path, kOpenExisting | kOpenRead | kOpenShareRead)) return false;
    state->file = &state->disk;
    return Take(std::move(state));
}

bool CSAFFrames::Open(IFile *file) {
    Close();
    if (!file) return false;
    auto state = std::make_unique<SFile>();
    state->file = file;
    return Take(std::move(state));
}

bool CSAFFrames::Take(std::unique_ptr<SFile> state) {
    CSAFFile saf;
    if (!saf.Load(state->file)) return false;
    uint32_t width = 0, height = 0, frameBytes = 0, bits = 16;
    if (!TagIs(saf, u"KeyWrd", u"IMG") || !TagIs(saf, u"BytOrd", u"LH") || !TagIs(saf, u"DaType", u"UInt16"))
        return false;
    if (!TagNumber(saf, u"xPixls", kMaxFramePixels, width) || !TagNumber(saf, u"yPixls", kMaxFramePixels, height) ||
        !TagNumber(saf, u"IMSize", 4 * kMaxFramePixels, frameBytes))
        return false;
    if (saf.GetTagValue(u"ADBits") && (!TagNumber(saf, u"ADBits", 16, bits) || bits == 0)) return false;
    uint64_t const pixels = uint64_t(width) * height;
    if (pixels == 0 || pixels > kMaxFramePixels || frameBytes < 2 * pixels) return false;
    int64_t const size = state->file->GetSize();
    uint32_t const data = saf.GetDataPosition();
    if (size < int64_t(data)) return false;
    uint64_t const frames = uint64_t(size - data) / frameBytes;
    m_width = width;
    m_height = height;
    m_bits = bits;
    m_frameBytes = frameBytes;
    m_frameCount = frames > UINT32_MAX ? UINT32_MAX : uint32_t(frames);
    m_dataPosition = data;
    m_file = std::move(state);
    return true;
}

bool CSAFFrames::ReadFrame(uint32_t n, uint16_t *counts) {
    if (!m_file || n >= m_frameCount) return false;
    size_t const pixels = size_t(m_width) * m_height;
    std::vector<uint8_t> &bytes = m_file->bytes;
    bytes.resize(pixels * 2);
    int64_t const at = int64_t(m_dataPosition) + int64_t(n) * m_frameBytes;
    if (m_file->file->Seek(at, 1) != at) return false;
    if (m_file->file->Read(bytes.data(), uint32_t(bytes.size())) != bytes.size()) return false;
    for (size_t i = 0; i < pixels; ++i) counts[i] = uint16_t(bytes[2 * i] | (bytes[2 * i + 1] << 8)); // "LH": low byte first
    return true;
}

} // namespace qv
