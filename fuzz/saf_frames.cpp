// CSAFFrames over arbitrary bytes: whatever opens promises frames that lie
// inside the file, and the first and the last of them read in full.
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/formats/tagged/SAFFrames.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile file;
    file.SetGrowthRate(4096);
    if (size && file.Write(data, uint32_t(size)) != size) return 0;
    qv::CSAFFrames frames;
    if (!frames.Open(&file)) return 0;
    uint64_t pixels = uint64_t(frames.Width()) * frames.Height();
    Require(pixels > 0 && pixels <= qv::CSAFFrames::kMaxFramePixels && frames.FrameBytes() >= 2 * pixels);
    Require(uint64_t(frames.DataPosition()) + uint64_t(frames.FrameCount()) * frames.FrameBytes() <= size);
    if (frames.FrameCount() == 0) return 0;
    std::vector<uint16_t> counts(static_cast<size_t>(pixels));
    Require(frames.ReadFrame(0, counts.data()));
    Require(frames.ReadFrame(frames.FrameCount() - 1, counts.data()));
    Require(!frames.ReadFrame(frames.FrameCount(), counts.data()));
    return 0;
}
