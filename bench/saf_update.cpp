// Changing a tag in place must cost the same whatever the size of the data
// segment behind the header: with the slack in range nothing moves. The pair
// differs only in the data segment (1 GiB against 1 MiB, sparse, in /tmp);
// their ratio should be near 1.
#include <benchmark/benchmark.h>

#include <string>

#include <unistd.h>

#include "PairedTiming.h"
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

// Load, change one tag (alternating its length), rewrite in place; false
// when the data segment moved.
struct STagChanger {
    qv::CFile &file;
    int64_t dataBytes;
    uint32_t firstPosition = 0;
    size_t turn = 0;

    bool operator()() {
        static char16_t const *const values[] = {u"Camera on the roof", u"Camera"};
        qv::CSAFFile saf;
        saf.Load(&file);
        saf.SetTagValue(u"Comment", values[turn++ % 2]);
        uint32_t dataPosition = saf.GetDataPosition();
        saf.Update(&file, dataPosition, true);
        if (!firstPosition) firstPosition = dataPosition;
        return dataPosition == firstPosition && file.GetSize() == dataPosition + dataBytes;
    }
};

void ChangeTagInPlace(benchmark::State &state) {
    qv::CFile large, small;
    if (!MakeSafFile(large, int64_t(1) << 30) || !MakeSafFile(small, int64_t(1) << 20)) {
        state.SkipWithError("cannot create the files in /tmp");
        return;
    }
    STagChanger changeLarge{large, int64_t(1) << 30}, changeSmall{small, int64_t(1) << 20};
    bool stayed = true;
    bench::RunPaired(
        state, {"CSAFFile tag changed in place, 1 GiB data segment vs 1 MiB", 0.9}, 1,
        [&] { stayed = changeLarge() && stayed; }, [&] { stayed = changeSmall() && stayed; });
    if (!stayed) state.SkipWithError("the data segment moved");
}

BENCHMARK(ChangeTagInPlace)->UseManualTime();

} // namespace
