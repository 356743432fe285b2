// Writing a SAF header in place: the slack before the data segment absorbs
// the header's change of size, and the data moves only when the slack leaves
// 16..4096 bytes, so that tags change on a huge file without rewriting it.
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

// Makes the room before the data segment (at dataPosition) fit a header of
// headerSize bytes plus padding, and says how much padding that is.
bool MakeRoom(IFile *f, uint32_t dataPosition, uint64_t headerSize, bool pad, uint32_t &padding) {
    if (f->GetSize() == 0 && dataPosition == 0) {
        padding = pad ? saf::kFreshPadding : 0;
        return true;
    }
    int64_t slack = int64_t(dataPosition) - int64_t(headerSize);
    if (slack == 0 || (slack >= saf::kMinSlack && slack <= saf::kMaxSlack)) {
        padding = uint32_t(slack);
        return true;
    }
    padding = saf::kFreshPadding;
    if (slack < saf::kMinSlack) return f->Insert(0, uint32_t(headerSize + saf::kFreshPadding - dataPosition));
    return f->Remove(0, uint32_t(dataPosition - saf::kFreshPadding - headerSize));
}

} // namespace

bool CSAFFile::Update(IFile *f, uint32_t &dataPos, bool pad) const {
    if (!f || tags.nItems() == 0) return false;
    std::string header = FormatTags(tags);
    uint64_t headerSize = header.size() + saf::kDataLineSize;
    // The data position is 32 bits: a header must leave room for the padding.
    if (headerSize > UINT32_MAX - saf::kMaxSlack) return false;
    uint32_t padding = 0;
    if (!MakeRoom(f, dataPos, headerSize, pad, padding)) return false;
    saf::AppendPadding(header, padding);
    header += saf::kDataLine;
    f->SeekToBegin();
    f->WriteBytes(header.data(), uint32_t(header.size()));
    dataPos = uint32_t(f->GetPosition());
    return true;
}

bool CSAFFile::SaveTo(IFile *f, uint32_t &dataPos, bool pad) const {
    dataPos = 0;
    return Update(f, dataPos, pad);
}

} // namespace qv
