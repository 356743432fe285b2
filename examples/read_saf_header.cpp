// Prints the tags of a SAF file and where its data segment starts.
//   read_saf_header FILE
#include <qv/qv.h>

#include <cstdio>

int main(int argc, char **argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: read_saf_header FILE\n");
        return 2;
    }
    qv::CFile file;
    // Open an existing file for reading and let others read it meanwhile.
    if (!file.Open(qv::CString(argv[1]), 0x02 | 0x10 | 0x200)) {
        std::fprintf(stderr, "read_saf_header: cannot open %s\n", argv[1]);
        return 1;
    }
    qv::CSAFFile saf;
    if (!saf.Load(&file)) {
        std::fprintf(stderr, "read_saf_header: %s is not a SAF file\n", argv[1]);
        return 1;
    }
    // The first tag is always HdSize and the last DATA; the rest are the file's own.
    for (uint32_t i = 0; i < saf.nTags(); ++i)
        std::printf("%s = %s\n", qv::CString(saf[i].name).GetUTF8(), qv::CString(saf[i].value).GetUTF8());
    std::printf("data starts at byte %u\n", saf.GetDataPosition());
    return 0;
}
