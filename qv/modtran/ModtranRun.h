/// @file
/// RUN: one MODTRAN run of a tape5 deck, a plain record copied as bytes.
/// Fields follow the cards in order; their defaults come from DefaultRun
/// (qv/modtran/ModtranTape5File.h). Tables have fixed bounds; a deck that
/// asks for more rows than a bound is refused by the reader.
#pragma once

#include "qv/modtran/ModtranEnums.h"

namespace qv {

inline constexpr int kModtranMaxLevels = 67;        ///< user atmosphere levels
inline constexpr int kModtranSpectraPerRegion = 47; ///< aerosol spectra of one region
inline constexpr int kModtranMaxCloudRows = 64;     ///< layer boundaries, cloud profile rows
inline constexpr int kModtranMaxPhaseAngles = 50;      ///< user phase function angles
inline constexpr int kModtranMaxPhaseWavelengths = 10; ///< user phase function wavelengths
inline constexpr int kModtranMaxSurfaces = 2;          ///< surfaces of one run
inline constexpr int kModtranMaxBRDFRows = 50;         ///< parameter rows of one BRDF surface
inline constexpr int kModtranNameLength = 80; ///< file names on their own cards

/// @copydoc ModtranRun.h
struct USER_LEVEL {
    float altitude;     ///< the level's altitude
    float values[5];    ///< pressure, temperature and three species, as written
    float extended[9];  ///< with the extended flag
    AB_UNITS units[15]; ///< fourteen unit letters, then one behind a blank
    float heavy[13];    ///< with the extended flag and heavy species option 2
    float aerosol[5];   ///< type 1 uses the first three, type 2 all five
    /// Aerosol model type 1 only: the models of the level and the last
    /// number of card 2C3 (not 0: true).
    ///@{
    AEROSOL_ATTENUATION attenuation;
    CLOUD_RAIN_MODEL cloud;
    VOLCANO_INFO volcano;
    AEROSOL_PROFILE profile;
    bool flag;
    ///@}
};

/// @copydoc ModtranRun.h
struct AEROSOL_REGION {
    int nSpectra; ///< as written: 1 stands for 47
    float value;   ///< the first number of card 2D1
    char title[73]; ///< the region's title, 72 characters and a terminator
    float spectra[kModtranSpectraPerRegion][4]; ///< four numbers per spectrum, as on cards 2D2
};

/// @copydoc ModtranRun.h
struct SURFACE {
    BRDF_FUNCTION function; ///< BRDF: the model (card 4B1)
    int nRows;              ///< BRDF: rows used, up to kModtranMaxBRDFRows
    /// BRDF: the two angles on card 4B2 after the row count.
    ///@{
    float zenith, azimuth;
    ///@}
    float rows[kModtranMaxBRDFRows][6]; ///< BRDF: six numbers per row (cards 4B3)
    char files[2][kModtranNameLength + 1]; ///< LAMBER: two file names
};

/// @copydoc ModtranRun.h
struct RUN {
    /// Card 1
    ///@{
    MODTRAN_MODEL bandModel;
    CORRELATIONK_SPEED speed;
    ATMOSPHERE_MODEL atmosphereModel;
    LOS_PATH losPath;
    EXECUTION_MODE executionMode;
    MULTIPLE_SCATTERING multipleScattering;
    ATMOSPHERE_MODEL userModels[6];
    int heavySpecies;
    int atmosphereCache;
    int secondCache;
    float tempAtFirstBoundary;
    int surfaceReflectance; ///< SURFACE_REFLECTANCE or a negative code
    float surfaceValue;
    ///@}
    /// Card 1A
    ///@{
    SCATTERING_ALGO scatteringAlgo;
    bool azimuthDependence;
    int streams;
    bool solarIrradianceFile;
    int solarIndex;
    float co2MixingRatio;
    VERTICAL_COLUMN_TYPE columnType[2];
    float columnValue[2];
    bool solarUserFile;
    char solarUserFileName[kModtranNameLength + 1];
    bool bandModelFile;
    char bandModelFileName[kModtranNameLength + 1];
    bool instrumentFilterFile;
    char instrumentFilterFileName[kModtranNameLength + 1];
    bool updateH2OAerosol;
    float solarConstant;
    ///@}
    /// Card 2
    ///@{
    bool aerosolPlus;
    AEROSOL_ATTENUATION aerosolAttenuation;
    bool navyFlag;
    AEROSOL_PROFILE aerosolProfile;
    bool ussFlag;
    VOLCANO_INFO volcano;
    int coastal;
    CLOUD_RAIN_MODEL cloudModel;
    bool avsa;
    float card2[5]; ///< visibility, wind speeds, rain rate, ground altitude
    ///@}
    /// Card 2 extras
    ///@{
    float adjustments[3][4];
    float clouds[3];
    int nLayerBoundaries;
    int nCloudProfile;
    float cloudExtra[6];
    float avsaValues[3];
    ///@}
    /// User atmosphere
    ///@{
    int nLevels;
    bool extended;
    AEROSOL_MODEL_TYPE aerosolModelType;
    char userTitle[66];
    USER_LEVEL levels[kModtranMaxLevels];
    ///@}
    /// Aerosol regions and cloud tables
    ///@{
    AEROSOL_REGION regions[4];
    float layerBoundaries[kModtranMaxCloudRows][4];
    float cloudProfile[kModtranMaxCloudRows][7];
    ///@}
    /// Card 3
    ///@{
    LOS_TYPE losType;
    float h1, h2, angle, range, beta, r0;
    PATH_LENGTH pathLength;
    float phi;
    int solarDay;
    SOLAR_LUNAR_SOURCE source;
    float solarAngle;
    ///@}
    /// Card 3A and phase functions
    ///@{
    SL_LOS_TYPE slLosType;
    PHASE_FUNCTION_TYPE phaseFunctionType;
    float solarParameters[7];
    int nPhaseAngles;
    int nPhaseWavelengths;
    float phaseAngles[kModtranMaxPhaseAngles];
    float phaseWavelengths[kModtranMaxPhaseWavelengths];
    ///@}
    /// With no wavelengths: one row of five per angle. With wavelengths: four
    /// values per angle and wavelength.
    ///@{
    float phaseRows[kModtranMaxPhaseAngles][5];
    float phaseTable[kModtranMaxPhaseAngles][kModtranMaxPhaseWavelengths][4];
    ///@}
    /// Card 4
    ///@{
    float start, end, step, fwhm;
    char outputYUnit;
    char outputXUnit;
    char delimiter[9];
    INPUT_X_UNIT inputXUnit;
    SLIT_FUNCTION slit;
    FWHM_TYPE fwhmType;
    char degradeType;
    bool saveNonDegraded;
    bool useSavedDegraded;
    char fluxTableType;
    ///@}
    /// Card 4A
    ///@{
    int nSurfaces;
    float surfaceTemperature;
    SURFACE surfaces[kModtranMaxSurfaces];
    ///@}
    /// Card 5
    int repeat;
};

} // namespace qv
