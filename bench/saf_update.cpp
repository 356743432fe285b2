// Changing a tag in place must cost the same whatever the size of the data
// segment behind the header: with the slack in range nothing moves. The two
// runs differ only in the data segment (1 MiB and 1 GiB, sparse, in /tmp);
// their ratio should be near 1.
#include <benchmark/benchmark.h>

#include <string>

#include <unistd.h>

#include "qv/core/String.h"
#include "qv/files/File.h"
#include "qv/formats/tagged/SAFFile.h"

namespace {

// Create or truncate, read and write, removed at close.
constexpr uint32_t kScratchFlags = 0x08 | 0x10 | 0x20 | 0x100000;

bool MakeSafFile(qv::CFile &file, int64_t dataBytes) {
    std::string path = "/tmp/qv_bench_saf_" + std::to_string(getpid()) + "_" + std::to_string(dataBytes);
    if (!file.Open(qv::CString(path.c_str()).GetUTF16(), kScratchFlags)) return false;
    qv::CSAFFile saf;
    saf.New(false);
    saf.AddTag(u"Width", u"640");
    saf.AddTag(u"Height", u"480");
    saf.AddTag(u"Frames", u"1750");
    uint32_t dataPosition = 0;
    // A sparse data segment: the size is set, no byte is written.
    return saf.SaveTo(&file, dataPosition, true) && file.SetSize(dataPosition + dataBytes);
}

// Load, change one tag (alternating its length), rewrite in place.
void ChangeTagInPlace(benchmark::State &state) {
    qv::CFile file;
    int64_t const dataBytes = state.range(0);
    if (!MakeSafFile(file, dataBytes)) {
        state.SkipWithError("cannot create the file in /tmp");
        return;
    }
    char16_t const *const values[] = {u"Camera on the roof", u"Camera"};
    uint32_t firstPosition = 0;
    size_t turn = 0;
    for (auto _ : state) {
        qv::CSAFFile saf;
        saf.Load(&file);
        saf.SetTagValue(u"Comment", values[turn++ % 2]);
        uint32_t dataPosition = saf.GetDataPosition();
        saf.Update(&file, dataPosition, true);
        if (!firstPosition) firstPosition = dataPosition;
        if (dataPosition != firstPosition || file.GetSize() != dataPosition + dataBytes) {
            state.SkipWithError("the data segment moved");
            break;
        }
    }
}

BENCHMARK(ChangeTagInPlace)->Arg(int64_t(1) << 20)->Arg(int64_t(1) << 30);

} // namespace
