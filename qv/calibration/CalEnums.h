/// @file
/// The enumerations of a radiometric calibration. Their numbers are stored in
/// calibration files, so they never change.
#pragma once

namespace qv {

/// Where the spectral response comes from.
enum ESpectralResponseType : int {
    SRT_Tophat = 0, ///< the response is a generated top hat
    SRT_File = 1,   ///< the response was read from an XY file
};

/// The outcome of reading a response or atmosphere table.
enum EResponseStatus : int {
    RS_OK = 0,           ///< the curve is loaded and usable
    RS_NotLoaded = 1,    ///< nothing loaded yet
    RS_FileNotFound = 2, ///< the named file does not exist
    RS_ReadError = 3,    ///< the file could not be read as the expected table
    RS_TooFewPoints = 7, ///< fewer than 2 rows were read
};

/// What reflected radiance a calibration point carries.
enum EReflectedRadianceType : int {
    RRT_None = 0,        ///< the point has no reflected term
    RRT_Radiance = 1,    ///< the reflected radiance is given directly
    RRT_Temperature = 2, ///< it comes from a reflected temperature and emissivity
};

/// The background correction of a page.
enum BACKGROUND_TYPE : int {
    BG_Unset = 0, ///< a page's default; treated as no background
    BG_None = 1,
    BG_Fixed = 2, ///< one fixed background value
    BG_File = 3,  ///< per-pixel background images
};

} // namespace qv
