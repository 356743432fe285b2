// IFileSystem::CopyFileW of one large disk file against the system's `cp`
// (started with posix_spawn) copying the same file, paired round by round in
// this process (PairedTiming.h), wall clock. Both write a new file: before
// each copy of either side both destinations are removed and the disk cache
// is written back (untimed), so each starts with the source cached, nothing
// dirty and no old destination to replace; a first round of both is not
// timed. The size is QV_BENCH_COPY_BYTES
// (default 1 GiB).
#include <benchmark/benchmark.h>

#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/filesystems/DiskFileSystem.h"

extern char **environ;

namespace {

constexpr size_t kFillBlock = 1 << 20;

int64_t FileSize() {
    char const *text = std::getenv("QV_BENCH_COPY_BYTES");
    long long size = text ? std::atoll(text) : 0;
    return size > 0 ? size : int64_t(1) << 30;
}

std::string ScratchPath(char const *name) {
    char const *dir = std::getenv("TMPDIR");
    return std::string(dir && *dir ? dir : "/tmp") + "/qv_bench_copy_file_" + name;
}

// Writes the source, which then stays in the cache for both sides.
bool Fill(std::string const &path, int64_t size) {
    std::vector<char> block(kFillBlock);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = char(i * 7 + i / 4093);
    FILE *out = std::fopen(path.c_str(), "wb");
    bool written = out != nullptr;
    for (int64_t done = 0; written && done < size; done += int64_t(block.size())) {
        size_t n = size_t(std::min<int64_t>(size - done, int64_t(block.size())));
        written = std::fwrite(block.data(), 1, n, out) == n;
    }
    return out && std::fclose(out) == 0 && written;
}

bool RunCp(std::string const &from, std::string const &to) {
    char const *argv[] = {"cp", from.c_str(), to.c_str(), nullptr};
    pid_t pid;
    if (posix_spawnp(&pid, "cp", nullptr, nullptr, const_cast<char **>(argv), environ) != 0) return false;
    int status = 0;
    return waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void BM_CopyFileW_vs_cp(benchmark::State &state) {
    int64_t const size = FileSize();
    std::string const source = ScratchPath("source");
    std::string const ours = ScratchPath("ours");
    std::string const theirs = ScratchPath("cp");
    if (!Fill(source, size)) {
        state.SkipWithError("cannot write the source file");
        return;
    }
    qv::CFileSystem &disk = *qv::FileSystem;
    qv::CString const from(source.c_str()), to(ours.c_str());
    std::string const work = "CopyFileW of " + std::to_string(size >> 20) + " MiB to a new file vs cp";
    bool ok = true;
    auto prepare = [&] {
        std::remove(ours.c_str());
        std::remove(theirs.c_str());
        ::sync();
    };
    auto copyQv = [&] { ok &= qv::IFileSystem::CopyFileW(&disk, from, &disk, to, true, nullptr, nullptr); };
    auto copyCp = [&] { ok &= RunCp(source, theirs); };
    // One untimed round: the first copy after the source was written runs
    // far slower than the rest, whichever side makes it.
    prepare();
    copyQv();
    prepare();
    copyCp();
    bench::RunPairedPrepared(state, {work.c_str(), 1.0, true}, size, prepare, copyQv, copyCp);
    if (!ok) state.SkipWithError("a copy failed");
    std::remove(source.c_str());
    std::remove(ours.c_str());
    std::remove(theirs.c_str());
}
BENCHMARK(BM_CopyFileW_vs_cp)->Unit(benchmark::kMillisecond)->Iterations(8)->UseManualTime();

} // namespace
