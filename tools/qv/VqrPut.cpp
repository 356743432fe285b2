// qv vqr put FILE TYPE SUBTYPE ID IN: the bytes of IN ("-": standard input)
// become the block's content, replacing it or making a new block (version
// 0); FILE is made when it is missing. Other blocks keep their bytes.
#include "Commands.h"
#include "Input.h"
#include "VqrFiles.h"

namespace qvtool {

int RunVqrPut(char *const *args) {
    SBlockAddress address;
    if (!ParseBlockAddress(args + 1, address)) return kExitUsage;
    qv::CMemFile input;
    if (!ReadInput(args[4], input)) return kExitFailed;
    qv::CVQRFile vqr;
    if (!OpenVqr(args[0], true, vqr)) return kExitFailed;
    uint32_t place = FindVqrBlock(vqr, address);
    if (place == qv::CVQRFile::kNoIndex) place = vqr.CreateIndex(address.type, address.subtype, 0, address.id);
    qv::CVQRFile::CIndex *index = vqr.GetIndexAt(place);
    int64_t size = input.GetSize();
    bool ok = index && index->m_file.SetSize(size);
    if (ok) index->m_file.Seek(0, 1);
    ok = ok && (size == 0 || index->m_file.Write(input.GetData(), uint32_t(size)) == uint64_t(size));
    ok = vqr.Save() && ok;
    if (!ok) return Fail("cannot store %s in %s", InputName(args[4]).c_str(), args[0]);
    return 0;
}

} // namespace qvtool
