// Helpers of the tree-format tests: bytes in and out of memory files, test
// data paths, and running an outside checker.
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <string>

#include "SAFTestSupport.h"
#include "qv/files/MemFile.h"

namespace qv::treetest {

using saftest::Narrow;
using saftest::Wide;

inline std::string DataPath(std::string const &name) {
    return std::string(QV_TEST_DATA_DIR) + "/../tests/formats/data/" + name;
}

inline std::string ReadAll(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

inline void WriteAll(std::string const &path, std::string const &bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

// A memory file holding bytes, positioned at its start.
inline void Fill(CMemFile &f, std::string const &bytes) {
    f.SetGrowthRate(4096);
    saftest::SetBytes(f, bytes);
}

inline std::string Bytes(CMemFile &f) {
    return saftest::AllBytes(f);
}

inline bool HaveTool(char const *name) {
    return std::system((std::string("command -v ") + name + " >/dev/null 2>&1").c_str()) == 0;
}

} // namespace qv::treetest
