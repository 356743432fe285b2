// Helpers of the MODTRAN tests: memory files from text, files as text, the
// data folder.
#pragma once

#include <fstream>
#include <sstream>
#include <string>

#include "qv/files/MemFile.h"

namespace qvtest {

inline std::string DataPath(std::string const &name) {
    return std::string(QV_TEST_DATA_DIR) + "/../tests/modtran/data/" + name;
}

inline std::string ReadText(std::string const &path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

inline void WriteText(std::string const &path, std::string const &text) {
    std::ofstream(path, std::ios::binary) << text;
}

// A memory file holding text, positioned at its start.
inline void Fill(qv::CMemFile &file, std::string const &text) {
    file.SetSize(0);
    file.Write(text.data(), uint32_t(text.size()));
    file.Seek(0, 1);
}

inline std::string Contents(qv::CMemFile &file) {
    return std::string(reinterpret_cast<char const *>(file.GetData()), file.GetSize());
}

inline std::u16string Wide(std::string const &text) {
    return std::u16string(text.begin(), text.end());
}

} // namespace qvtest
