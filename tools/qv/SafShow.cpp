// qv saf show [--json] FILE: every tag as "name = value", the tag count, the
// data offset. Bytes that are no printable text show escaped (\xNN).
//
// --json prints one object: {"file": FILE, "tags": [{"name": N, "value": V},
// ...], "tagCount": N, "dataOffset": N}, tags in file order (DATA last).
// FILE may be - (standard input): only its header is read.
#include <cstdio>
#include <string>

#include "Commands.h"
#include "Input.h"
#include "Output.h"
#include "qv/files/MemFile.h"

namespace qvtool {

namespace {

// A header ends within 65536 lines of at most 512 bytes each.
constexpr size_t kMaxHeaderBytes = size_t(65536) * 512;

void PrintText(qv::CSAFFile &saf) {
    for (uint32_t i = 0; i < saf.nTags(); ++i) {
        std::string value = Escaped(saf[i].value.GetUTF8());
        std::printf("%s =%s%s\n", Escaped(saf[i].name.GetUTF8()).c_str(), value.empty() ? "" : " ", value.c_str());
    }
    std::printf("tags: %u\ndata offset: %u\n", saf.nTags(), saf.GetDataPosition());
}

void PrintJson(char const *path, qv::CSAFFile &saf) {
    CJsonWriter json(stdout);
    json.BeginObject();
    json.String("file", path);
    json.BeginArray("tags");
    for (uint32_t i = 0; i < saf.nTags(); ++i) {
        json.BeginObject();
        json.String("name", saf[i].name.GetUTF8());
        json.String("value", saf[i].value.GetUTF8());
        json.EndObject();
    }
    json.EndArray();
    json.Integer("tagCount", saf.nTags());
    json.Integer("dataOffset", saf.GetDataPosition());
    json.EndObject();
}

// Standard input is read into memory up to the longest header.
bool LoadStandardInput(qv::CMemFile &memory, qv::CSAFFile &saf) {
    std::string head, error;
    if (!ReadInputHead("-", kMaxHeaderBytes, head, error)) return Fail("%s", error.c_str()), false;
    if (memory.Write(head.data(), uint32_t(head.size())) != head.size() || memory.Seek(0, 1) != 0)
        return Fail("cannot hold standard input in memory"), false;
    if (!saf.Load(&memory)) return Fail("standard input is not a SAF file (it must begin with an HdSize line)"), false;
    if (HeaderCutShort(memory, saf)) return Fail(kCutShort, "standard input"), false;
    return true;
}

} // namespace

int RunSafShow(char *const *args) {
    qv::CFile file;
    qv::CMemFile memory;
    qv::CSAFFile saf;
    bool loaded = std::string(args[0]) == "-"
                      ? LoadStandardInput(memory, saf)
                      : OpenSaf(args[0], qv::kOpenExisting | qv::kOpenRead | qv::kOpenShareRead, file, saf);
    if (!loaded) return kExitFailed;
    if (GivenOptions().json)
        PrintJson(args[0], saf);
    else
        PrintText(saf);
    return 0;
}

} // namespace qvtool
