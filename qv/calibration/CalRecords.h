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
    double Emissivity = 1.0;
    double AuxA = 0; ///< stored and exchanged only
    double AuxB = 0;
    double Measurement = 0; ///< raw counts
    bool AuxFlag = true;
    EReflectedRadianceType ReflectedType = RRT_None;
    double ReflectedEmissivity = 1.0;
    double ReflectedTemperature = 0;
    double ReflectedRadiance = 0;
    bool Enabled = false;
    double Radiance = 0; ///< computed from the spectral model, never set by callers
};

/// A per-pixel background image, keyed within a page by (Width, Height).
struct BACKGROUND_FILE {
    uint32_t Width = 0;
    uint32_t Height = 0;
    uint32_t ReservedA = 0; ///< stored and exchanged only
    uint32_t ReservedB = 0;
    TArray<double> Values; ///< Width * Height entries
};

/// A curve by wavelength: X and Y of one length.
struct SResponse {
    TArray<double> X;
    TArray<double> Y;
};

/// One additional spectral response (a filter): the table as read and the same
/// resampled to the final axis. Spelled as the stored format has it.
struct RESPONCE {
    CString File;
    bool Enabled = false;
    SResponse Raw;
    SResponse Final;
    EResponseStatus Status = RS_NotLoaded;
};

/// One calibration: its points, the counts-to-radiance fit, the lookup of
/// radiance by temperature with the radiance-to-temperature fit, the
/// overrides, the background and the calibrated range.
struct CAL_PAGE {
    bool Valid = true;
    int32_t ParamA = 0, ParamB = 0; ///< stored only
    TArray<CAL_POINT> Points;       ///< sorted by Temperature
    double ParamC = 0, ParamD = 0;
    int PolyOrder = 1;
    double LookupStart = 0;
    double LookupEnd = 100.0;
    double LookupDelta = 1.0;
    double LookupEmissivity = 1.0;
    double ParamE = 0, ParamF = 0;
    int TempPolyOrder = 6;
    TArray<double> LookupRadiance;
    TArray<double> LookupTemperature;
    TArray<double> Coefficients; ///< counts to radiance, constant term first
    TArray<double> TempCoefficients;
    double R2 = 0;
    double TempR2 = 0;
    bool CoeffsOverridden = false;
    int UsedPolyOrder = 0;
    TArray<double> UsedCoefficients;
    bool TempCoeffsOverridden = false;
    int UsedTempPolyOrder = 0;
    TArray<double> UsedTempCoefficients;
    double TPFact = 1.0; ///< stored and exchanged only
    bool TPFactSet = false;
    BACKGROUND_TYPE BackgroundType = BG_Unset;
    double BackgroundValue = 0;
    TArray<BACKGROUND_FILE> BackgroundFiles;
    TArray<SNameValuePair> Tags;
    bool RangeAuto = true;
    double MinTemperature = 0, MaxTemperature = 0;
    double MinRadiance = 0, MaxRadiance = 0;
    double MinCounts = 0, MaxCounts = 0;
};

} // namespace qv::calibration_records
