// Reading a SAF header: one tag a line up to the DATA line, or up to the byte
// count that an older fixed-size header names in HdSize.
#include <cstring>

#include "qv/core/WideChar.h"
#include "qv/files/IFile.h"
#include "qv/formats/tagged/SAFFile.h"
#include "qv/formats/tagged/SAFLayout.h"

namespace qv {

namespace {

constexpr uint16_t kTagGrowth = 256;

bool HasName(SAF_TAG const &tag, char16_t const *word) {
    return _wcsicmp(tag.name.GetUTF16(), word) == 0;
}

// One line: the name up to the first blank, then the value without the
// blanks around it. False at the end of the header (end of file, or a line
// too long for the buffer).
bool GetTag(IFile *f, SAF_TAG &tag) {
    char line[saf::kLineBuffer];
    if (!f->GetLine(line, sizeof(line))) return false;
    size_t length = std::strlen(line);
    char const *blank = static_cast<char const *>(std::memchr(line, ' ', length));
    size_t nameLength = blank ? size_t(blank - line) : length;
    size_t valueStart = nameLength;
    while (valueStart < length && line[valueStart] == ' ')
        ++valueStart;
    size_t valueEnd = length;
    while (valueEnd > valueStart && line[valueEnd - 1] == ' ')
        --valueEnd;
    tag.name.Copy(line, int(nameLength));
    tag.value.Copy(line + valueStart, int(valueEnd - valueStart));
    return true;
}

bool StartsWithMagic(IFile *f) {
    char magic[6];
    f->SeekToBegin();
    return f->ReadBytes(magic, sizeof(magic)) && _strnicmp(magic, "HDSize", sizeof(magic)) == 0;
}

} // namespace

bool CSAFFile::Load(IFile *f) {
    ForgetFile();
    tags.Destroy();
    if (!f || !StartsWithMagic(f)) return false;
    f->SeekToBegin();
    // Long headers would otherwise copy the list every five tags.
    tags.SetGrowthRate(kTagGrowth);

    int32_t limit = -1;
    SAF_TAG tag;
    for (uint32_t lines = 0; lines < saf::kMaxHeaderLines && GetTag(f, tag); ++lines) {
        uint32_t position = uint32_t(f->GetPosition());
        if (HasName(tag, saf::kPadding)) continue;
        if (HasName(tag, saf::kHdSize) && tag.value.CompareNoCase(u"Auto") != 0) limit = _wtol(tag.value.GetUTF16());
        tags.Add(tag);
        if (HasName(tag, saf::kData) || position == uint32_t(limit)) break;
    }
    dataPosition = uint32_t(f->GetPosition());
    headerEndsAsStated = limit <= 0 || dataPosition == uint32_t(limit);

    if (tags.nItems() == 0 || !HasName(tags.GetAt(0), saf::kHdSize)) return false;
    // Older headers name their size in HdSize; every loaded header says
    // "Auto" so that a rewrite treats it as one of ours.
    tags[0].value = u"Auto";
    if (!HasName(tags.GetAt(tags.nItems() - 1), saf::kData)) tags.Add(SAF_TAG{CString(saf::kData), CString(u"")});
    return true;
}

} // namespace qv
