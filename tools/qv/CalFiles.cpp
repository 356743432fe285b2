// Loading a saved calibration for the cal sub-commands.
#include "CalFiles.h"

#include <strings.h>

#include "Input.h"
#include "qv/files/MemFile.h"
#include "qv/filesystems/Path.h"
#include "qv/formats/tagged/SAFFile.h"

namespace qvtool {

namespace {

bool LoadRCalBytes(std::string const &bytes, std::string const &name, qv::CRCalFile &cal, std::string &error) {
    qv::CMemFile memory;
    if (!bytes.empty()) memory.Write(bytes.data(), uint32_t(bytes.size()));
    memory.SeekToBegin();
    if (cal.Load(&memory, 0)) return true;
    error = name + " is not a calibration file qv can read (a foreign or cut file, or values out of range)";
    return false;
}

bool ReadWhole(char const *path, std::string &bytes, std::string &error) {
    if (!ReadInputHead(path, kMaxCalFile + 1, bytes, error)) return false;
    if (bytes.size() <= kMaxCalFile) return true;
    error = InputName(path) + " is larger than 256 MiB";
    return false;
}

// The RCAL file an include file names, beside the include file.
bool NamedCalPath(char const *path, std::string const &header, std::string &calPath, std::string &error) {
    qv::CMemFile memory;
    memory.Write(header.data(), uint32_t(header.size()));
    memory.SeekToBegin();
    qv::CSAFFile saf;
    uint32_t index = 0;
    if (!saf.Load(&memory) || !saf.FindTag(u"CAFile", index) || saf[index].value.IsEmpty()) {
        error = InputName(path) + " is an include file without a CAFile tag";
        return false;
    }
    qv::CString directory = std::string(path) == "-" ? qv::CString(u".") : qv::path::GetDirectory(qv::CString(path));
    if (directory.IsEmpty()) directory = u".";
    calPath = qv::path::MakePath(directory, saf[index].value, u'/').GetUTF8();
    return true;
}

} // namespace

bool LoadCalFile(char const *path, qv::CRCalFile &cal, SCalFile &file, std::string &error) {
    std::string bytes;
    if (!ReadWhole(path, bytes, error)) return false;
    file.include = bytes.size() >= 6 && strncasecmp(bytes.data(), "HdSize", 6) == 0;
    if (!file.include) {
        file.calPath = InputName(path);
        return LoadRCalBytes(bytes, file.calPath, cal, error);
    }
    if (!NamedCalPath(path, bytes, file.calPath, error)) return false;
    return ReadWhole(file.calPath.c_str(), bytes, error) && LoadRCalBytes(bytes, file.calPath, cal, error);
}

} // namespace qvtool
