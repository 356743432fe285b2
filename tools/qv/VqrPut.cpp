// qv vqr/xdn put FILE TYPE SUBTYPE ID IN: the bytes of IN ("-": standard input)
// become the block's content, replacing it or making a new block (version
// 0); FILE is made when it is missing. Other blocks keep their bytes.
#include "Commands.h"
#include "Input.h"
#include "VqrFiles.h"

namespace qvtool {

int PutBlock(qv::CIndexedContainer &vqr, SBlockAddress const &address, qv::CMemFile &input,
             char *const *args) {
    uint32_t place = FindBlock(vqr, address);
    if (place == qv::CIndexedContainer::kNoIndex) place = vqr.CreateIndex(address.type, address.subtype, 0, address.id);
    qv::CIndexedContainer::CIndex *index = vqr.GetIndexAt(place);
    int64_t size = input.GetSize();
    bool ok = index && index->m_file.SetSize(size);
    if (ok) index->m_file.Seek(0, 1);
    ok = ok && (size == 0 || index->m_file.Write(input.GetData(), uint32_t(size)) == uint64_t(size));
    ok = vqr.Save() && ok;
    if (!ok) return Fail("cannot store %s in %s", InputName(args[4]).c_str(), args[0]);
    return 0;
}

} // namespace qvtool
