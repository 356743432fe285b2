// Building a POD table's row index, paired in one run with a plain memchr
// line split of the same file (both read it in 512 KiB blocks), at 100 k and
// 1 M rows. peak_rss_kib shows that memory stays flat in the row count: the
// index lives in a temporary file behind a fixed window.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/core/PersistedArray.h"
#include "qv/files/File.h"
#include "qv/files/OpenFlags.h"
#include "qv/tables/PODLineIndex.h"

namespace {

std::string ScratchPath(int64_t rows) {
    char const *dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/qv_bench_pod_" + std::to_string(rows) + ".txt";
}

void WriteTable(std::string const &path, int64_t rows) {
    std::FILE *f = std::fopen(path.c_str(), "wb");
    for (int64_t i = 0; i < rows; ++i)
        std::fprintf(f, "%lld\t%.3f\t\"frame %lld\"\t12:00:%02lld.5\r\n", (long long)i, double(i) * 0.25,
                     (long long)i, (long long)(i % 60));
    std::fclose(f);
}

int64_t PlainLineSplit(std::string const &path) {
    int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    std::vector<char> block(0x80000);
    int64_t lines = 0;
    for (ssize_t got; (got = read(fd, block.data(), block.size())) > 0;) {
        char const *p = block.data(), *end = p + got;
        while (char const *lf = static_cast<char const *>(std::memchr(p, '\n', size_t(end - p)))) {
            ++lines;
            p = lf + 1;
        }
    }
    close(fd);
    return lines;
}

long PeakRssKiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void IndexAgainstMemchr(benchmark::State &state) {
    int64_t const rows = state.range(0);
    std::string path = ScratchPath(rows);
    WriteTable(path, rows);
    std::u16string name(path.begin(), path.end());
    bool indexed = true;
    int64_t lines = 0;
    bench::RunPaired(
        state, {"POD row index build vs a plain memchr line split of the file", 0.8}, rows,
        [&] {
            qv::CFile file;
            qv::CPersistedArray index(16);
            indexed = file.Open(name.c_str(), qv::kOpenExisting | qv::kOpenRead) &&
                      qv::IndexPODLines(file, 0, index) && index.GetCount() == uint64_t(rows) && indexed;
        },
        [&] { lines = PlainLineSplit(path); });
    if (!indexed || lines != rows) state.SkipWithError("row counts differ");
    state.counters["peak_rss_kib"] = double(PeakRssKiB());
    std::remove(path.c_str());
}

BENCHMARK(IndexAgainstMemchr)->Arg(100000)->Arg(1000000)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);

} // namespace
