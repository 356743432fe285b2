// CDFS against plain files, each pair timed in turns in one run
// (bench/PairedTiming.h):
//  - reading a 64 MiB entry of a CDFS on disk against reading the same bytes
//    from a plain CFile, 1 MiB a call ("speed_ratio" is CDFS speed over
//    CFile speed, the goal being at least 0.9).
//    Both sides make one read per MiB; what still separates them is the page
//    cache. The layout puts the entry's first byte at host offset 0x102000
//    (the table's block plus the hole its first 1 MiB growth leaves), and the
//    kernel sizes the cache's folios by the file offset a write starts at, so
//    the entry's bytes sit in eight folios a MiB where the plain file's sit in
//    one, and a warm read of them costs more in the kernel. A plain file with
//    its bytes at that offset reads as slowly; after the cache is dropped and
//    filled again by readahead, both read alike;
//  - the same read against a plain file whose bytes were written at the
//    entry's host offset, which leaves only qv's own cost;
//  - growing the first entry of a 256 MiB host by one block, which moves
//    everything behind it, against a plain in-place move of the same tail by
//    pread/pwrite in 1 MiB blocks on a file of the same size. 256 MiB rather
//    than 1 GiB keeps the run short on a shared machine; the move is linear
//    in the tail, so the ratio carries over.
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/files/File.h"
#include "qv/filesystems/CDFileSystem.h"

namespace {

constexpr int64_t kMiB = 1 << 20;

std::string ScratchPath(char const *name) {
    return std::string("/tmp/qv_bench_cdfs_") + name;
}

std::u16string Wide(std::string const &text) {
    return std::u16string(text.begin(), text.end());
}

// size bytes into file, 1 MiB a write.
bool Fill(qv::IFile &file, int64_t size) {
    std::vector<char> block(kMiB);
    for (size_t i = 0; i < block.size(); ++i)
        block[i] = char(i * 7 + i / 4093);
    for (int64_t done = 0; done < size; done += kMiB)
        if (file.Write(block.data(), uint32_t(kMiB)) != uint32_t(kMiB)) return false;
    return true;
}

// Reads file from byte `from` to its end, 1 MiB a call.
int64_t ReadAll(qv::IFile &file, std::vector<char> &block, int64_t from = 0) {
    file.Seek(from, 1);
    int64_t total = 0;
    for (uint32_t n; (n = file.Read(block.data(), uint32_t(block.size()))) > 0;)
        total += n;
    return total;
}

void ReadEntryAgainstCFile(benchmark::State &state) {
    int64_t const size = 64 * kMiB;
    std::string hostPath = ScratchPath("read_host"), plainPath = ScratchPath("read_plain");
    std::remove(hostPath.c_str());
    qv::CCDFileSystem cdfs;
    qv::CFile plain;
    std::unique_ptr<qv::IFile> entry;
    if (!cdfs.Create(Wide(hostPath).c_str(), false) ||
        !(entry.reset(cdfs.CreateFileW(u"/big", 0x28)), entry && Fill(*entry, size)) ||
        !plain.Open(Wide(plainPath).c_str(), 0x08 | 0x10 | 0x20) || !Fill(plain, size)) {
        state.SkipWithError("cannot make the scratch files");
        return;
    }
    std::vector<char> block(kMiB);
    bench::RunPaired(
        state, {"Reading a 64 MiB CDFS entry on disk, vs the same bytes from a plain CFile", 0.9, true}, size,
        [&] { benchmark::DoNotOptimize(ReadAll(*entry, block)); },
        [&] { benchmark::DoNotOptimize(ReadAll(plain, block)); });
    entry.reset();
    cdfs.Close();
    plain.Close();
    std::remove(hostPath.c_str());
    std::remove(plainPath.c_str());
}

// Where the bytes of the entry at path start in the host, as `qv cdfs list`
// shows it; -1 when its properties do not name it.
int64_t HostOffset(qv::CCDFileSystem &cdfs, char16_t const *path) {
    qv::CDirectoryEntry const entry = cdfs.GetFileInfo(path);
    char16_t const *offset = entry.properties.GetValue(u"Offset");
    return offset && *offset ? std::strtoll(qv::CString(offset).GetUTF8(), nullptr, 0) : -1;
}

// The same read against a plain file whose bytes were written at the entry's
// own host offset, so both sit in the page cache alike: what is left is qv's
// own cost of reading through the composite file.
void ReadEntryAgainstCFileAtItsOffset(benchmark::State &state) {
    int64_t const size = 64 * kMiB;
    std::string hostPath = ScratchPath("offset_host"), plainPath = ScratchPath("offset_plain");
    std::remove(hostPath.c_str());
    std::remove(plainPath.c_str());
    qv::CCDFileSystem cdfs;
    qv::CFile plain;
    std::unique_ptr<qv::IFile> entry;
    int64_t offset = -1;
    if (!cdfs.Create(Wide(hostPath).c_str(), false) ||
        !(entry.reset(cdfs.CreateFileW(u"/big", 0x28)), entry && Fill(*entry, size)) ||
        (offset = HostOffset(cdfs, u"/big")) < 0 || !plain.Open(Wide(plainPath).c_str(), 0x08 | 0x10 | 0x20) ||
        plain.Seek(offset, 1) != offset || !Fill(plain, size)) {
        state.SkipWithError("cannot make the scratch files");
        return;
    }
    std::vector<char> block(kMiB);
    bench::RunPaired(
        state,
        {"Reading a 64 MiB CDFS entry on disk, vs the same bytes written at the same offset of a plain CFile", 0.9,
         true},
        size, [&] { benchmark::DoNotOptimize(ReadAll(*entry, block)); },
        [&] { benchmark::DoNotOptimize(ReadAll(plain, block, offset)); });
    entry.reset();
    cdfs.Close();
    plain.Close();
    std::remove(hostPath.c_str());
    std::remove(plainPath.c_str());
}

// Moves [from, end) of the file up by delta in place, last block first.
bool PlainMove(int fd, int64_t from, int64_t delta, std::vector<char> &block) {
    off_t end = lseek(fd, 0, SEEK_END);
    for (int64_t moved = end; moved > from;) {
        int64_t n = std::min<int64_t>(int64_t(block.size()), moved - from);
        int64_t at = moved - n;
        if (pread(fd, block.data(), size_t(n), at) != n || pwrite(fd, block.data(), size_t(n), at + delta) != n)
            return false;
        moved = at;
    }
    return true;
}

void GrowFrontAgainstBlockMove(benchmark::State &state) {
    int64_t const size = 256 * kMiB;
    std::string hostPath = ScratchPath("grow_host"), plainPath = ScratchPath("grow_plain");
    std::remove(hostPath.c_str());
    qv::CCDFileSystem cdfs;
    std::unique_ptr<qv::IFile> front, rest;
    qv::CFile plain;
    if (!cdfs.Create(Wide(hostPath).c_str(), false) ||
        !(front.reset(cdfs.CreateFileW(u"/front", 0x28)), front && front->Write("f", 1) == 1) ||
        !(rest.reset(cdfs.CreateFileW(u"/rest", 0x28)), rest && Fill(*rest, size)) ||
        !plain.Open(Wide(plainPath).c_str(), 0x08 | 0x10 | 0x20) || !Fill(plain, size)) {
        state.SkipWithError("cannot make the scratch files");
        return;
    }
    plain.Close();
    int fd = open(plainPath.c_str(), O_RDWR | O_CLOEXEC);
    std::vector<char> block(kMiB), grow(0x1000, 'g');
    bool ok = true;
    int64_t at = 0x1000;
    bench::RunPaired(
        state, {"Growing the front entry of a 256 MiB CDFS host, vs a plain in-place block move", 0.8, true}, 1,
        [&] {
            front->Seek(0, 3);
            ok = ok && front->Write(grow.data(), uint32_t(grow.size())) == grow.size();
        },
        [&] {
            ok = ok && PlainMove(fd, at, 0x1000, block);
            at += 0x1000;
        });
    if (!ok) state.SkipWithError("a move failed");
    close(fd);
    front.reset();
    rest.reset();
    cdfs.Close();
    std::remove(hostPath.c_str());
    std::remove(plainPath.c_str());
}

BENCHMARK(ReadEntryAgainstCFile)->UseManualTime()->Iterations(60)->Unit(benchmark::kMillisecond);
BENCHMARK(GrowFrontAgainstBlockMove)->UseManualTime()->Iterations(4)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadEntryAgainstCFileAtItsOffset)->UseManualTime()->Iterations(60)->Unit(benchmark::kMillisecond);

} // namespace
