// The Set/Get accessor pairs of CModtranTape5File: each tests the current
// run (and a row index against its table), then stores or fetches.
#include <algorithm>
#include <cstring>

#include "qv/modtran/ModtranTape5File.h"

namespace qv {

namespace {

void CopyText(char *to, char const *from, size_t size) {
    std::strncpy(to, from ? from : "", size - 1);
    to[size - 1] = '\0';
}

template <size_t N> void CopyIn(char (&to)[N], char const *from) {
    CopyText(to, from, N);
}

template <size_t N> void CopyOut(char *to, char const (&from)[N]) {
    if (to) std::memcpy(to, from, N);
}

template <class T, size_t N> void CopyArray(T (&to)[N], T const *from) {
    std::copy(from, from + N, to);
}

template <class T, size_t N> void CopyArray(T *to, T const (&from)[N]) {
    std::copy(from, from + N, to);
}

} // namespace

// One accessor body: the current run as r, or false.
#define QV_WITH_RUN(body)                                                                                              \
    RUN *r = Current();                                                                                                \
    if (!r) return false;                                                                                              \
    body;                                                                                                              \
    return true
// The same, with row index i checked against bound.
#define QV_WITH_ROW(i, bound, body) QV_WITH_RUN(if (!Row(i, bound)) return false; body)

bool CModtranTape5File::SetBandModel(MODTRAN_MODEL v) { QV_WITH_RUN(r->bandModel = v); }
bool CModtranTape5File::GetBandModel(MODTRAN_MODEL &v) { QV_WITH_RUN(v = r->bandModel); }
bool CModtranTape5File::SetCorrelationKSpeed(CORRELATIONK_SPEED v) { QV_WITH_RUN(r->speed = v); }
bool CModtranTape5File::GetCorrelationKSpeed(CORRELATIONK_SPEED &v) { QV_WITH_RUN(v = r->speed); }
bool CModtranTape5File::SetAtmosphereModel(ATMOSPHERE_MODEL v) { QV_WITH_RUN(r->atmosphereModel = v); }
bool CModtranTape5File::GetAtmosphereModel(ATMOSPHERE_MODEL &v) { QV_WITH_RUN(v = r->atmosphereModel); }
bool CModtranTape5File::SetLOSPath(LOS_PATH v) { QV_WITH_RUN(r->losPath = v); }
bool CModtranTape5File::GetLOSPath(LOS_PATH &v) { QV_WITH_RUN(v = r->losPath); }
bool CModtranTape5File::SetLOSType(LOS_TYPE v) { QV_WITH_RUN(r->losType = v); }
bool CModtranTape5File::GetLOSType(LOS_TYPE &v) { QV_WITH_RUN(v = r->losType); }
bool CModtranTape5File::SetSLLOSType(SL_LOS_TYPE v) { QV_WITH_RUN(r->slLosType = v); }
bool CModtranTape5File::GetSLLOSType(SL_LOS_TYPE &v) { QV_WITH_RUN(v = r->slLosType); }
bool CModtranTape5File::SetExecutionMode(EXECUTION_MODE v) { QV_WITH_RUN(r->executionMode = v); }
bool CModtranTape5File::GetExecutionMode(EXECUTION_MODE &v) { QV_WITH_RUN(v = r->executionMode); }

bool CModtranTape5File::SetMultipleScattering(MULTIPLE_SCATTERING v, SCATTERING_ALGO algo, bool azimuth,
                                              int streams) {
    QV_WITH_RUN(r->multipleScattering = v; r->scatteringAlgo = algo; r->azimuthDependence = azimuth;
                r->streams = streams);
}
bool CModtranTape5File::GetMultipleScattering(MULTIPLE_SCATTERING &v, SCATTERING_ALGO &algo, bool &azimuth,
                                              int &streams) {
    QV_WITH_RUN(v = r->multipleScattering; algo = r->scatteringAlgo; azimuth = r->azimuthDependence;
                streams = r->streams);
}

bool CModtranTape5File::SetUserDefinedModel(ATMOSPHERE_MODEL const models[6], int heavySpecies) {
    QV_WITH_RUN(CopyArray(r->userModels, models); r->heavySpecies = heavySpecies);
}
bool CModtranTape5File::GetUserDefinedModel(ATMOSPHERE_MODEL models[6], int &heavySpecies) {
    QV_WITH_RUN(CopyArray(models, r->userModels); heavySpecies = r->heavySpecies);
}
bool CModtranTape5File::SetUserDefinedModel(int count, bool extended, AEROSOL_MODEL_TYPE type, char const *title) {
    QV_WITH_RUN(if (!Row(count, kModtranMaxLevels + 1)) return false; r->nLevels = count; r->extended = extended;
                r->aerosolModelType = type; CopyIn(r->userTitle, title));
}
bool CModtranTape5File::GetUserDefinedModel(int &count, bool &extended, AEROSOL_MODEL_TYPE &type, char *title66) {
    QV_WITH_RUN(count = r->nLevels; extended = r->extended; type = r->aerosolModelType;
                CopyOut(title66, r->userTitle));
}
bool CModtranTape5File::SetUserDefinedModel(int level, float altitude, float const values[5],
                                            AB_UNITS const units[15]) {
    QV_WITH_ROW(level, kModtranMaxLevels, USER_LEVEL &l = r->levels[level]; l.altitude = altitude;
                CopyArray(l.values, values); CopyArray(l.units, units));
}
bool CModtranTape5File::GetUserDefinedModel(int level, float &altitude, float values[5], AB_UNITS units[15]) {
    QV_WITH_ROW(level, kModtranMaxLevels, USER_LEVEL const &l = r->levels[level]; altitude = l.altitude;
                CopyArray(values, l.values); CopyArray(units, l.units));
}
bool CModtranTape5File::SetUserDefinedModel(int level, float const extended[9]) {
    QV_WITH_ROW(level, kModtranMaxLevels, CopyArray(r->levels[level].extended, extended));
}
bool CModtranTape5File::GetUserDefinedModel(int level, float extended[9]) {
    QV_WITH_ROW(level, kModtranMaxLevels, CopyArray(extended, r->levels[level].extended));
}
bool CModtranTape5File::SetUserDefinedModelHeavy(int level, float const heavy[13]) {
    QV_WITH_ROW(level, kModtranMaxLevels, CopyArray(r->levels[level].heavy, heavy));
}
bool CModtranTape5File::GetUserDefinedModelHeavy(int level, float heavy[13]) {
    QV_WITH_ROW(level, kModtranMaxLevels, CopyArray(heavy, r->levels[level].heavy));
}
bool CModtranTape5File::SetUserDefinedModel(int level, float a, float b, float c, AEROSOL_ATTENUATION attenuation,
                                            CLOUD_RAIN_MODEL cloud, VOLCANO_INFO volcano, AEROSOL_PROFILE profile,
                                            bool flag) {
    QV_WITH_ROW(level, kModtranMaxLevels, USER_LEVEL &l = r->levels[level]; l.aerosol[0] = a; l.aerosol[1] = b;
                l.aerosol[2] = c; l.attenuation = attenuation; l.cloud = cloud; l.volcano = volcano;
                l.profile = profile; l.flag = flag);
}
bool CModtranTape5File::GetUserDefinedModel(int level, float &a, float &b, float &c, AEROSOL_ATTENUATION &attenuation,
                                            CLOUD_RAIN_MODEL &cloud, VOLCANO_INFO &volcano, AEROSOL_PROFILE &profile,
                                            bool &flag) {
    QV_WITH_ROW(level, kModtranMaxLevels, USER_LEVEL const &l = r->levels[level]; a = l.aerosol[0];
                b = l.aerosol[1]; c = l.aerosol[2]; attenuation = l.attenuation; cloud = l.cloud;
                volcano = l.volcano; profile = l.profile; flag = l.flag);
}
bool CModtranTape5File::SetUserDefinedModel(int level, float a, float b, float c, float d, float e) {
    QV_WITH_ROW(level, kModtranMaxLevels, float *v = r->levels[level].aerosol; v[0] = a; v[1] = b; v[2] = c;
                v[3] = d; v[4] = e);
}
bool CModtranTape5File::GetUserDefinedModel(int level, float &a, float &b, float &c, float &d, float &e) {
    QV_WITH_ROW(level, kModtranMaxLevels, float const *v = r->levels[level].aerosol; a = v[0]; b = v[1]; c = v[2];
                d = v[3]; e = v[4]);
}

bool CModtranTape5File::SetTempAtFirstBoundary(float v) { QV_WITH_RUN(r->tempAtFirstBoundary = v); }
bool CModtranTape5File::GetTempAtFirstBoundary(float &v) { QV_WITH_RUN(v = r->tempAtFirstBoundary); }
bool CModtranTape5File::SetSurfaceReflectance(SURFACE_REFLECTANCE kind, float value) {
    QV_WITH_RUN(r->surfaceReflectance = kind; r->surfaceValue = value);
}
bool CModtranTape5File::GetSurfaceReflectance(SURFACE_REFLECTANCE &kind, float &value) {
    QV_WITH_RUN(kind = SURFACE_REFLECTANCE(r->surfaceReflectance); value = r->surfaceValue);
}
bool CModtranTape5File::SetSurfaceReflectance(int count, float temperature) {
    QV_WITH_RUN(if (!Row(count, kModtranMaxSurfaces + 1)) return false; r->nSurfaces = count;
                r->surfaceTemperature = temperature);
}
bool CModtranTape5File::GetSurfaceReflectance(int &count, float &temperature) {
    QV_WITH_RUN(count = r->nSurfaces; temperature = r->surfaceTemperature);
}
bool CModtranTape5File::SetSurfaceReflectance(int surface, char const *file1, char const *file2) {
    QV_WITH_ROW(surface, kModtranMaxSurfaces, CopyIn(r->surfaces[surface].files[0], file1);
                CopyIn(r->surfaces[surface].files[1], file2));
}
bool CModtranTape5File::GetSurfaceReflectance(int surface, char *file1, char *file2) {
    QV_WITH_ROW(surface, kModtranMaxSurfaces, CopyOut(file1, r->surfaces[surface].files[0]);
                CopyOut(file2, r->surfaces[surface].files[1]));
}
bool CModtranTape5File::SetSurfaceReflectance(int surface, BRDF_FUNCTION function, int rows, float zenith,
                                              float azimuth) {
    QV_WITH_ROW(surface, kModtranMaxSurfaces, if (!Row(rows, kModtranMaxBRDFRows + 1)) return false;
                SURFACE &s = r->surfaces[surface]; s.function = function; s.nRows = rows; s.zenith = zenith;
                s.azimuth = azimuth);
}
bool CModtranTape5File::GetSurfaceReflectance(int surface, BRDF_FUNCTION &function, int &rows, float &zenith,
                                              float &azimuth) {
    QV_WITH_ROW(surface, kModtranMaxSurfaces, SURFACE const &s = r->surfaces[surface]; function = s.function;
                rows = s.nRows; zenith = s.zenith; azimuth = s.azimuth);
}
bool CModtranTape5File::SetSurfaceReflectance(int surface, int row, float a, float b, float c, float d, float e,
                                              float f) {
    QV_WITH_ROW(surface, kModtranMaxSurfaces, if (!Row(row, kModtranMaxBRDFRows)) return false;
                float *v = r->surfaces[surface].rows[row]; v[0] = a; v[1] = b; v[2] = c; v[3] = d; v[4] = e;
                v[5] = f);
}
bool CModtranTape5File::GetSurfaceReflectance(int surface, int row, float &a, float &b, float &c, float &d, float &e,
                                              float &f) {
    QV_WITH_ROW(surface, kModtranMaxSurfaces, if (!Row(row, kModtranMaxBRDFRows)) return false;
                float const *v = r->surfaces[surface].rows[row]; a = v[0]; b = v[1]; c = v[2]; d = v[3]; e = v[4];
                f = v[5]);
}

bool CModtranTape5File::SetSolarIrradiance(bool file, bool userFile, char const *name, int index) {
    QV_WITH_RUN(r->solarIrradianceFile = file; r->solarUserFile = userFile; CopyIn(r->solarUserFileName, name);
                r->solarIndex = index);
}
bool CModtranTape5File::GetSolarIrradiance(bool &file, bool &userFile, char *name, int &index) {
    QV_WITH_RUN(file = r->solarIrradianceFile; userFile = r->solarUserFile; CopyOut(name, r->solarUserFileName);
                index = r->solarIndex);
}
bool CModtranTape5File::SetBandModelFile(bool flag, char const *name) {
    QV_WITH_RUN(r->bandModelFile = flag; CopyIn(r->bandModelFileName, name));
}
bool CModtranTape5File::GetBandModelFile(bool &flag, char *name) {
    QV_WITH_RUN(flag = r->bandModelFile; CopyOut(name, r->bandModelFileName));
}
bool CModtranTape5File::SetInstrumentFilterFile(bool flag, char const *name) {
    QV_WITH_RUN(r->instrumentFilterFile = flag; CopyIn(r->instrumentFilterFileName, name));
}
bool CModtranTape5File::GetInstrumentFilterFile(bool &flag, char *name) {
    QV_WITH_RUN(flag = r->instrumentFilterFile; CopyOut(name, r->instrumentFilterFileName));
}

bool CModtranTape5File::SetAerosolInfo(bool aerosolPlus, bool uss) {
    QV_WITH_RUN(r->aerosolPlus = aerosolPlus; r->ussFlag = uss);
}
bool CModtranTape5File::GetAerosolInfo(bool &aerosolPlus, bool &uss) {
    QV_WITH_RUN(aerosolPlus = r->aerosolPlus; uss = r->ussFlag);
}
bool CModtranTape5File::SetAerosolInfo(bool aerosolPlus, bool uss, AEROSOL_ATTENUATION attenuation,
                                       AEROSOL_PROFILE profile, VOLCANO_INFO volcano, int coastal) {
    QV_WITH_RUN(r->aerosolPlus = aerosolPlus; r->ussFlag = uss; r->aerosolAttenuation = attenuation;
                r->aerosolProfile = profile; r->volcano = volcano; r->coastal = coastal);
}
bool CModtranTape5File::GetAerosolInfo(bool &aerosolPlus, bool &uss, AEROSOL_ATTENUATION &attenuation,
                                       AEROSOL_PROFILE &profile, VOLCANO_INFO &volcano, int &coastal) {
    QV_WITH_RUN(aerosolPlus = r->aerosolPlus; uss = r->ussFlag; attenuation = r->aerosolAttenuation;
                profile = r->aerosolProfile; volcano = r->volcano; coastal = r->coastal);
}
bool CModtranTape5File::SetAerosolInfo(float co2, VERTICAL_COLUMN_TYPE type1, float value1,
                                       VERTICAL_COLUMN_TYPE type2, float value2, bool updateH2OAerosol) {
    QV_WITH_RUN(r->co2MixingRatio = co2; r->columnType[0] = type1; r->columnValue[0] = value1;
                r->columnType[1] = type2; r->columnValue[1] = value2; r->updateH2OAerosol = updateH2OAerosol);
}
bool CModtranTape5File::GetAerosolInfo(float &co2, VERTICAL_COLUMN_TYPE &type1, float &value1,
                                       VERTICAL_COLUMN_TYPE &type2, float &value2, bool &updateH2OAerosol) {
    QV_WITH_RUN(co2 = r->co2MixingRatio; type1 = r->columnType[0]; value1 = r->columnValue[0];
                type2 = r->columnType[1]; value2 = r->columnValue[1]; updateH2OAerosol = r->updateH2OAerosol);
}
bool CModtranTape5File::SetAerosolInfo(float a, float b, float c, float d, float e) {
    QV_WITH_RUN(float *v = r->card2; v[0] = a; v[1] = b; v[2] = c; v[3] = d; v[4] = e);
}
bool CModtranTape5File::GetAerosolInfo(float &a, float &b, float &c, float &d, float &e) {
    QV_WITH_RUN(float const *v = r->card2; a = v[0]; b = v[1]; c = v[2]; d = v[3]; e = v[4]);
}
bool CModtranTape5File::SetAerosolAdjustments(float const *a4, float const *b4, float const *c4) {
    QV_WITH_RUN(CopyArray(r->adjustments[0], a4); CopyArray(r->adjustments[1], b4);
                CopyArray(r->adjustments[2], c4));
}
bool CModtranTape5File::GetAerosolAdjustments(float *a4, float *b4, float *c4) {
    QV_WITH_RUN(CopyArray(a4, r->adjustments[0]); CopyArray(b4, r->adjustments[1]);
                CopyArray(c4, r->adjustments[2]));
}
bool CModtranTape5File::SetAerosolRegion(int region, int spectra, float value, char const *title) {
    QV_WITH_ROW(region, 4, AEROSOL_REGION &g = r->regions[region]; g.nSpectra = spectra; g.value = value;
                CopyIn(g.title, title));
}
bool CModtranTape5File::GetAerosolRegion(int region, int &spectra, float &value, char *title73) {
    QV_WITH_ROW(region, 4, AEROSOL_REGION const &g = r->regions[region]; spectra = g.nSpectra; value = g.value;
                CopyOut(title73, g.title));
}
bool CModtranTape5File::SetAerosolRegionSpectra(int region, int row, float a, float b, float c, float d) {
    QV_WITH_ROW(region, 4, if (!Row(row, kModtranSpectraPerRegion)) return false;
                float *v = r->regions[region].spectra[row]; v[0] = a; v[1] = b; v[2] = c; v[3] = d);
}
bool CModtranTape5File::GetAerosolRegionSpectra(int region, int row, float &a, float &b, float &c, float &d) {
    QV_WITH_ROW(region, 4, if (!Row(row, kModtranSpectraPerRegion)) return false;
                float const *v = r->regions[region].spectra[row]; a = v[0]; b = v[1]; c = v[2]; d = v[3]);
}

bool CModtranTape5File::SetClouds(CLOUD_RAIN_MODEL model, float a, float b, float c) {
    QV_WITH_RUN(r->cloudModel = model; r->clouds[0] = a; r->clouds[1] = b; r->clouds[2] = c);
}
bool CModtranTape5File::GetClouds(CLOUD_RAIN_MODEL &model, float &a, float &b, float &c) {
    QV_WITH_RUN(model = r->cloudModel; a = r->clouds[0]; b = r->clouds[1]; c = r->clouds[2]);
}
bool CModtranTape5File::SetClouds(float a, float b, float c, float d, float e, float f) {
    QV_WITH_RUN(float *v = r->cloudExtra; v[0] = a; v[1] = b; v[2] = c; v[3] = d; v[4] = e; v[5] = f);
}
bool CModtranTape5File::GetClouds(float &a, float &b, float &c, float &d, float &e, float &f) {
    QV_WITH_RUN(float const *v = r->cloudExtra; a = v[0]; b = v[1]; c = v[2]; d = v[3]; e = v[4]; f = v[5]);
}
bool CModtranTape5File::SetLayerBoundary(int count) {
    QV_WITH_ROW(count, kModtranMaxCloudRows + 1, r->nLayerBoundaries = count);
}
bool CModtranTape5File::GetLayerBoundary(int &count) { QV_WITH_RUN(count = r->nLayerBoundaries); }
bool CModtranTape5File::SetLayerBoundary(int row, float a, float b, float c, float d) {
    QV_WITH_ROW(row, kModtranMaxCloudRows, float *v = r->layerBoundaries[row]; v[0] = a; v[1] = b; v[2] = c;
                v[3] = d);
}
bool CModtranTape5File::GetLayerBoundary(int row, float &a, float &b, float &c, float &d) {
    QV_WITH_ROW(row, kModtranMaxCloudRows, float const *v = r->layerBoundaries[row]; a = v[0]; b = v[1];
                c = v[2]; d = v[3]);
}
bool CModtranTape5File::SetCloudProfile(int count) {
    QV_WITH_ROW(count, kModtranMaxCloudRows + 1, r->nCloudProfile = count);
}
bool CModtranTape5File::GetCloudProfile(int &count) { QV_WITH_RUN(count = r->nCloudProfile); }
bool CModtranTape5File::SetCloudProfile(int row, float a, float b, float c, float d, float e, float f, float g) {
    QV_WITH_ROW(row, kModtranMaxCloudRows, float *v = r->cloudProfile[row]; v[0] = a; v[1] = b; v[2] = c;
                v[3] = d; v[4] = e; v[5] = f; v[6] = g);
}
bool CModtranTape5File::GetCloudProfile(int row, float &a, float &b, float &c, float &d, float &e, float &f,
                                        float &g) {
    QV_WITH_ROW(row, kModtranMaxCloudRows, float const *v = r->cloudProfile[row]; a = v[0]; b = v[1]; c = v[2];
                d = v[3]; e = v[4]; f = v[5]; g = v[6]);
}
bool CModtranTape5File::SetAVSA(bool flag, float a, float b, float c) {
    QV_WITH_RUN(r->avsa = flag; r->avsaValues[0] = a; r->avsaValues[1] = b; r->avsaValues[2] = c);
}
bool CModtranTape5File::GetAVSA(bool &flag, float &a, float &b, float &c) {
    QV_WITH_RUN(flag = r->avsa; a = r->avsaValues[0]; b = r->avsaValues[1]; c = r->avsaValues[2]);
}

bool CModtranTape5File::SetGeometry(float h1, float h2, float angle) {
    QV_WITH_RUN(r->h1 = h1; r->h2 = h2; r->angle = angle; r->range = r->beta = r->r0 = r->phi = 0.0f;
                r->pathLength = PL_SHORT);
}
bool CModtranTape5File::GetGeometry(float &h1, float &h2, float &angle) {
    QV_WITH_RUN(h1 = r->h1; h2 = r->h2; angle = r->angle);
}
bool CModtranTape5File::SetGeometry(float h1, float h2, float angle, float range, float beta, float r0, float phi,
                                    PATH_LENGTH length) {
    QV_WITH_RUN(r->h1 = h1; r->h2 = h2; r->angle = angle; r->range = range; r->beta = beta; r->r0 = r0;
                r->phi = phi; r->pathLength = length);
}
bool CModtranTape5File::GetGeometry(float &h1, float &h2, float &angle, float &range, float &beta, float &r0,
                                    float &phi, PATH_LENGTH &length) {
    QV_WITH_RUN(h1 = r->h1; h2 = r->h2; angle = r->angle; range = r->range; beta = r->beta; r0 = r->r0;
                phi = r->phi; length = r->pathLength);
}
bool CModtranTape5File::SetSolarLunarGeometry(PHASE_FUNCTION_TYPE type, int day, SOLAR_LUNAR_SOURCE source,
                                              float const parameters[7], float angle) {
    QV_WITH_RUN(r->phaseFunctionType = type; r->solarDay = day; r->source = source;
                CopyArray(r->solarParameters, parameters); r->solarAngle = angle);
}
bool CModtranTape5File::GetSolarLunarGeometry(PHASE_FUNCTION_TYPE &type, int &day, SOLAR_LUNAR_SOURCE &source,
                                              float parameters[7], float &angle) {
    QV_WITH_RUN(type = r->phaseFunctionType; day = r->solarDay; source = r->source;
                CopyArray(parameters, r->solarParameters); angle = r->solarAngle);
}
bool CModtranTape5File::SetPhaseFunction(int angles, int wavelengths) {
    QV_WITH_ROW(angles, kModtranMaxPhaseAngles + 1, if (!Row(wavelengths, kModtranMaxPhaseWavelengths + 1)) return false;
                r->nPhaseAngles = angles; r->nPhaseWavelengths = wavelengths);
}
bool CModtranTape5File::GetPhaseFunction(int &angles, int &wavelengths) {
    QV_WITH_RUN(angles = r->nPhaseAngles; wavelengths = r->nPhaseWavelengths);
}
bool CModtranTape5File::SetPhaseFunction(int row, float a, float b, float c, float d, float e) {
    QV_WITH_ROW(row, kModtranMaxPhaseAngles, float *v = r->phaseRows[row]; v[0] = a; v[1] = b; v[2] = c; v[3] = d;
                v[4] = e);
}
bool CModtranTape5File::GetPhaseFunction(int row, float &a, float &b, float &c, float &d, float &e) {
    QV_WITH_ROW(row, kModtranMaxPhaseAngles, float const *v = r->phaseRows[row]; a = v[0]; b = v[1]; c = v[2];
                d = v[3]; e = v[4]);
}
bool CModtranTape5File::SetPhaseFunctionAngle(int row, float angle) {
    QV_WITH_ROW(row, kModtranMaxPhaseAngles, r->phaseAngles[row] = angle);
}
bool CModtranTape5File::GetPhaseFunctionAngle(int row, float &angle) {
    QV_WITH_ROW(row, kModtranMaxPhaseAngles, angle = r->phaseAngles[row]);
}
bool CModtranTape5File::SetPhaseFunctionWavelength(int row, float wavelength) {
    QV_WITH_ROW(row, kModtranMaxPhaseWavelengths, r->phaseWavelengths[row] = wavelength);
}
bool CModtranTape5File::GetPhaseFunctionWavelength(int row, float &wavelength) {
    QV_WITH_ROW(row, kModtranMaxPhaseWavelengths, wavelength = r->phaseWavelengths[row]);
}
bool CModtranTape5File::SetPhaseFunction(int angle, int wavelength, float a, float b, float c, float d) {
    QV_WITH_ROW(angle, kModtranMaxPhaseAngles, if (!Row(wavelength, kModtranMaxPhaseWavelengths)) return false;
                float *v = r->phaseTable[angle][wavelength]; v[0] = a; v[1] = b; v[2] = c; v[3] = d);
}
bool CModtranTape5File::GetPhaseFunction(int angle, int wavelength, float &a, float &b, float &c, float &d) {
    QV_WITH_ROW(angle, kModtranMaxPhaseAngles, if (!Row(wavelength, kModtranMaxPhaseWavelengths)) return false;
                float const *v = r->phaseTable[angle][wavelength]; a = v[0]; b = v[1]; c = v[2]; d = v[3]);
}
bool CModtranTape5File::SetOutputInfo(float start, float end, float step, INPUT_X_UNIT unit, SLIT_FUNCTION slit,
                                      float fwhm, FWHM_TYPE fwhmType) {
    QV_WITH_RUN(r->start = start; r->end = end; r->step = step; r->inputXUnit = unit; r->slit = slit;
                r->fwhm = fwhm; r->fwhmType = fwhmType);
}
bool CModtranTape5File::GetOutputInfo(float &start, float &end, float &step, INPUT_X_UNIT &unit, SLIT_FUNCTION &slit,
                                      float &fwhm, FWHM_TYPE &fwhmType) {
    QV_WITH_RUN(start = r->start; end = r->end; step = r->step; unit = r->inputXUnit; slit = r->slit;
                fwhm = r->fwhm; fwhmType = r->fwhmType);
}

} // namespace qv
