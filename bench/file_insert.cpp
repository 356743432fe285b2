// IFile::Insert(0, 2048) on a 1 GiB disk file paired with a plain
// read/write copy of the same bytes over a second file of the same size
// (written in place, so neither side allocates disk blocks), by wall clock.
// speed_ratio is copy time over insert time (1.0: as fast as a copy).
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/files/File.h"

namespace {

constexpr int64_t kFileSize = int64_t(1) << 30;
constexpr size_t kFillBlock = 1 << 20;
constexpr size_t kCopyBlock = 0x40000; // the block Insert moves with at this shift

std::string ScratchPath(char const *name) {
    return std::string("/tmp/qv_bench_file_insert_") + name;
}

// A 1 GiB file written 1 MiB at a time.
void Fill(std::string const &path) {
    std::vector<char> block(kFillBlock);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = char(i * 7);
    FILE *out = std::fopen(path.c_str(), "wb");
    for (int64_t done = 0; out && done < kFileSize; done += int64_t(kFillBlock))
        std::fwrite(block.data(), 1, block.size(), out);
    if (out) std::fclose(out);
}

// Reads all of from and writes it over to, one block at a time.
void PlainCopy(std::string const &from, std::string const &to) {
    int in = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    int out = open(to.c_str(), O_WRONLY | O_CLOEXEC);
    std::vector<char> block(kCopyBlock);
    for (ssize_t got; (got = read(in, block.data(), block.size())) > 0;)
        if (write(out, block.data(), size_t(got)) != got) break;
    close(in);
    close(out);
}

void InsertAgainstPlainCopy(benchmark::State &state) {
    std::string source = ScratchPath("source"), copy = ScratchPath("copy");
    Fill(source);
    Fill(copy);
    std::u16string name(source.begin(), source.end());
    qv::CFile file;
    if (!file.Open(name.c_str(), 0x02 | 0x10 | 0x20)) {
        state.SkipWithError("cannot open the scratch file");
        return;
    }
    bool inserted = true;
    bench::RunPaired(
        state, {"IFile::Insert of 2 KiB at the front of a file vs a plain read/write copy of it", 0.0, true},
        kFileSize, [&] { inserted = file.Insert(0, 2048) && inserted; }, [&] { PlainCopy(source, copy); });
    if (!inserted) state.SkipWithError("Insert failed");
    file.Close();
    std::remove(source.c_str());
    std::remove(copy.c_str());
}

BENCHMARK(InsertAgainstPlainCopy)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);

} // namespace
