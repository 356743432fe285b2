#include "PodFiles.h"

#include <cstdlib>

#include "Commands.h"
#include "Input.h"
#include "Output.h"
#include "qv/core/String.h"
#include "qv/filesystems/FileSystem.h"

namespace qvtool {

bool OpenPod(char const *path, qv::CPODFile &pod) {
    if (!CheckInputFile(path)) return false;
    if (pod.Load(&qv::GetFileSystem(), qv::CString(path).GetUTF16(), true)) return true;
    if (*pod.GetError())
        Fail("%s: %s", path, qv::CString(pod.GetError()).GetUTF8());
    else
        Fail("%s is not a POD table qv can read (a SAF header with KeyWrd POD and NParam)", path);
    return false;
}

int CannotReadRow(qv::CPODFile &pod, uint32_t row, char const *path) {
    std::string why = PodText(pod.GetError());
    return why.empty() ? Fail("cannot read row %u of %s", row, path)
                       : Fail("cannot read row %u of %s: %s", row, path, why.c_str());
}

bool SavePod(qv::CPODFile &pod, char const *path) {
    pod.SetError(u""); // a reason left by an earlier read is not this save's
    if (pod.Save(&qv::GetFileSystem(), qv::CString(path).GetUTF16(), false, false)) return true;
    std::string why = PodText(pod.GetError());
    if (why.empty()) return Fail("%s", WriteFailure(path).c_str()), false;
    return Fail("cannot write %s (the old file is unchanged): %s", path, why.c_str()), false;
}

bool PodIndex(char const *text, uint32_t limit, char const *what, uint32_t &out) {
    char *end = nullptr;
    unsigned long long v = std::strtoull(text, &end, 10);
    if (*text < '0' || *text > '9' || *end || v >= limit) {
        Fail("%s '%s' is not a number below %u", what, Escaped(text).c_str(), limit);
        return false;
    }
    out = uint32_t(v);
    return true;
}

bool PodCell(qv::CPODFile &pod, char const *rowText, char const *columnText, uint32_t &row, uint32_t &col) {
    if (!PodIndex(rowText, pod.nDPs(), "row", row)) return false;
    return pod.FindColumn(qv::CString(columnText).GetUTF16(), col) ||
           PodIndex(columnText, pod.nParams(), "column", col);
}

std::string PodText(char16_t const *value) {
    return value ? qv::CString(value).GetUTF8() : "";
}

} // namespace qvtool
