/// @file
/// CModtranTape5File: a MODTRAN tape5 deck in memory, a list of runs (RUN,
/// qv/modtran/ModtranRun.h) of which one is current; every accessor acts on
/// the current run. Load and Save move the list to and from the fixed-column
/// cards of the file.
///
/// Failures are false (or -1 from AddRun) with a last-error text, read with
/// GetLastError; the text stays until the next failure. A new object holds one
/// default run, current, and the text "No Error". An accessor without a current
/// run gives false with "Current run not selected."; one whose row index is
/// outside its table gives false with "Row %d does not exist.".
///
/// Cards. Each card is a line ending in "\r\n". The reader cuts fields by
/// column and width (a blank number is 0), takes a line end of LF or CR LF,
/// keeps the first 127 bytes of a longer line, and refuses a deck that ends
/// before its last card ("Unexpected end of file at card %s."), that asks for
/// more rows than a table holds, or that chains more than kModtranMaxRuns runs.
/// The writer writes two columns as the tool reads them (phi of card 3 at
/// columns 71-80, the solar constant of card 1A at 51-60); the reader accepts
/// those numbers there and five (two) columns to the left, where older
/// writers put them. A value wider than its field is refused ("A value of
/// card %s does not fit its columns.") rather than shifting the columns
/// behind it. A vertical column field reads as "none" only when it is empty
/// or 0 ("0.5" is a scale the tool uses). Before card 3 the writer clears, in
/// the run itself, the geometry fields its line-of-sight type does not use.
///
/// Save(path) writes the deck beside the file and renames it over the file
/// (CAtomicSave, qv/filesystems/AtomicSave.h): a save that fails leaves the
/// old file whole, with "The file %s could not be opened." or "... could not
/// be replaced." or the writer's own text.
///
/// Ownership: the object owns its runs; files are the caller's. Threads: no
/// locks, and FormatSurfaceReflectance / FormatVerticalColumnType give
/// static buffers: one object, and one thread, at a time. Nothing here throws.
#pragma once

#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"
#include "qv/modtran/ModtranRun.h"

namespace qv {

class IFile;

inline constexpr int kModtranMaxRuns = 100; ///< runs one deck may hold

/// @copydoc ModtranTape5File.h
class QV_API CModtranTape5File {
public:
    CModtranTape5File();
    /// Copies every run, the current run and the last error text.
    ///@{
    CModtranTape5File(CModtranTape5File const &) = default;
    CModtranTape5File &operator=(CModtranTape5File const &) = default;
    ///@}
    ~CModtranTape5File();

    /// ---- Run control ----
    void New(); ///< one default run, current
    /// -1 adds a default run, another index a copy of that run; the new index,
    /// or -1 ("Run %d does not exist."). The current run does not change.
    ///@{
    int AddRun(int from);
    bool UseRun(int run);
    ///@}
    /// Closes the gap and selects run 0; the last run can't go.
    bool RemoveRun(int run);
    /// Defaults into the current run; the argument is not used (existing
    /// callers pass any index).
    ///@{
    bool ResetRun(int run);
    int CurrentRun() const { return current; }
    int nRuns() const { return int(runs.GetSize()); }
    bool RunExists();
    bool Validate();
    bool ValidateRun(int run); ///< no checks: true
    void Destroy();           ///< no runs, no current run, "No Error"
    static void DefaultRun(RUN &run);
    static void CopyRun(RUN &to, RUN const &from);
    char const *GetLastError() const { return lastError; }
    void SetLastError(char const *format, ...) __attribute__((format(printf, 2, 3)));
    ///@}

    /// ---- Files ----
    ///@{
    bool Load(IFile &file);
    bool Load(char16_t const *path);
    bool Save(IFile &file); ///< repeat flags 1 ... 1, 0; leaves the last run current
    bool Save(char16_t const *path);
    ///@}
    /// One run, the current one. The repeat argument has no effect.
    ///@{
    bool LoadRun(IFile &file, int repeat);
    bool SaveRun(IFile &file, int repeat);
    ///@}
    /// The cards SaveRun would write for the current run, each with its name
    /// ("1", "1A", "2", "3", ...) and its text without the line end.
    bool GetCards(TArray<CString> &names, TArray<CString> &lines);

    /// The card text of a surface reflectance or a vertical column amount:
    /// the keyword, the value, or the code as a number. The text is a static
    /// buffer of kFormattedFieldCapacity bytes, overwritten by the next call:
    /// one thread at a time. A huge value gives a text wider than its card
    /// field; the card writer refuses it.
    ///@{
    static constexpr size_t kFormattedFieldCapacity = 64;
    static char *FormatSurfaceReflectance(SURFACE_REFLECTANCE kind, float value);
    static char *FormatVerticalColumnType(VERTICAL_COLUMN_TYPE kind, float value);
    ///@}

    /// ---- Accessors of the current run ----
    ///@{
    bool SetBandModel(MODTRAN_MODEL v);
    bool GetBandModel(MODTRAN_MODEL &v);
    bool SetCorrelationKSpeed(CORRELATIONK_SPEED v);
    bool GetCorrelationKSpeed(CORRELATIONK_SPEED &v);
    bool SetAtmosphereModel(ATMOSPHERE_MODEL v);
    bool GetAtmosphereModel(ATMOSPHERE_MODEL &v);
    bool SetLOSPath(LOS_PATH v);
    bool GetLOSPath(LOS_PATH &v);
    bool SetLOSType(LOS_TYPE v);
    bool GetLOSType(LOS_TYPE &v);
    bool SetSLLOSType(SL_LOS_TYPE v);
    bool GetSLLOSType(SL_LOS_TYPE &v);
    bool SetExecutionMode(EXECUTION_MODE v);
    bool GetExecutionMode(EXECUTION_MODE &v);
    bool SetMultipleScattering(MULTIPLE_SCATTERING v, SCATTERING_ALGO algo, bool azimuth, int streams);
    bool GetMultipleScattering(MULTIPLE_SCATTERING &v, SCATTERING_ALGO &algo, bool &azimuth, int &streams);
    ///@}
    /// The six user model selections and the heavy species option.
    ///@{
    bool SetUserDefinedModel(ATMOSPHERE_MODEL const models[6], int heavySpecies);
    bool GetUserDefinedModel(ATMOSPHERE_MODEL models[6], int &heavySpecies);
    ///@}
    /// The user atmosphere heading (count up to kModtranMaxLevels).
    ///@{
    bool SetUserDefinedModel(int count, bool extended, AEROSOL_MODEL_TYPE type, char const *title);
    bool GetUserDefinedModel(int &count, bool &extended, AEROSOL_MODEL_TYPE &type, char *title66);
    ///@}
    /// Per level: altitude, five values and fifteen units.
    ///@{
    bool SetUserDefinedModel(int level, float altitude, float const values[5], AB_UNITS const units[15]);
    bool GetUserDefinedModel(int level, float &altitude, float values[5], AB_UNITS units[15]);
    ///@}
    /// Per level: the nine extended values.
    ///@{
    bool SetUserDefinedModel(int level, float const extended[9]);
    bool GetUserDefinedModel(int level, float extended[9]);
    ///@}
    /// Per level: the thirteen heavy species values.
    ///@{
    bool SetUserDefinedModelHeavy(int level, float const heavy[13]);
    bool GetUserDefinedModelHeavy(int level, float heavy[13]);
    ///@}
    /// Per level, aerosol model type 1.
    ///@{
    bool SetUserDefinedModel(int level, float a, float b, float c, AEROSOL_ATTENUATION attenuation,
                             CLOUD_RAIN_MODEL cloud, VOLCANO_INFO volcano, AEROSOL_PROFILE profile, bool flag);
    bool GetUserDefinedModel(int level, float &a, float &b, float &c, AEROSOL_ATTENUATION &attenuation,
                             CLOUD_RAIN_MODEL &cloud, VOLCANO_INFO &volcano, AEROSOL_PROFILE &profile, bool &flag);
    ///@}
    /// Per level, aerosol model type 2.
    ///@{
    bool SetUserDefinedModel(int level, float a, float b, float c, float d, float e);
    bool GetUserDefinedModel(int level, float &a, float &b, float &c, float &d, float &e);
    bool SetTempAtFirstBoundary(float v);
    bool GetTempAtFirstBoundary(float &v);
    bool SetSurfaceReflectance(SURFACE_REFLECTANCE kind, float value);
    bool GetSurfaceReflectance(SURFACE_REFLECTANCE &kind, float &value);
    ///@}
    /// Card 4A: the surface count (up to kModtranMaxSurfaces) and its float.
    ///@{
    bool SetSurfaceReflectance(int count, float temperature);
    bool GetSurfaceReflectance(int &count, float &temperature);
    bool SetSurfaceReflectance(int surface, char const *file1, char const *file2);
    bool GetSurfaceReflectance(int surface, char *file1, char *file2); ///< 81 bytes each
    bool SetSurfaceReflectance(int surface, BRDF_FUNCTION function, int rows, float zenith, float azimuth);
    bool GetSurfaceReflectance(int surface, BRDF_FUNCTION &function, int &rows, float &zenith, float &azimuth);
    bool SetSurfaceReflectance(int surface, int row, float a, float b, float c, float d, float e, float f);
    bool GetSurfaceReflectance(int surface, int row, float &a, float &b, float &c, float &d, float &e, float &f);
    bool SetSolarIrradiance(bool file, bool userFile, char const *name, int index);
    bool GetSolarIrradiance(bool &file, bool &userFile, char *name, int &index); ///< name: 81 bytes
    bool SetBandModelFile(bool flag, char const *name);
    bool GetBandModelFile(bool &flag, char *name);
    bool SetInstrumentFilterFile(bool flag, char const *name);
    bool GetInstrumentFilterFile(bool &flag, char *name);
    bool SetAerosolInfo(bool aerosolPlus, bool uss);
    bool GetAerosolInfo(bool &aerosolPlus, bool &uss);
    bool SetAerosolInfo(bool aerosolPlus, bool uss, AEROSOL_ATTENUATION attenuation, AEROSOL_PROFILE profile,
                        VOLCANO_INFO volcano, int coastal);
    bool GetAerosolInfo(bool &aerosolPlus, bool &uss, AEROSOL_ATTENUATION &attenuation, AEROSOL_PROFILE &profile,
                        VOLCANO_INFO &volcano, int &coastal);
    bool SetAerosolInfo(float co2, VERTICAL_COLUMN_TYPE type1, float value1, VERTICAL_COLUMN_TYPE type2, float value2,
                        bool updateH2OAerosol);
    bool GetAerosolInfo(float &co2, VERTICAL_COLUMN_TYPE &type1, float &value1, VERTICAL_COLUMN_TYPE &type2,
                        float &value2, bool &updateH2OAerosol);
    bool SetAerosolInfo(float a, float b, float c, float d, float e);
    bool GetAerosolInfo(float &a, float &b, float &c, float &d, float &e);
    bool SetAerosolAdjustments(float const *a4, float const *b4, float const *c4);
    bool GetAerosolAdjustments(float *a4, float *b4, float *c4);
    bool SetAerosolRegion(int region, int spectra, float value, char const *title);
    bool GetAerosolRegion(int region, int &spectra, float &value, char *title73);
    bool SetAerosolRegionSpectra(int region, int row, float a, float b, float c, float d);
    bool GetAerosolRegionSpectra(int region, int row, float &a, float &b, float &c, float &d);
    bool SetClouds(CLOUD_RAIN_MODEL model, float a, float b, float c);
    bool GetClouds(CLOUD_RAIN_MODEL &model, float &a, float &b, float &c);
    bool SetClouds(float a, float b, float c, float d, float e, float f);
    bool GetClouds(float &a, float &b, float &c, float &d, float &e, float &f);
    bool SetLayerBoundary(int count);
    bool GetLayerBoundary(int &count);
    bool SetLayerBoundary(int row, float a, float b, float c, float d);
    bool GetLayerBoundary(int row, float &a, float &b, float &c, float &d);
    bool SetCloudProfile(int count);
    bool GetCloudProfile(int &count);
    bool SetCloudProfile(int row, float a, float b, float c, float d, float e, float f, float g);
    bool GetCloudProfile(int row, float &a, float &b, float &c, float &d, float &e, float &f, float &g);
    bool SetAVSA(bool flag, float a, float b, float c);
    bool GetAVSA(bool &flag, float &a, float &b, float &c);
    ///@}
    /// H1, H2 and the angle; the other geometry fields are cleared.
    ///@{
    bool SetGeometry(float h1, float h2, float angle);
    bool GetGeometry(float &h1, float &h2, float &angle);
    bool SetGeometry(float h1, float h2, float angle, float range, float beta, float r0, float phi, PATH_LENGTH length);
    bool GetGeometry(float &h1, float &h2, float &angle, float &range, float &beta, float &r0, float &phi,
                     PATH_LENGTH &length);
    ///@}
    /// Card 3A and the solar-lunar items of card 3: phase function type, day,
    /// source, the seven floats of card 3A and the last float of card 3.
    ///@{
    bool SetSolarLunarGeometry(PHASE_FUNCTION_TYPE type, int day, SOLAR_LUNAR_SOURCE source,
                               float const parameters[7], float angle);
    bool GetSolarLunarGeometry(PHASE_FUNCTION_TYPE &type, int &day, SOLAR_LUNAR_SOURCE &source, float parameters[7],
                               float &angle);
    bool SetPhaseFunction(int angles, int wavelengths);
    bool GetPhaseFunction(int &angles, int &wavelengths);
    bool SetPhaseFunction(int row, float a, float b, float c, float d, float e); ///< no wavelengths
    bool GetPhaseFunction(int row, float &a, float &b, float &c, float &d, float &e);
    bool SetPhaseFunctionAngle(int row, float angle);
    bool GetPhaseFunctionAngle(int row, float &angle);
    bool SetPhaseFunctionWavelength(int row, float wavelength);
    bool GetPhaseFunctionWavelength(int row, float &wavelength);
    bool SetPhaseFunction(int angle, int wavelength, float a, float b, float c, float d);
    bool GetPhaseFunction(int angle, int wavelength, float &a, float &b, float &c, float &d);
    bool SetOutputInfo(float start, float end, float step, INPUT_X_UNIT unit, SLIT_FUNCTION slit, float fwhm,
                       FWHM_TYPE fwhmType);
    bool GetOutputInfo(float &start, float &end, float &step, INPUT_X_UNIT &unit, SLIT_FUNCTION &slit, float &fwhm,
                       FWHM_TYPE &fwhmType);
    ///@}
    /// The whole current run, or null ("Current run not selected.").
    RUN *GetRun();

private:
    RUN *Current();
    bool Row(int index, int bound);

    TArray<RUN> runs;
    int current;
    char lastError[256];
};

} // namespace qv
