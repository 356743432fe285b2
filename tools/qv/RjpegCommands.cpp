// qv rjpeg list / extract / put: the VQR container a radiometric JPEG carries
// in its "VORK" segments. list prints its blocks as qv vqr list does, extract
// copies the container out, put writes a JPEG with a container in it.
#include "Commands.h"
#include "Input.h"
#include "Output.h"
#include "VqrFiles.h"
#include "qv/images/Images.h"
#include "qv/images/RadiometricJPEG.h"

namespace qvtool {

namespace {

// Reads the JPEG input (a path or "-") and takes its payload out; false with
// the message printed.
bool ReadPayload(char const *path, qv::CMemFile &payload) {
    qv::CMemFile jpeg;
    if (!ReadInput(path, jpeg)) return false;
    std::string name = InputName(path);
    if (!qv::IsJPEG(&jpeg)) return Fail("%s is not a JPEG picture", name.c_str()) == 0;
    if (!qv::RadiometricJPEG(&jpeg, &payload)) {
        long long size = payload.GetSize();
        return Fail("%s holds no radiometric data (%lld bytes in its VORK segments; more than %lld count)",
                    name.c_str(), size, (long long)qv::kMinRadiometricPayload) == 0;
    }
    return true;
}

bool OpenPayload(qv::CMemFile &payload, char const *path, qv::CVQRFile &vqr) {
    if (vqr.Open(&payload, true)) return true;
    return Fail("the radiometric data of %s is not a sound VQR container", InputName(path).c_str()) == 0;
}

} // namespace

int RunRjpegList(char *const *args) {
    qv::CMemFile payload;
    qv::CVQRFile vqr;
    if (!ReadPayload(args[0], payload) || !OpenPayload(payload, args[0], vqr)) return kExitFailed;
    return ListBlocks(vqr);
}

int RunRjpegExtract(char *const *args) {
    qv::CMemFile payload;
    if (OutputIsAnInput(args[1], {args[0]}) || !ReadPayload(args[0], payload)) return kExitFailed;
    return CopyToOutput(payload, args[1]) ? 0 : kExitFailed;
}

int RunRjpegPut(char *const *args) {
    qv::CMemFile jpeg, payload;
    // OUT may be JPEG itself, which then carries the new container; the
    // container file is no picture to replace.
    if (OutputIsAnInput(args[2], {args[1]})) return kExitFailed;
    if (!ReadInput(args[0], jpeg) || !ReadInput(args[1], payload)) return kExitFailed;
    if (!qv::IsJPEG(&jpeg)) return Fail("%s is not a JPEG picture", InputName(args[0]).c_str());
    {
        qv::CVQRFile vqr;
        if (!vqr.Open(&payload, true)) return Fail("%s is not a sound VQR container", InputName(args[1]).c_str());
    }
    // Written in memory first, so that a JPEG qv cannot follow is told from
    // a disk that refuses the file.
    qv::CMemFile out;
    out.SetGrowthRate(0xFFFF);
    if (!qv::WriteRadiometricJPEG(&jpeg, &payload, &out))
        return Fail("%s cannot carry radiometric data: a segment runs past its end or the end marker is missing",
                    InputName(args[0]).c_str());
    return CopyToOutput(out, args[2]) ? 0 : kExitFailed;
}

} // namespace qvtool
