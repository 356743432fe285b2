/// @file
/// The plain records a calibration is made of. CRCalFile names them as its
/// own members (CRCalFile::CAL_POINT and so on); they live here so that the
/// façade classes can be declared before the file class.
///
/// Every record copies deeply (TArray copies its items, CString shares its
/// text by reference count) and is relocatable as raw bytes, as TArray needs.
/// Units: degrees Celsius, microns, W/(sr-cm^2), counts as double.
/// Threads: plain data, no lock; a record belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/calibration/CalEnums.h"
#include "qv/core/Array.h"
#include "qv/core/NameValuePair.h"
#include "qv/core/String.h"

namespace qv::calibration_records {

/// One black-body measurement of a page.
struct CAL_POINT {
    double Temperature = 0; ///< the sort key
    double Emissivity = 1.0; ///< of the black body
    /// Stored and exchanged only.
    ///@{
    double AuxA = 0;
    double AuxB = 0;
    ///@}
    double Measurement = 0; ///< raw counts
    bool AuxFlag = true;    ///< stored only; a loaded point always has it set, as older tools expect
    EReflectedRadianceType ReflectedType = RRT_None; ///< what reflected radiance enters the point's radiance
    /// The reflected surroundings: emissivity and temperature (RRT_Temperature),
    /// or a radiance given as such.
    ///@{
    double ReflectedEmissivity = 1.0;
    double ReflectedTemperature = 0;
    double ReflectedRadiance = 0;
    ///@}
    bool Enabled = false; ///< the point takes part in the fits
    double Radiance = 0; ///< computed from the spectral model, never set by callers
};

/// A per-pixel background image, keyed within a page by (Width, Height).
struct BACKGROUND_FILE {
    /// Size of the image in pixels.
    ///@{
    uint32_t Width = 0;
    uint32_t Height = 0;
    ///@}
    /// Stored and exchanged only.
    ///@{
    uint32_t ReservedA = 0;
    uint32_t ReservedB = 0;
    ///@}
    TArray<double> Values; ///< Width * Height entries
};

/// A curve by wavelength: X and Y of one length.
struct SResponse {
    TArray<double> X; ///< wavelengths in microns
    TArray<double> Y; ///< values, one per wavelength
};

/// One additional spectral response (a filter): the table as read and the same
/// resampled to the final axis. Spelled as the stored format has it.
struct RESPONCE {
    CString File;                          ///< path of the table
    bool Enabled = false;                  ///< applied to the final response
    SResponse Raw;                         ///< the table as read
    SResponse Final;                       ///< resampled to the final axis
    EResponseStatus Status = RS_NotLoaded; ///< how reading File went
};

/// One calibration: its points, the counts-to-radiance fit, the lookup of
/// radiance by temperature with the radiance-to-temperature fit, the
/// overrides, the background and the calibrated range.
struct CAL_PAGE {
    bool Valid = true; ///< stored and exchanged only
    /// Stored only.
    ///@{
    int32_t ParamA = 0, ParamB = 0;
    ///@}
    TArray<CAL_POINT> Points; ///< sorted by Temperature
    /// Stored only.
    ///@{
    double ParamC = 0, ParamD = 0;
    ///@}
    int PolyOrder = 1; ///< order of the counts-to-radiance fit
    /// The lookup's temperature axis (start, end, step) and the emissivity
    /// its radiances are computed with.
    ///@{
    double LookupStart = 0;
    double LookupEnd = 100.0;
    double LookupDelta = 1.0;
    double LookupEmissivity = 1.0;
    ///@}
    /// Stored only.
    ///@{
    double ParamE = 0, ParamF = 0;
    ///@}
    int TempPolyOrder = 6; ///< order of the radiance-to-temperature fit
    /// The lookup: radiance and temperature, one pair per axis step.
    ///@{
    TArray<double> LookupRadiance;
    TArray<double> LookupTemperature;
    ///@}
    TArray<double> Coefficients;     ///< counts to radiance, constant term first
    TArray<double> TempCoefficients; ///< radiance to temperature, constant term first
    double R2 = 0;     ///< quality of the counts-to-radiance fit
    double TempR2 = 0; ///< quality of the radiance-to-temperature fit
    /// Override of the counts-to-radiance fit: in force while the flag is set.
    ///@{
    bool CoeffsOverridden = false;
    int UsedPolyOrder = 0;
    TArray<double> UsedCoefficients;
    ///@}
    /// Override of the radiance-to-temperature fit: in force while the flag is set.
    ///@{
    bool TempCoeffsOverridden = false;
    int UsedTempPolyOrder = 0;
    TArray<double> UsedTempCoefficients;
    ///@}
    /// A factor and its "set" flag, stored and exchanged only.
    ///@{
    double TPFact = 1.0;
    bool TPFactSet = false;
    ///@}
    BACKGROUND_TYPE BackgroundType = BG_Unset; ///< kind of background correction
    double BackgroundValue = 0;                ///< the value for BG_Fixed
    TArray<BACKGROUND_FILE> BackgroundFiles;   ///< images, at most one per size
    TArray<SNameValuePair> Tags;               ///< the page's own tags
    bool RangeAuto = true; ///< the range below follows the points
    /// Calibrated range, in temperature, radiance and counts.
    ///@{
    double MinTemperature = 0, MaxTemperature = 0;
    double MinRadiance = 0, MaxRadiance = 0;
    double MinCounts = 0, MaxCounts = 0;
    ///@}
};

} // namespace qv::calibration_records
