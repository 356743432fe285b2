// CRCalFile: the radiometric calibration of one camera configuration. It
// holds one spectral response, at most one atmosphere (transmission and path
// radiance from a MODTRAN table), any number of additional responses
// (filters) and up to four calibration pages.
//
// The road of a count to a temperature: PolyValue(count, GetCoefficients(p))
// gives in-band radiance in W/(sr-cm^2); PolyValue(radiance,
// GetTempCoefficients(p)) gives degrees Celsius. Both polynomials rest on
// CalcRadiance: Planck on the final wavelength axis times the response, times
// each enabled additional response, with the atmosphere on times the
// transmission plus the path radiance weighted by the response, integrated
// (right-hand rectangles) over the axis. Any change of a curve recomputes
// every page (UpdateCalPage).
//
// Pages. The façades and the update operations accept pages 0..count-1.
// Most Get/Set operations on pages accept a page equal to the count as well:
// reaching that page grows the list by a default page. Existing callers rely
// on this; it is the only way to a fifth page.
//
// Point order. Points are kept sorted by temperature with a stable sort:
// points of equal temperature keep their relative order, and a new point goes
// after those of its temperature. PointsReordered fires (once) with the page
// index whenever sorting moved a point.
//
// Files. Response and atmosphere tables are read from the disk by path; their
// failures show as EResponseStatus values and leave the object usable (the
// response falls back to the top hat, the atmosphere is ignored). A table
// read must also pass the checks of CurveChecks.h (a usable axis, values in
// their range), else RS_ReadError; one in falling wavelength is turned around.
//
// Failures: by bool, counts, -1 or defaults as listed; nothing throws.
// Ownership: the object owns all its data; arrays handed in are copied.
// Threads: no lock; one object belongs to one thread at a time.
#pragma once

#include <cstdint>

#include "qv/calibration/CalEnums.h"
#include "qv/calibration/CalFacades.h"
#include "qv/calibration/CalRecords.h"
#include "qv/core/Array.h"
#include "qv/core/Export.h"
#include "qv/core/NameValuePair.h"
#include "qv/core/String.h"
#include "qv/threads/Events.h"

namespace qv {

class QV_API CRCalFile {
public:
    using CAL_POINT = calibration_records::CAL_POINT;
    using CAL_PAGE = calibration_records::CAL_PAGE;
    using BACKGROUND_FILE = calibration_records::BACKGROUND_FILE;
    using SResponse = calibration_records::SResponse;
    using RESPONCE = calibration_records::RESPONCE;

    CRCalFile(); // the defaults of DefaultCal
    CRCalFile(CRCalFile const &other);
    CRCalFile &operator=(CRCalFile const &other);
    ~CRCalFile();

    CCalPages Pages;
    CSpectralResponse SpectralResponse;
    CModtran Modtran;
    CAdditionalResponses AdditionalResponses;

    // ---- Whole object ----

    // Empties the pages and additional responses, FileRevision 0; nothing else.
    void Destroy();
    void DefaultCal();
    // Every field but LookupUpdates and PointsReordered; FileRevision ends 0.
    void Copy(CRCalFile const &src);
    bool RemoveAllExcept(int page); // false if out of range
    // out becomes a copy of this object holding only that page, as page 0.
    bool Extract(CRCalFile &out, int page);
    // This object becomes a copy of b, c or d for which 1, 2, 3 (a otherwise),
    // then its pages are page 0 of a, b, c and d. Always true.
    bool Merge(CRCalFile &a, CRCalFile &b, CRCalFile &c, CRCalFile &d, int which);
    // Copies page srcPage of src in as page dstPage (0..3) and computes it.
    // srcPage may equal src's page count (that page is then grown there).
    bool ImportPreset(CRCalFile &src, int srcPage, int dstPage);
    // 0 for order 0, 2 for -1 and -2, order + 1 above 0, else 0.
    static int GetNumCoeffsForOrder(int order);

    // ---- Scalars ----

    void GetBandpass(double &lo, double &hi); // the used pair when overridden
    void GetCalcBandpass(double &lo, double &hi);
    void GetUsedBandpass(double &lo, double &hi);
    void SetUsedBandpass(double lo, double hi, bool overridden);
    void GetBandpassOverridden(bool &overridden);
    bool EqualBandpass(double lo, double hi); // both strictly within 1e-8 of the computed pair
    void GetRange(double &range, bool &set);
    void SetRange(double range, bool set);
    void GetFOV(double &h, double &v, bool &set);
    void SetFOV(double h, double v, bool set);

    // ---- Tags: names compare ignoring case; page -1 is the file-wide list ----

    bool GetTags(TArray<SNameValuePair> &tags);
    bool GetTags(int page, TArray<SNameValuePair> &tags);
    bool GetTag(CString name, CString &value);
    bool GetTag(int page, CString name, CString &value);
    bool SetTag(CString name, CString value); // replaces or appends
    bool SetTag(int page, CString name, CString value);
    bool RemoveTag(CString name);
    bool RemoveTag(int page, CString name);
    bool ClearTags();
    bool ClearTags(int page);
    // Whether a name is one the include file writes itself (band pass, field
    // of view, per-page fit and background tags). SetTag does not ask;
    // applications do before they offer a name. False for null.
    static bool IsReservedTagName(char16_t const *name);

    // ---- Radiance (temperature in degrees Celsius, W/(sr-cm^2)) ----

    // 0 while the response has no curve.
    double CalcRadiance(double t, double e);
    double CalcRadianceNoModtran(double t, double e);
    double CalcSourceRadiance(double t, double e);       // CalcRadianceNoModtran
    double CalcRadianceEx(double t, double e, double r); // + r
    // + CalcRadiance(rt, (1 - e) * re)
    double CalcRadianceEx(double t, double e, double rt, double re);
    // By type: + rr, + the reflected temperature's radiance, or nothing.
    double CalcRadianceEx(double t, double e, EReflectedRadianceType type, double rt, double re, double rr);
    // The response times the enabled additional responses and the atmosphere.
    void GetFinalSpectralResponse(TArray<double> &x, TArray<double> &y);
    // The display spectrum: Planck times GetFinalSpectralResponse, plus the
    // path radiance weighted by the response. With the path radiance on it
    // enters twice (once scaled by Planck inside the response, once as it
    // stands); displays depend on this curve, which is not CalcRadiance's
    // integrand.
    void GetFinalPlanck(TArray<double> &x, TArray<double> &y, double t, double e);

    // ---- Coefficients: false for a page below 0 or above the count ----
    // The double * forms write into the caller's buffer, which holds
    // GetNumCoeffsForOrder(order) values.

    bool GetPolyOrder(int page, int &order); // the override when set
    bool GetCoefficients(int page, double *values);
    bool GetCoefficients(int page, TArray<double> &values);
    bool GetCalcPolyOrder(int page, int &order);
    bool GetCalcCoefficients(int page, double *values);
    bool GetUsedPolyOrder(int page, int &order);
    bool GetUsedCoefficients(int page, double *values);
    bool GetUsedCoefficients(int page, int &order, TArray<double> &values, bool &overridden);
    bool GetUsedCoefficients(int page, TArray<double> &values);
    bool GetUsedCoefficients(int page, int &order, TArray<double> &values);
    bool GetCoeffsOverridden(int page, bool &overridden);
    // Stores flag, order and GetNumCoeffsForOrder(order) values; no refit.
    bool SetUsedCoefficients(int page, int order, double *values, bool overridden);
    // order equals PolyOrder and every fitted value within 1e-8 (inclusive).
    bool EqualCoefficients(int page, int order, double *values);
    // Radiance to counts: a separate fit of counts against radiance over the
    // enabled points, with PolyOrder; nothing stored. False if the fit fails.
    bool GetReverseCoefficients(int page, TArray<double> &values);
    bool GetReverseCoefficients(int page, double *values); // PolyOrder + 1 values

    bool GetTempPolyOrder(int page, int &order);
    bool GetTempCoefficients(int page, double *values);
    bool GetTempCoefficients(int page, TArray<double> &values);
    bool GetCalcTempPolyOrder(int page, int &order);
    bool GetCalcTempCoefficients(int page, double *values);
    bool GetUsedTempPolyOrder(int page, int &order);
    bool GetUsedTempCoefficients(int page, double *values);
    bool GetUsedTempCoefficients(int page, int &order, TArray<double> &values, bool &overridden);
    bool GetUsedTempCoefficients(int page, TArray<double> &values);
    bool GetUsedTempCoefficients(int page, int &order, TArray<double> &values);
    bool GetTempCoeffsOverridden(int page, bool &overridden);
    bool SetUsedTempCoefficients(int page, int order, double *values, bool overridden);
    bool EqualTempCoefficients(int page, int order, double *values);

    // ---- Lookup ----

    int GetLookupSize(int page); // -1 when page is above the count
    bool GetLookup(int page, double *radiance, double *temperature);
    // Rebuilds the lookup of a page (-1: all) and refits the temperature
    // polynomial on it.
    void UpdateCalPageLookup(int page);
    bool GetTPFact(int page, double &factor, bool &set); // stored only
    bool SetTPFact(int page, double factor, bool set);

    // ---- Spectral response ----

    // Switches to the file; falls back to the top hat when it fails. True
    // only if the file is in use afterwards.
    bool SetSpectralResponseFile(char16_t const *path);
    bool SetSpectralResponseTophat(double start, double end, double delta); // true

    // ---- Background: false for a page below 0 or above the count ----

    bool GetBackgroundType(int page, BACKGROUND_TYPE &type);
    bool SetBackgroundType(int page, BACKGROUND_TYPE type);
    bool GetBackgroundValue(int page, double &value);
    bool SetBackgroundValue(int page, double value);
    bool GetBackgroundValueEx(int page, double &value); // the value for BG_Fixed, else 0
    // Replaces the image of that size or adds one; the values are copied.
    bool AddBackgroundFile(int page, uint32_t width, uint32_t height, double *values);
    bool GetBackgroundFile(int page, uint32_t width, uint32_t height, double *values); // false if none
    bool HasBackgroundFile(int page, uint32_t width, uint32_t height);
    bool RemoveBackgroundFile(int page, uint32_t width, uint32_t height); // true also if none
    bool ClearBackgroundFiles(int page);

    // ---- Data, public as the stored format and its callers have them ----

    CString ResponseFile;
    bool UseResponseFile;
    SResponse RawResponse;   // as read or generated, Y scaled to 1
    SResponse FinalResponse; // on the final axis, which all curves share
    EResponseStatus ResponseStatus;
    CString ModtranFile;
    bool TransmissionEnabled;
    bool PathRadianceEnabled;
    SResponse RawTransmission, FinalTransmission;
    SResponse RawPathRadiance, FinalPathRadiance;
    EResponseStatus ModtranStatus;
    bool UseTophat;
    double TophatStart, TophatEnd, TophatDelta;
    double BandpassLow, BandpassHigh;
    bool BandpassOverridden;
    double UsedBandpassLow, UsedBandpassHigh;
    double Range; // slant range
    bool RangeSet;
    double VFOV, HFOV;
    bool FOVSet;
    TArray<RESPONCE> AdditionalResponse;
    TArray<CAL_PAGE> CalPages;
    TArray<SNameValuePair> Tags;
    bool LookupUpdates; // pages rebuild their lookup when they change
    // Fired with the page index when sorting changed the order of its points.
    event1<int> PointsReordered;
    int FileRevision; // 7 after DefaultCal

private:
    friend class CAxis;
    friend class CCurve;
    friend class CLookup;
    friend class CCoefficients;
    friend class CRange;
    friend class CCalPoint;
    friend class CCalPoints;
    friend class CCalPage;
    friend class CCalPages;
    friend class CTophat;
    friend class CSpectralResponse;
    friend class CModtranCurve;
    friend class CModtran;
    friend class CAdditionalResponse;
    friend class CAdditionalResponses;

    // Page access: InRange for 0..count-1; Reach also for a page equal to
    // the count, which it grows. Null otherwise.
    CAL_PAGE *PageInRange(int page);
    CAL_PAGE *ReachPage(int page);
    CAL_POINT *PointInRange(int page, int point);
    RESPONCE *ReachResponse(int index); // index 0..count, growing at count
    // The two arrays of a curve number; false for a bad number.
    bool CurveArrays(int curve, TArray<double> *&x, TArray<double> *&y);
    TArray<SNameValuePair> *TagList(int page); // -1 the file-wide list

    // The spectral model applied to a spectrum s over the final axis.
    void ApplyAdditionalResponses(TArray<double> &s);
    void ApplyAtmosphere(TArray<double> &s);
    bool AtmosphereOn() const;
    double Radiance(double t, double e, bool withAtmosphere);

    void UpdateCalPoint(int page, int point, bool refit);
    void UpdateCalPageCoeffs(int page);
    void UpdateCalPageRange(int page);
    void UpdateCalPageTempCoeffs(int page);
    void UpdateCalPage(int page);
    // Sorts a page's points by temperature; returns the new index of `point`
    // (0 for -1, -1 if not found or a bad page). -1, -1 sorts every page.
    int SortCalPoints(int page, int point);
    void RaisePointsReordered(int page);
    // Enabled points' X and Y for a fit (measurement and radiance).
    void GatherEnabled(CAL_PAGE const &page, TArray<double> &counts, TArray<double> &radiance);

    void LoadSpectralResponse(bool adjust);
    void AdjustSpectralResponse(bool update);
    void SetupTophat(bool adjust);
    void UseTophatResponse(); // the flags of the top hat, generated
    EResponseStatus AddAdditionalSpectralResponse(char16_t const *path, bool enabled);
    bool RemoveAdditionalSpectralResponse(int index);
    void LoadAdditionalSpectralResponse(int index, bool adjust);
    EResponseStatus LoadAdditionalSpectralResponse(SResponse &response, char16_t const *path);
    void AdjustAdditionalSpectralResponse(int index, bool update);
    void AdjustAllResponses(bool update);

    void LoadModtran(bool adjust);
    void AdjustModtran(bool update);

    BACKGROUND_FILE *FindBackgroundFile(CAL_PAGE &page, uint32_t width, uint32_t height);
};

} // namespace qv
