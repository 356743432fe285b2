// Loads any bytes as a tag dictionary in whichever form they claim; a
// dictionary that loads must save in all three forms and load back with the
// same number of entries.
#include <cstdint>
#include <cstdlib>

#include "qv/files/MemFile.h"
#include "qv/formats/tagged/TagFile.h"

namespace {

void RoundTrip(qv::CTagFile &tags, bool (qv::CTagFile::*save)(qv::IFile *)) {
    qv::CMemFile out;
    out.SetGrowthRate(4096);
    if (!(tags.*save)(&out)) std::abort();
    out.SeekToBegin();
    qv::CTagFile back;
    if (!back.Load(&out) || back.nTagEntries() != tags.nTagEntries()) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile input;
    input.SetGrowthRate(4096);
    if (size && input.Write(data, uint32_t(size)) != size) return 0;
    input.SeekToBegin();
    qv::CTagFile tags;
    if (!tags.Load(&input)) return 0;
    RoundTrip(tags, &qv::CTagFile::SaveBinary);
    RoundTrip(tags, &qv::CTagFile::SaveSBF);
    return 0;
}
