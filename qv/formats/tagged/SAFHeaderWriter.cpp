// Writing a SAF header in place: the slack before the data segment absorbs
// the header's change of size, and the data moves only when the slack leaves
// 16..4096 bytes, so that tags change on a huge file without rewriting it.
#include <algorithm>
#include <cstring>
#include <string>

#include "qv/files/IFile.h"
#include "qv/formats/tagged/SAFFile.h"
#include "qv/formats/tagged/SAFLayout.h"

namespace qv {

namespace {

void AppendText(std::string &out, CString const &text) {
    char const *utf8 = text.GetUTF8();
    out.append(utf8, std::strlen(utf8));
}

// Every tag but the last as "name value\r\n"; the last always goes out as
// the DATA line.
std::string FormatTags(TArray<SAF_TAG> const &tags) {
    std::string out;
    for (uint32_t i = 0; i + 1 < tags.nItems(); ++i) {
        AppendText(out, tags.GetAt(i).name);
        out += ' ';
        AppendText(out, tags.GetAt(i).value);
        out += "\r\n";
    }
    return out;
}

// How much the data segment must move (positive: out, negative: in) so that
// the slack before it at dataPosition fits a header of headerSize bytes, and
// the padding that then fills the slack.
int64_t DataShift(IFile *f, uint32_t dataPosition, uint64_t headerSize, bool pad, uint32_t &padding) {
    if (f->GetSize() == 0 && dataPosition == 0) {
        padding = pad ? saf::kFreshPadding : 0;
        return 0;
    }
    int64_t slack = int64_t(dataPosition) - int64_t(headerSize);
    if (slack == 0 || (slack >= saf::kMinSlack && slack <= saf::kMaxSlack)) {
        padding = uint32_t(slack);
        return 0;
    }
    padding = saf::kFreshPadding;
    return int64_t(headerSize) + saf::kFreshPadding - dataPosition;
}

// Moves the data segment by shift bytes at the start of f.
bool MoveData(IFile *f, int64_t shift, IFile::EditOutcome &outcome) {
    outcome = IFile::EditOutcome::Done;
    if (shift > 0) return f->Insert(0, uint32_t(shift), outcome);
    if (shift < 0) return f->Remove(0, uint32_t(-shift), outcome);
    return true;
}

// The first size bytes of f (the old header), to put back after a failure.
bool ReadHeaderBytes(IFile *f, uint32_t size, std::string &out) {
    int64_t fileSize = f->GetSize();
    if (fileSize < 0) return false;
    out.resize(size_t(std::min<int64_t>(size, fileSize)));
    return f->SeekToBegin() == 0 && f->ReadBytes(out.data(), uint32_t(out.size()));
}

bool WriteHeaderBytes(IFile *f, std::string const &bytes) {
    return f->SeekToBegin() == 0 && f->WriteBytes(bytes.data(), uint32_t(bytes.size()));
}

} // namespace

bool CSAFFile::Update(IFile *f, uint32_t &dataPos, bool pad) const {
    if (!f || tags.nItems() == 0 || !headerEndsAsStated) return false;
    std::string header = FormatTags(tags);
    uint64_t headerSize = header.size() + saf::kDataLineSize;
    // The data position is 32 bits: a header must leave room for the padding.
    if (headerSize > UINT32_MAX - saf::kMaxSlack) return false;
    uint32_t padding = 0;
    int64_t shift = DataShift(f, dataPos, headerSize, pad, padding);
    std::string oldHeader;
    if (!ReadHeaderBytes(f, dataPos, oldHeader)) return false;
    IFile::EditOutcome moved;
    if (!MoveData(f, shift, moved)) return false;
    saf::AppendPadding(header, padding);
    header += saf::kDataLine;
    if (WriteHeaderBytes(f, header)) {
        dataPos = uint32_t(header.size());
        return true;
    }
    // The old header goes back over the old layout, so the file still says
    // where its data is; a caller's next data write then lands right.
    IFile::EditOutcome undone;
    if (MoveData(f, -shift, undone)) WriteHeaderBytes(f, oldHeader);
    f->Seek(dataPos, 1);
    return false;
}

bool CSAFFile::SaveTo(IFile *f, uint32_t &dataPos, bool pad) const {
    dataPos = 0;
    return Update(f, dataPos, pad);
}

} // namespace qv
