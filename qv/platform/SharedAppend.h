// Appending to a disk file that other processes append to as well. Internal
// to libqv.
#pragma once

#include <cstdint>

namespace qv::platform {

// Makes every later write through handle (a CFile handle) land at the end of
// the file as one step, so that whole entries written with one Write by
// several processes never overwrite or split each other. False if the system
// refuses; the handle is then unchanged.
bool SetAppendOnly(intptr_t handle);

} // namespace qv::platform
