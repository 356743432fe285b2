/// @file
/// CCOMScope: marks a scope in which a thread uses the system's component
/// model. Linux has no such per-thread initialisation, so the scope has no
/// effect; it stays so that code written for both kinds of system keeps one
/// form. flags is accepted and ignored.
#pragma once

#include <cstdint>

namespace qv {

/// @copydoc COMScope.h
class CCOMScope {
public:
    explicit CCOMScope(uint32_t flags) { (void)flags; } ///< does nothing
    CCOMScope(CCOMScope const &) = delete;
    CCOMScope &operator=(CCOMScope const &) = delete;
};

} // namespace qv
