// qv saf frames FILE: the frames of a SAF image file (size, bits, bytes a
// frame, data offset, count). qv saf frame [--csv] FILE N: frame N's counts
// as CSV (the only form, so --csv may be left out): a heading x0,x1,...
// naming the columns, then one line a row.
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Commands.h"
#include "Input.h"
#include "qv/core/String.h"
#include "qv/formats/tagged/SAFFrames.h"

namespace qvtool {

namespace {

int OpenFrames(char const *path, qv::CSAFFrames &frames) {
    if (!CheckInputFile(path)) return kExitFailed;
    if (!frames.Open(qv::CString(path).GetUTF16()))
        return Fail("%s is not a SAF image file (KeyWrd IMG, BytOrd LH, DaType UInt16, xPixls, yPixls, IMSize)", path);
    return 0;
}

} // namespace

int RunSafFrames(char *const *args) {
    qv::CSAFFrames frames;
    if (int failed = OpenFrames(args[0], frames)) return failed;
    std::printf("size: %u x %u\nbits: %u\nframe bytes: %u\ndata offset: %u\nframes: %u\n", frames.Width(),
                frames.Height(), frames.Bits(), frames.FrameBytes(), frames.DataPosition(), frames.FrameCount());
    return 0;
}

int RunSafFrame(char *const *args) {
    qv::CSAFFrames frames;
    if (int failed = OpenFrames(args[0], frames)) return failed;
    char *end = nullptr;
    errno = 0;
    unsigned long n = std::strtoul(args[1], &end, 10);
    if (!*args[1] || *end || errno || args[1][0] == '-' || n >= frames.FrameCount())
        return Fail("no frame '%s' in %s: it holds %u", args[1], args[0], frames.FrameCount());
    std::vector<uint16_t> counts(size_t(frames.Width()) * frames.Height());
    if (!frames.ReadFrame(uint32_t(n), counts.data())) return Fail("cannot read frame %lu of %s", n, args[0]);
    for (uint32_t x = 0; x < frames.Width(); ++x)
        std::printf("x%u%c", x, x + 1 < frames.Width() ? ',' : '\n');
    for (uint32_t y = 0; y < frames.Height(); ++y)
        for (uint32_t x = 0; x < frames.Width(); ++x)
            std::printf("%u%c", counts[size_t(y) * frames.Width() + x], x + 1 < frames.Width() ? ',' : '\n');
    return 0;
}

} // namespace qvtool
