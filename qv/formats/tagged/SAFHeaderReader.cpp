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
// blanks around it. Any outcome but Line ends the header (the end of the
// file, a line too long for the buffer); Failed fails the load.
IFile::LineOutcome GetTag(IFile *f, SAF_TAG &tag) {
    char line[saf::kLineBuffer];
    IFile::LineOutcome outcome;
    if (!f->GetLine(line, sizeof(line), outcome)) return outcome;
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
    return outcome;
}

bool StartsWithMagic(IFile *f) {
    char magic[6];
    return f->SeekToBegin() == 0 && f->ReadBytes(magic, sizeof(magic)) && _strnicmp(magic, "HDSize", sizeof(magic)) == 0;
}

} // namespace

bool CSAFFile::Load(IFile *f) {
    ForgetFile();
    tags.Destroy();
    if (!f || !StartsWithMagic(f) || f->SeekToBegin() != 0) return false;
    // Long headers would otherwise copy the list every five tags.
    tags.SetGrowthRate(kTagGrowth);

    int32_t limit = -1;
    SAF_TAG tag;
    IFile::LineOutcome outcome = IFile::LineOutcome::Line;
    for (uint32_t lines = 0; lines < saf::kMaxHeaderLines; ++lines) {
        // A failed read is not the end of the header: a part of it would pass
        // for the whole, and a later save would write the part back.
        if ((outcome = GetTag(f, tag)) != IFile::LineOutcome::Line) break;
        int64_t at = f->GetPosition();
        if (at < 0) return false;
        uint32_t position = uint32_t(at);
        if (HasName(tag, saf::kPadding)) continue;
        if (HasName(tag, saf::kHdSize) && tag.value.CompareNoCase(u"Auto") != 0) limit = _wtol(tag.value.GetUTF16());
        tags.Add(tag);
        if (HasName(tag, saf::kData) || position == uint32_t(limit)) break;
    }
    if (outcome == IFile::LineOutcome::Failed) return false;
    int64_t end = f->GetPosition();
    if (end < 0) return false;
    dataPosition = uint32_t(end);
    headerEndsAsStated = limit <= 0 || dataPosition == uint32_t(limit);

    if (tags.nItems() == 0 || !HasName(tags.GetAt(0), saf::kHdSize)) return false;
    // Older headers name their size in HdSize; every loaded header says
    // "Auto" so that a rewrite treats it as one of ours.
    tags[0].value = u"Auto";
    if (!HasName(tags.GetAt(tags.nItems() - 1), saf::kData)) tags.Add(SAF_TAG{CString(saf::kData), CString(u"")});
    return true;
}

} // namespace qv
