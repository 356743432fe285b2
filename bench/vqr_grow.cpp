// Growing the first block of a VQR container by 2 KiB, with 1 GiB of later
// blocks behind it (all moved up by IFile::Insert), paired with a plain
// in-place move of the same bytes over a second file (pread/pwrite from the
// top down in 256 KiB blocks), by wall clock. speed_ratio is move time over
// growth time (1.0: as fast as the move). QV_BENCH_VQR_GROW_MIB sets the size
// of the later data for quick runs (default 1024).
#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "PairedTiming.h"
#include "qv/formats/indexed/VQRFile.h"

namespace {

constexpr int kLaterBlocks = 4;
constexpr size_t kMoveBlock = 0x40000; // the block Insert moves with at this shift

// The size of each of the later blocks: a quarter of the data asked for.
uint32_t LaterBlockSize() {
    char const *mib = std::getenv("QV_BENCH_VQR_GROW_MIB");
    long asked = mib ? std::strtol(mib, nullptr, 10) : 1024;
    if (asked < 4 || asked > 4000) asked = 1024;
    return uint32_t(asked / kLaterBlocks) << 20;
}

std::string ScratchPath(char const *name) {
    return std::string("/tmp/qv_bench_vqr_grow_") + name;
}

// Moves the bytes from offset `from` to the end up by shift, in place, the
// tail first, as a plain program would.
void PlainMove(std::string const &path, int64_t from, int64_t shift) {
    int fd = open(path.c_str(), O_RDWR | O_CLOEXEC);
    int64_t end = lseek(fd, 0, SEEK_END);
    std::vector<char> block(kMoveBlock);
    for (int64_t stop = end; stop > from;) {
        int64_t start = stop - int64_t(block.size()) > from ? stop - int64_t(block.size()) : from;
        size_t n = size_t(stop - start);
        if (pread(fd, block.data(), n, start) != ssize_t(n) || pwrite(fd, block.data(), n, start + shift) != ssize_t(n))
            break;
        stop = start;
    }
    close(fd);
}

void GrowFirstBlockAgainstPlainMove(benchmark::State &state) {
    uint32_t const laterBlock = LaterBlockSize();
    std::string const work = "VQR: grow the first block by 2 KiB before " +
                             std::to_string((laterBlock >> 20) * kLaterBlocks) +
                             " MiB of blocks vs a plain in-place move";
    std::string path = ScratchPath("container"), other = ScratchPath("other");
    std::u16string name(path.begin(), path.end());
    {
        qv::CVQRFile vqr;
        if (!vqr.Create(name.c_str())) {
            state.SkipWithError("cannot create the container");
            return;
        }
        std::vector<char> fill(1 << 20, 7);
        for (int b = 0; b <= kLaterBlocks; ++b) {
            qv::IFile &block = vqr.GetIndexAt(vqr.CreateIndex(1, 0, 0, 0xFFFFFFFF))->m_file;
            for (uint32_t done = 0; b > 0 && done < laterBlock; done += uint32_t(fill.size()))
                block.Write(fill.data(), uint32_t(fill.size()));
        }
    }
    std::vector<char> copy(1 << 20, 5);
    FILE *out = std::fopen(other.c_str(), "wb");
    for (int64_t done = 0; out && done < int64_t(laterBlock) * kLaterBlocks + (1 << 20); done += int64_t(copy.size()))
        std::fwrite(copy.data(), 1, copy.size(), out);
    if (out) std::fclose(out);

    qv::CVQRFile vqr;
    if (!vqr.Open(name.c_str(), true) || !vqr.ReOpenForWrite()) {
        state.SkipWithError("cannot open the container");
        return;
    }
    qv::IFile &first = vqr.GetIndexAt(0)->m_file;
    static char const more[2048] = {};
    bool grown = true;
    bench::RunPaired(
        state, {work.c_str(), 0.8, true},
        int64_t(laterBlock) * kLaterBlocks,
        [&] {
            first.Seek(0, 3);
            grown = first.Write(more, sizeof more) == sizeof more && grown;
        },
        [&] { PlainMove(other, 0x200, 2048); });
    if (!grown) state.SkipWithError("the growth failed");
    vqr.Close();
    std::remove(path.c_str());
    std::remove(other.c_str());
}

BENCHMARK(GrowFirstBlockAgainstPlainMove)->UseManualTime()->Iterations(4)->Unit(benchmark::kMillisecond);

} // namespace
