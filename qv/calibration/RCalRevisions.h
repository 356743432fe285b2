/// @file
/// The sections of an RCAL file (internal to qv/calibration). The format has
/// no size field and no end mark: each section after the base was added by a
/// later revision, and a file ends behind the last section its writer knew.
/// FileRevision records the number of the last section a load found.
#pragma once

#include <cstdint>

namespace qv::calibration_detail {

/// The sections of an RCAL file, in file order; a file's revision is the
/// last section it holds.
enum ERCalSection : int {
    kRCalBase = 0,
    kRCalReflected = 1, ///< reflected terms of the enabled points
    kRCalDisabled = 2,  ///< disabled points
    kRCalCurves = 3,    ///< raw curves, point radiances, fitted polynomials
    kRCalOverrides = 4, ///< band pass, range, FOV, used polynomials, backgrounds
    kRCalTags = 5,
    kRCalMark = 6, ///< a u32 7, ignored on reading
    kRCalRanges = 7,
};

constexpr int kRCalCurrentRevision = kRCalRanges; ///< the revision Save writes
constexpr char kRCalMagic[9] = "____RCAL"; ///< the 8 bytes a file starts with; Load checks only the last 4
constexpr uint32_t kRCalMarkValue = 7; ///< the value of the kRCalMark section

/// The fewest bytes one item of a counted list takes, so that a count can be
/// checked against the bytes left before anything is allocated for it.
///@{
constexpr uint32_t kRCalMinAdditionalResponse = 1 + 4; ///< empty astr, BOOL
constexpr uint32_t kRCalMinPage = 1 + 4 + 4 + 4 + 24 + 4 + 16 + 4 + 32 + 16 + 4 + 4;
constexpr uint32_t kRCalEnabledPoint = 5 * 8 + 1;
constexpr uint32_t kRCalDisabledPoint = 5 * 8 + 1 + 4 + 3 * 8;
constexpr uint32_t kRCalMinBackground = 5 * 4;
constexpr uint32_t kRCalMinTag = 4 + 4;
///@}

/// Fit orders a file may hold: beyond them a refit would build matrices of a
/// size the file chose. The façades allow far less.
///@{
constexpr int32_t kRCalMinOrder = -2;
constexpr int32_t kRCalMaxOrder = 64;
///@}

} // namespace qv::calibration_detail
