/// @file
/// CFrameTemperatures: whole frames of raw counts to temperatures through one
/// calibration page, the per-pixel loop of an application.
///
///   qv::CFrameTemperatures frame;
///   if (frame.SetPage(cal, page, qv::TT_Celsius))
///       frame.Convert({counts, qv::DT_UInt16}, {celsius, qv::DT_Float}, width * height);
///
/// Each output is what the per-value road gives: PolyValue(count,
/// GetCoefficients(page)) is the radiance, PolyValue(radiance,
/// GetTempCoefficients(page)) the temperature in degrees Celsius, moved to the
/// chosen scale with CMath::ConvertTemperature's formulas in double arithmetic
/// and stored as ConvertArray stores a double.
///  - Integer counts (any integer EDataType) come out bit for bit as that
///    road gives them: the object tabulates the road once for every count it
///    meets and then looks counts up. The table grows to cover each new
///    frame's span of counts; a frame whose counts span more than 65536
///    values is evaluated count by count with the same arithmetic instead.
///  - Floating-point counts go through both polynomials by Horner's rule,
///    within 1e-12 relative of the per-value road (it sums powers).
/// Keep one object per page and reuse it frame after frame: the table is what
/// makes frames cheap, and it is built from the counts it first meets.
/// An output of a megabyte or more from 16-bit counts is written past the
/// CPU caches where the CPU has AVX-512, as a frame that large would not stay
/// cached anyway; the values are the same.
///
/// Ownership: SetPage copies the page's coefficients; later changes to the
/// calibration reach the object only through another SetPage. The caller owns
/// both buffers of Convert, which may not overlap.
/// Failures: SetPage gives false for a page out of range or one whose
/// polynomials hold a coefficient that is not finite (the object is then
/// empty); Convert gives false, writing nothing, when no page is set, when the
/// counts have no arithmetic (7, DT_Packed, DT_Unknown) or when the output is
/// not DT_Float or DT_Double. Nothing throws; the table may fail to grow, and
/// then the counts are evaluated one by one.
/// Threads: one object belongs to one thread at a time (Convert fills the
/// table); distinct objects may run at once.
#pragma once

#include <cstdint>
#include <memory>

#include "qv/core/Export.h"
#include "qv/numerics/Math.h"
#include "qv/numerics/TypedData.h"

namespace qv {

class CRCalFile;

/// @copydoc FrameTemperatures.h
class QV_API CFrameTemperatures {
public:
    CFrameTemperatures();
    ~CFrameTemperatures();
    /// Takes over other's page and table; other is left as newly made.
    ///@{
    CFrameTemperatures(CFrameTemperatures &&other) noexcept;
    CFrameTemperatures &operator=(CFrameTemperatures &&other) noexcept;
    ///@}
    CFrameTemperatures(CFrameTemperatures const &) = delete;
    CFrameTemperatures &operator=(CFrameTemperatures const &) = delete;

    /// Takes page's two polynomials and the output scale; drops any table.
    /// False for a page outside 0..count-1, a coefficient that is not finite
    /// or a scale outside 0..3.
    bool SetPage(CRCalFile &cal, int page, ETempType scale = TT_Celsius);
    /// temperatures[i] for counts[i], i in 0..n-1; true when written.
    bool Convert(STypedData counts, STypedData temperatures, uint32_t n);

private:
    struct SState;
    std::unique_ptr<SState> m_state;
};

/// One frame through a fresh CFrameTemperatures: for a single frame only, as
/// it tabulates anew on every call. Results and failures as above.
QV_API bool CountsToTemperatures(CRCalFile &cal, int page, STypedData counts, STypedData temperatures, uint32_t n,
                                 ETempType scale = TT_Celsius);

} // namespace qv
