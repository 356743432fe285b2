// Opening a POD table (CPODFile::Load: header, column lines, and the row
// index built in one pass of 512 KiB reads with memchr, keeping every 64th
// line's position), paired in one run with a plain memchr line split of the
// same file, at 100 k, 1 M and 10 M rows. peak_rss_kib shows that memory
// stays flat in the row count: the index sits behind a fixed window, in a
// temporary file past it. The 10 M file (about 0.5 GB) is made once in
// $TMPDIR and kept for later runs.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/tables/PODFile.h"

namespace {

constexpr char kHeader[] = "HdSize auto\r\nKeyWrd POD\r\nNumDPs auto\r\nPNSize 20\r\nPUSize 20\r\nPCSize 20\r\n"
                           "NParam 4\r\nDATA\r\nFrame\tTime\tNote\tIRIG\r\nNone\tseconds\tNone\tIRIG\r\n"
                           "Unclassified\tUnclassified\tUnclassified\tUnclassified\r\n";

std::string ScratchPath(int64_t rows) {
    char const *dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/qv_bench_pod_" + std::to_string(rows) + ".pod";
}

// Makes the table unless a finished one is there: the file is written under
// another name and renamed, so a present file is whole.
void EnsureTable(std::string const &path, int64_t rows) {
    struct stat st {};
    if (::stat(path.c_str(), &st) == 0) return;
    std::string partial = path + ".part";
    std::FILE *f = std::fopen(partial.c_str(), "wb");
    if (!f) return;
    std::fputs(kHeader, f);
    for (int64_t i = 0; i < rows; ++i)
        std::fprintf(f, "%lld\t%.3f\t\"frame %lld\"\t12:00:%02lld.5\r\n", (long long)i, double(i) * 0.25, (long long)i,
                     (long long)(i % 60));
    if (std::fclose(f) == 0) std::rename(partial.c_str(), path.c_str());
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

void OpenAgainstMemchr(benchmark::State &state) {
    int64_t const rows = state.range(0);
    std::string path = ScratchPath(rows);
    EnsureTable(path, rows);
    std::u16string name(path.begin(), path.end());
    bool opened = true;
    int64_t lines = 0;
    // Tables stay open until the rounds are over: closing one (freeing its
    // temporary files) is not part of opening it.
    std::vector<std::unique_ptr<qv::CPODFile>> tables;
    std::string const work = "POD table open (row index build) of " + std::to_string(rows) +
                             " rows, vs a plain memchr line split of the file";
    bench::RunPaired(
        state, {work.c_str(), 0.8}, rows,
        [&] {
            tables.push_back(std::make_unique<qv::CPODFile>());
            qv::CPODFile &pod = *tables.back();
            opened = pod.Load(&qv::GetFileSystem(), name.c_str(), true) && pod.nDPs() == uint64_t(rows) && opened;
        },
        [&] { lines = PlainLineSplit(path); });
    tables.clear();
    // The reference counts the header's lines too: 8 tag lines and 3 column lines.
    if (!opened || lines != rows + 11) state.SkipWithError("row counts differ");
    state.counters["peak_rss_kib"] = double(PeakRssKiB());
    if (rows < 10000000) std::remove(path.c_str());
}

BENCHMARK(OpenAgainstMemchr)
    ->Arg(100000)
    ->Arg(1000000)
    ->Arg(10000000)
    ->UseManualTime()
    ->Iterations(3)
    ->Unit(benchmark::kMillisecond);

} // namespace
