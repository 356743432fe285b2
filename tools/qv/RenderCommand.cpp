// qv render FRAMES CAL PNG TIFF: turns the first frame of counts in FRAMES
// (a SAF image file, or a TIFF of unsigned 16-bit counts) into temperatures
// through page 0 of the saved calibration CAL (.cal or .inc) and writes them
// twice: PNG as a false-colour picture with a colour bar in degrees Celsius,
// TIFF as 32-bit floats. Each output replaces its file whole or leaves it.
// qv render fit FRAMES POINTS RESPONSE ATMOSPHERE PNG TIFF builds the
// calibration first, as `qv cal` does.
#include <cstring>
#include <string>
#include <vector>

#include "CalFiles.h"
#include "Commands.h"
#include "FalseColour.h"
#include "Input.h"
#include "qv/calibration/FrameTemperatures.h"
#include "qv/core/String.h"
#include "qv/files/File.h"
#include "qv/files/OpenFlags.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/formats/tagged/SAFFrames.h"
#include "qv/images/Images.h"
#include "qv/images/TIFF.h"

namespace qvtool {

namespace {

struct SFrame {
    uint32_t width = 0, height = 0;
    std::vector<uint16_t> counts;
};

bool ReadSafFrame(char const *path, SFrame &frame) {
    qv::CSAFFrames frames;
    if (!frames.Open(qv::CString(path).GetUTF16()) || frames.FrameCount() == 0) return false;
    frame.width = frames.Width();
    frame.height = frames.Height();
    frame.counts.resize(size_t(frame.width) * frame.height);
    return frames.ReadFrame(0, frame.counts.data());
}

bool ReadTiffFrame(char const *path, SFrame &frame) {
    qv::CFile file;
    if (!file.Open(qv::CString(path).GetUTF16(), qv::kOpenExisting | qv::kOpenRead | qv::kOpenShareRead)) return false;
    unsigned long width = 0, height = 0;
    qv::EDataType type = qv::DT_Unknown;
    if (!qv::GetTIFFInfo(&file, width, height, type) || type != qv::DT_UInt16 || width == 0 || height == 0 ||
        uint64_t(width) * height > qv::CSAFFrames::kMaxFramePixels)
        return false;
    frame.width = uint32_t(width);
    frame.height = uint32_t(height);
    frame.counts.resize(size_t(width) * height);
    file.Seek(0, 1);
    return qv::LoadTIFFRaw(&file, frame.counts.data(), (unsigned long)(frame.counts.size() * 2));
}

} // namespace

namespace {

// Both outputs are files of their own: "-" names none here, and neither may
// be an input or the other output.
bool OutputsAreFree(char const *png, char const *tiff, std::initializer_list<char const *> inputs) {
    for (char const *output : {png, tiff})
        if (std::strcmp(output, "-") == 0) return Fail("render writes its PNG and TIFF to files; - names none") == 0;
    return !OutputIsAnInput(png, inputs) && !OutputIsAnInput(tiff, inputs) && !OutputIsAnInput(tiff, {png});
}

int Render(char const *frames, qv::CRCalFile &cal, char const *png, char const *tiff) {
    SFrame frame;
    if (!ReadSafFrame(frames, frame) && !ReadTiffFrame(frames, frame))
        return Fail("%s is neither a SAF image file with a frame nor a TIFF of 16-bit counts", frames);
    uint32_t const n = frame.width * frame.height;
    std::vector<float> celsius(n);
    if (!qv::CountsToTemperatures(cal, 0, {frame.counts.data(), qv::DT_UInt16}, {celsius.data(), qv::DT_Float}, n))
        return Fail("the calibration has no page 0 to convert counts with");
    qv::HBITMAP picture = FalseColourPicture(celsius.data(), frame.width, frame.height);
    bool const saved = picture && qv::SaveHBITMAP(picture, qv::FileSystem, qv::CString(png).GetUTF16());
    qv::DeleteBitmap(picture);
    if (!saved) return Fail("%s", WriteFailure(png).c_str());
    if (!qv::SaveTIFFRaw(qv::CString(tiff).GetUTF16(), celsius.data(), frame.width, frame.height, qv::DT_Float))
        return Fail("%s", WriteFailure(tiff).c_str());
    return 0;
}

} // namespace

int RunRender(char *const *args) {
    qv::CRCalFile cal;
    SCalFile file;
    std::string error;
    if (!OutputsAreFree(args[2], args[3], {args[0], args[1]}) || !CheckInputFile(args[0])) return kExitFailed;
    if (!LoadCalFile(args[1], cal, file, error)) return Fail("%s", error.c_str());
    if (int failed = CheckCalPages(cal)) return failed;
    return Render(args[0], cal, args[2], args[3]);
}

int RunRenderFit(char *const *args) {
    qv::CRCalFile cal;
    if (!OutputsAreFree(args[4], args[5], {args[0], args[1], args[2], args[3]}) || !CheckInputFile(args[0]))
        return kExitFailed;
    if (int failed = BuildCalibration(args[1], args[2], args[3], cal)) return failed;
    return Render(args[0], cal, args[4], args[5]);
}

} // namespace qvtool
