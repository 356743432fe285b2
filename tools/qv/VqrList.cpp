// qv vqr/xdn list FILE: one line per block: type, subtype, version, id, offset,
// size; --json for one object with a "blocks" array.
#include <cstdio>

#include "Commands.h"
#include "Output.h"
#include "VqrFiles.h"

namespace qvtool {

int ListBlocks(qv::CIndexedContainer &vqr) {
    bool json = GivenOptions().json;
    CJsonWriter writer(stdout);
    if (json) {
        writer.BeginObject();
        writer.Integer("slots", vqr.GetSlots());
        writer.Integer("next_id", vqr.GetNextId());
        writer.BeginArray("blocks");
    }
    for (uint32_t i = 0; i < vqr.GetIndexCount(); ++i) {
        qv::CIndexedContainer::CIndex const *index = vqr.GetIndexAt(i);
        if (!json) {
            std::printf("%5u %5u %10u %10u %10lld %10lld\n", index->m_type, index->m_subtype, index->m_version,
                        index->m_id, (long long)index->m_offset, (long long)index->m_size);
            continue;
        }
        writer.BeginObject();
        writer.Integer("type", index->m_type);
        writer.Integer("subtype", index->m_subtype);
        writer.Integer("version", index->m_version);
        writer.Integer("id", index->m_id);
        writer.Integer("offset", index->m_offset);
        writer.Integer("size", index->m_size);
        writer.EndObject();
    }
    if (json) {
        writer.EndArray();
        writer.EndObject();
    }
    return 0;
}

} // namespace qvtool
