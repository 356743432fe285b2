// Changes (or adds) one tag of a SAF file in place. The data segment stays
// where it is unless the header outgrows its padding.
//   change_saf_tag FILE NAME VALUE
#include <qv/qv.h>

#include <cstdio>

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: change_saf_tag FILE NAME VALUE\n");
        return 2;
    }
    qv::CFile file;
    // Must exist, read and write, nobody else writes meanwhile.
    if (!file.Open(qv::CString(argv[1]), 0x02 | 0x10 | 0x20)) {
        std::fprintf(stderr, "change_saf_tag: cannot open %s for writing\n", argv[1]);
        return 1;
    }
    qv::CSAFFile saf;
    if (!saf.Load(&file)) {
        std::fprintf(stderr, "change_saf_tag: %s is not a SAF file\n", argv[1]);
        return 1;
    }
    if (!saf.SetTagValue(qv::CString(argv[2]), qv::CString(argv[3]))) {
        std::fprintf(stderr, "change_saf_tag: a SAF header cannot hold that tag\n");
        return 1;
    }
    uint32_t before = saf.GetDataPosition();
    uint32_t dataPosition = before;
    if (!saf.Update(&file, dataPosition, true)) {
        std::fprintf(stderr, "change_saf_tag: the header could not be rewritten\n");
        return 1;
    }
    std::printf("%s = %s; data %s (byte %u)\n", argv[2], argv[3], dataPosition == before ? "stayed" : "moved",
                dataPosition);
    return 0;
}
