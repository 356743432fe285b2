// The radiometric JPEG over arbitrary bytes: the chunks are taken out and
// opened as a VQR container whose blocks are read whole; then the bytes are
// written again with a new payload, and a picture that decoded before must
// give back exactly that payload. Nothing may crash or overrun.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "qv/files/MemFile.h"
#include "qv/formats/indexed/VQRFile.h"
#include "qv/images/Images.h"
#include "qv/images/RadiometricJPEG.h"

namespace {

void Require(bool condition) {
    if (!condition) __builtin_trap();
}

void ReadBlocks(qv::CMemFile &payload) {
    qv::CVQRFile vqr;
    if (!vqr.Open(&payload, true)) return;
    std::vector<uint8_t> bytes;
    for (uint32_t i = 0; i < vqr.GetIndexCount(); ++i) {
        qv::CVQRFile::CIndex *index = vqr.GetIndexAt(i);
        bytes.resize(size_t(index->m_size));
        index->m_file.Seek(0, 1);
        if (!bytes.empty()) Require(index->m_file.Read(bytes.data(), uint32_t(bytes.size())) == bytes.size());
    }
}

// Whether the picture decodes, with the payload it carries.
bool Decodes(qv::CMemFile &jpeg, qv::CMemFile &payload) {
    jpeg.SeekToBegin();
    if (!qv::IsJPEG(&jpeg)) return false;
    qv::HBITMAP picture = qv::LoadJPEG(&jpeg, &payload);
    qv::DeleteBitmap(picture);
    return picture != nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const *data, size_t size) {
    qv::CMemFile jpeg, payload;
    jpeg.SetGrowthRate(4096);
    if (size && jpeg.Write(data, uint32_t(size)) != size) return 0;
    jpeg.SeekToBegin();
    bool radiometric = qv::RadiometricJPEG(&jpeg, &payload);
    Require(!radiometric || payload.GetSize() > qv::kMinRadiometricPayload);
    ReadBlocks(payload);

    qv::CMemFile chunks, written, back;
    std::vector<uint8_t> fresh(4000);
    for (size_t i = 0; i < fresh.size(); ++i) fresh[i] = uint8_t(i * 13);
    chunks.Write(fresh.data(), uint32_t(fresh.size()));
    written.SetGrowthRate(4096);
    qv::CMemFile ignored;
    bool decoded = Decodes(jpeg, ignored);
    if (!qv::WriteRadiometricJPEG(&jpeg, &chunks, &written) || !decoded) return 0;
    Require(Decodes(written, back));
    Require(back.GetSize() == int64_t(fresh.size()));
    Require(std::equal(fresh.begin(), fresh.end(), back.GetData()));
    return 0;
}
