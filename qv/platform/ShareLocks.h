// Windows share modes between the opens of one disk file. Internal to libqv.
#pragma once

#include "qv/files/OpenRequest.h"

namespace qv {

// Declares the access and denials of request on fd (a descriptor that can
// read) and checks them against every other open of the same file, in this
// process or another. False on a conflict; the caller then closes fd, which
// drops what was declared. Declarations last until the open file description
// closes (its last duplicate).
bool ClaimShareAccess(int fd, OpenRequest const &request);

} // namespace qv
