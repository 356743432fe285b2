// The SBF file's one string form: a 32-bit length, then the UTF-8 text with
// its terminator, every byte complemented. Internal to the library.
#pragma once

#include "qv/core/String.h"
#include "qv/files/IFile.h"

namespace qv::sbf {

// A null text is a length of 0.
bool PutString(IFile &f, CString const &text);
// Length 0 gives the null string. False on a short read or a length beyond
// what the file still holds.
bool GetString(IFile &f, CString &text);

} // namespace qv::sbf
