// IFileSystem::CopyFileW of one large disk file against the system's `cp`
// (started with posix_spawn) copying the same file, both timed in each
// iteration (each after a sync). The size is QV_BENCH_COPY_BYTES (default 256 MiB). The counter
// "ratio" is cp's time over CopyFileW's: CopyFileW's throughput as a
// fraction of cp's (1.0 means as fast as cp). Both destinations are removed
// before each copy, so each side writes a new file.
#include <benchmark/benchmark.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "qv/filesystems/DiskFileSystem.h"

extern char **environ;

namespace {

constexpr size_t kFillBlock = 1 << 20;

int64_t FileSize() {
    char const *text = std::getenv("QV_BENCH_COPY_BYTES");
    long long size = text ? std::atoll(text) : 0;
    return size > 0 ? size : int64_t(256) << 20;
}

std::string ScratchPath(char const *name) {
    char const *dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/qv_bench_copy_file_" + name;
}

void Fill(std::string const &path, int64_t size) {
    std::vector<char> block(kFillBlock);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = char(i * 7 + i / 4093);
    FILE *out = std::fopen(path.c_str(), "wb");
    for (int64_t done = 0; out && done < size; done += int64_t(block.size()))
        std::fwrite(block.data(), 1, size_t(std::min<int64_t>(size - done, int64_t(block.size()))), out);
    if (out) std::fclose(out);
}

bool RunCp(std::string const &from, std::string const &to) {
    char const *argv[] = {"cp", from.c_str(), to.c_str(), nullptr};
    pid_t pid;
    if (posix_spawnp(&pid, "cp", nullptr, nullptr, const_cast<char **>(argv), environ) != 0) return false;
    int status = 0;
    return waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

// Starts from clean caches' worth of dirty pages, so neither side pays for
// the other's writeback.
template <class Copy> double TimeSeconds(Copy copy) {
    ::sync();
    auto start = std::chrono::steady_clock::now();
    copy();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void BM_CopyFileW_vs_cp(benchmark::State &state) {
    int64_t const size = FileSize();
    std::string const source = ScratchPath("source");
    std::string const ours = ScratchPath("ours");
    std::string const theirs = ScratchPath("cp");
    Fill(source, size);
    qv::CFileSystem &disk = *qv::FileSystem;
    qv::CString from(source.c_str()), to(ours.c_str());
    double oursTotal = 0, cpTotal = 0;
    bool ok = true;
    for (auto _ : state) {
        std::remove(ours.c_str());
        std::remove(theirs.c_str());
        oursTotal +=
            TimeSeconds([&] { ok &= qv::IFileSystem::CopyFileW(&disk, from, &disk, to, true, nullptr, nullptr); });
        cpTotal += TimeSeconds([&] { ok &= RunCp(source, theirs); });
    }
    if (!ok) state.SkipWithError("a copy failed");
    state.counters["ratio"] = oursTotal > 0 ? cpTotal / oursTotal : 0;
    state.counters["MiB"] = double(size) / (1 << 20);
    state.SetBytesProcessed(int64_t(state.iterations()) * size * 2);
    std::remove(source.c_str());
    std::remove(ours.c_str());
    std::remove(theirs.c_str());
}
BENCHMARK(BM_CopyFileW_vs_cp)->Unit(benchmark::kMillisecond)->Iterations(3)->UseRealTime();

} // namespace
