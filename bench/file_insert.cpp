// IFile::Insert(0, 2048) on a 1 GiB disk file against a plain read/write
// copy of the same bytes over a second file of the same size (written in
// place, so neither side allocates disk blocks), both timed in each iteration.
// The counter "ratio" is copy time over insert time: the insert's throughput
// as a fraction of the plain copy's (1.0 means as fast as a copy).
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <string>
#include <vector>

#include "qv/files/File.h"

namespace {

constexpr int64_t kFileSize = int64_t(1) << 30;
constexpr size_t kFillBlock = 1 << 20;
constexpr size_t kCopyBlock = 0x500000; // the block Insert uses at this size

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

double Seconds(std::chrono::steady_clock::duration d) {
    return std::chrono::duration<double>(d).count();
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
    double insertTotal = 0, copyTotal = 0;
    for (auto _ : state) {
        auto start = std::chrono::steady_clock::now();
        bool inserted = file.Insert(0, 2048);
        auto middle = std::chrono::steady_clock::now();
        PlainCopy(source, copy);
        auto end = std::chrono::steady_clock::now();
        if (!inserted) state.SkipWithError("Insert failed");
        insertTotal += Seconds(middle - start);
        copyTotal += Seconds(end - middle);
        state.SetIterationTime(Seconds(middle - start));
    }
    file.Close();
    std::remove(source.c_str());
    std::remove(copy.c_str());
    state.SetBytesProcessed(int64_t(state.iterations()) * kFileSize);
    state.counters["insert_MiB/s"] = double(state.iterations()) * double(kFileSize >> 20) / insertTotal;
    state.counters["copy_MiB/s"] = double(state.iterations()) * double(kFileSize >> 20) / copyTotal;
    state.counters["ratio"] = copyTotal / insertTotal;
}

BENCHMARK(InsertAgainstPlainCopy)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace
