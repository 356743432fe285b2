// qv sbf show FILE: the application identifier, versions and string table of
// a structured binary file, then its tree: each element with its attributes
// (name, type, value) and its datum.
#include <cstdio>
#include <cstring>

#include "Commands.h"
#include "Output.h"
#include "TreeFiles.h"
#include "qv/formats/tagged/SBFile.h"

namespace qvtool {

namespace {

using VARIANT = qv::CSBFile::VARIANT;

char const *TypeName(VARIANT::EType type) {
    static char const *const names[] = {"none",  "bool",  "char",   "uchar", "short",  "ushort", "long",
                                        "ulong", "int64", "uint64", "float", "double", "string", "binary"};
    return names[type <= VARIANT::VT_BINARY ? type : 0];
}

std::string ValueText(VARIANT const &v) {
    if (v.GetType() == VARIANT::VT_BINARY) return std::to_string(v.GetBinarySize()) + " bytes";
    return qv::CString(static_cast<char16_t const *>(v)).GetUTF8();
}

} // namespace

int RunSbfShow(char *const *args) {
    qv::CMemFile input;
    if (!ReadInput(args[0], input)) return kExitFailed;
    char id[5] = {0, 0, 0, 0, 0};
    if (input.GetSize() < 10 || std::memcmp(input.GetData(), "SBF", 3) != 0)
        return Fail("%s is not an SBF file (it must begin with \"SBF\")", InputName(args[0]).c_str());
    std::memcpy(id, input.GetData() + 4, 4);
    qv::CSBFile sbf;
    sbf.SetAppInfo(id, 0, 0);
    if (!sbf.Load(&input))
        return Fail("%s is a damaged SBF file (a count or length runs past its end)", InputName(args[0]).c_str());
    uint8_t major = 0, minor = 0;
    sbf.GetAppInfo(id, major, minor);
    std::printf("application: %s\nversion: %u.%u\nstrings: %u\n", Escaped(id).c_str(), major, minor, sbf.nStrings());
    for (qv::CSBFile::CElement *top = sbf.GetCurr(); top; top = top->next) {
        qv::tree::Walk(
            top,
            [](qv::CSBFile::CElement *e, uint32_t depth) {
                std::printf("%s%s", Indent(depth).c_str(), Escaped(qv::CString(e->GetName()).GetUTF8()).c_str());
                for (uint32_t i = 0; i < e->attributes.nItems(); ++i) {
                    qv::CSBFile::ATTRIB &a = e->attributes[i];
                    std::printf(" %s=%s:\"%s\"", Escaped(a.name.GetUTF8()).c_str(), TypeName(a.value.GetType()),
                                Escaped(ValueText(a.value)).c_str());
                }
                if (e->data.GetType() != VARIANT::VT_NONE)
                    std::printf(" = %s:\"%s\"", TypeName(e->data.GetType()), Escaped(ValueText(e->data)).c_str());
                std::printf("\n");
                return true;
            },
            [](qv::CSBFile::CElement *, uint32_t) { return true; });
    }
    return 0;
}

} // namespace qvtool
