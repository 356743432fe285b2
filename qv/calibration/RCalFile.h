/// @file
/// CRCalFile: the radiometric calibration of one camera configuration. It
/// holds one spectral response, at most one atmosphere (transmission and path
/// radiance from a MODTRAN table), any number of additional responses
/// (filters) and up to four calibration pages.
///
/// The road of a count to a temperature: PolyValue(count, GetCoefficients(p))
/// gives in-band radiance in W/(sr-cm^2); PolyValue(radiance,
/// GetTempCoefficients(p)) gives degrees Celsius. Both polynomials rest on
/// CalcRadiance: Planck on the final wavelength axis times the response, times
/// each enabled additional response, with the atmosphere on times the
/// transmission plus the path radiance weighted by the response, integrated
/// (right-hand rectangles) over the axis. Any change of a curve recomputes
/// every page (UpdateCalPage).
///
/// Pages. The façades and the update operations accept pages 0..count-1.
/// Most Get/Set operations on pages accept a page equal to the count as well:
/// reaching that page grows the list by a default page. Existing callers rely
/// on this; it is the only way to a fifth page.
///
/// Point order. Points are kept sorted by temperature with a stable sort:
/// points of equal temperature keep their relative order, and a new point goes
/// after those of its temperature. PointsReordered fires (once) with the page
/// index whenever sorting moved a point.
///
/// Files. Response and atmosphere tables are read from the disk by path; their
/// failures show as EResponseStatus values and leave the object usable (the
/// response falls back to the top hat, the atmosphere is ignored). A table
/// read must also pass the checks of CurveChecks.h (a usable axis, values in
/// their range), else RS_ReadError; one in falling wavelength is turned around.
///
/// Failures: by bool, counts, -1 or defaults as listed; nothing throws.
/// Ownership: the object owns all its data; arrays handed in are copied.
/// Threads: no lock; one object belongs to one thread at a time.
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

class IFile;
class IFileSystem;

/// @copydoc RCalFile.h
class QV_API CRCalFile {
public:
    /// Short names for the stored records of CalRecords.h.
    ///@{
    using CAL_POINT = calibration_records::CAL_POINT;
    using CAL_PAGE = calibration_records::CAL_PAGE;
    using BACKGROUND_FILE = calibration_records::BACKGROUND_FILE;
    using SResponse = calibration_records::SResponse;
    using RESPONCE = calibration_records::RESPONCE;
    ///@}

    CRCalFile(); ///< the defaults of DefaultCal
    /// Copy as Copy does: PointsReordered handlers and LookupUpdates are not copied.
    ///@{
    CRCalFile(CRCalFile const &other);
    CRCalFile &operator=(CRCalFile const &other);
    ///@}
    ~CRCalFile(); ///< frees what the object owns

    /// Façades over the data below (CalFacades.h); they hold a pointer back to
    /// this object and are not copied with it.
    ///@{
    CCalPages Pages;
    CSpectralResponse SpectralResponse;
    CModtran Modtran;
    CAdditionalResponses AdditionalResponses;
    ///@}

    // ---- Whole object ----

    /// Empties the pages and additional responses, FileRevision 0; nothing else.
    void Destroy();
    /// Back to the defaults: no files, pages, responses or tags, top hat and
    /// band pass 3..5 microns, LookupUpdates on, FileRevision 7.
    void DefaultCal();
    /// Every field but LookupUpdates and PointsReordered; FileRevision ends 0.
    void Copy(CRCalFile const &src);
    /// Keeps only that page (as page 0); false if out of range.
    bool RemoveAllExcept(int page);
    /// out becomes a copy of this object holding only that page, as page 0.
    bool Extract(CRCalFile &out, int page);
    /// This object becomes a copy of b, c or d for which 1, 2, 3 (a otherwise),
    /// then its pages are page 0 of a, b, c and d. Always true.
    bool Merge(CRCalFile &a, CRCalFile &b, CRCalFile &c, CRCalFile &d, int which);
    /// Copies page srcPage of src in as page dstPage (0..3) and computes it.
    /// srcPage may equal src's page count (that page is then grown there).
    bool ImportPreset(CRCalFile &src, int srcPage, int dstPage);
    /// 0 for order 0, 2 for -1 and -2, order + 1 above 0, else 0.
    static int GetNumCoeffsForOrder(int order);

    // ---- Scalars ----

    void GetBandpass(double &lo, double &hi); ///< the used pair when overridden
    void GetCalcBandpass(double &lo, double &hi); ///< the pair computed from the response
    void GetUsedBandpass(double &lo, double &hi); ///< the override pair, whether in force or not
    void SetUsedBandpass(double lo, double hi, bool overridden); ///< stores the override pair and its flag
    void GetBandpassOverridden(bool &overridden); ///< whether the used pair is in force
    bool EqualBandpass(double lo, double hi); ///< both strictly within 1e-8 of the computed pair
    /// Slant range and field of view (h, v) with their "set" flags, stored as
    /// given; the object computes nothing from them.
    ///@{
    void GetRange(double &range, bool &set);
    void SetRange(double range, bool set);
    void GetFOV(double &h, double &v, bool &set);
    void SetFOV(double h, double v, bool set);
    ///@}

    // ---- Tags: names compare ignoring case; page -1 is the file-wide list ----

    /// The forms without a page work on the file-wide list; those with a page
    /// accept -1 or 0..count-1 (they never grow the list) and are false for any
    /// other page. GetTags copies the list out; GetTag, RemoveTag are false
    /// when the name is absent.
    ///@{
    bool GetTags(TArray<SNameValuePair> &tags);
    bool GetTags(int page, TArray<SNameValuePair> &tags);
    bool GetTag(CString name, CString &value);
    bool GetTag(int page, CString name, CString &value);
    bool SetTag(CString name, CString value); ///< replaces or appends
    bool SetTag(int page, CString name, CString value);
    bool RemoveTag(CString name);
    bool RemoveTag(int page, CString name);
    bool ClearTags();
    bool ClearTags(int page);
    ///@}
    /// Whether a name is one the include file writes itself (band pass, field
    /// of view, per-page fit and background tags). SetTag does not ask;
    /// applications do before they offer a name. False for null.
    static bool IsReservedTagName(char16_t const *name);

    // ---- Radiance (temperature in degrees Celsius, W/(sr-cm^2)) ----

    /// 0 while the response has no curve.
    ///@{
    double CalcRadiance(double t, double e);
    double CalcRadianceNoModtran(double t, double e);
    double CalcSourceRadiance(double t, double e);       ///< CalcRadianceNoModtran
    double CalcRadianceEx(double t, double e, double r); ///< + r
    ///@}
    /// + CalcRadiance(rt, (1 - e) * re)
    double CalcRadianceEx(double t, double e, double rt, double re);
    /// By type: + rr, + the reflected temperature's radiance, or nothing.
    double CalcRadianceEx(double t, double e, EReflectedRadianceType type, double rt, double re, double rr);
    /// The response times the enabled additional responses and the atmosphere.
    void GetFinalSpectralResponse(TArray<double> &x, TArray<double> &y);
    /// The display spectrum: Planck times GetFinalSpectralResponse, plus the
    /// path radiance weighted by the response. With the path radiance on it
    /// enters twice (once scaled by Planck inside the response, once as it
    /// stands); displays depend on this curve, which is not CalcRadiance's
    /// integrand.
    void GetFinalPlanck(TArray<double> &x, TArray<double> &y, double t, double e);

    // ---- Coefficients: false for a page below 0 or above the count ----
    // The double * forms write into the caller's buffer, which holds
    // GetNumCoeffsForOrder(order) values.

    bool GetPolyOrder(int page, int &order); ///< the override when set
    /// Counts-to-radiance polynomial. Without prefix: the one in force (the
    /// override when set); Calc: the fitted one; Used: the override, stored
    /// even while not in force; Overridden: whether it is in force. The order
    /// and TArray forms return the order and its GetNumCoeffsForOrder values.
    ///@{
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
    ///@}
    /// Stores flag, order and GetNumCoeffsForOrder(order) values; no refit.
    bool SetUsedCoefficients(int page, int order, double *values, bool overridden);
    /// order equals PolyOrder and every fitted value within 1e-8 (inclusive).
    bool EqualCoefficients(int page, int order, double *values);
    /// Radiance to counts: a separate fit of counts against radiance over the
    /// enabled points, with PolyOrder; nothing stored. False if the fit fails.
    ///@{
    bool GetReverseCoefficients(int page, TArray<double> &values);
    bool GetReverseCoefficients(int page, double *values); ///< PolyOrder + 1 values
    ///@}

    /// Radiance-to-temperature polynomial: as the counts-to-radiance family
    /// above (same prefixes, same page rule, same override and equality rules).
    ///@{
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
    ///@}

    // ---- Lookup ----

    int GetLookupSize(int page); ///< -1 when page is above the count
    /// Copies the page's lookup into the caller's buffers of GetLookupSize
    /// values (never more: a longer LookupTemperature is cut there); a null
    /// buffer is skipped. False for a page above the count.
    bool GetLookup(int page, double *radiance, double *temperature);
    /// Rebuilds the lookup of a page (-1: all) and refits the temperature
    /// polynomial on it.
    void UpdateCalPageLookup(int page);
    /// The page's factor and its "set" flag, stored and exchanged only.
    ///@{
    bool GetTPFact(int page, double &factor, bool &set);
    bool SetTPFact(int page, double factor, bool set);
    ///@}

    // ---- Spectral response ----

    /// Switches to the file; falls back to the top hat when it fails. True
    /// only if the file is in use afterwards.
    bool SetSpectralResponseFile(char16_t const *path);
    /// Switches to a top hat of that band and step, generated, and recomputes
    /// every page. Always true.
    bool SetSpectralResponseTophat(double start, double end, double delta);

    // ---- Background: false for a page below 0 or above the count ----

    /// The page's background kind and fixed value, stored as given.
    ///@{
    bool GetBackgroundType(int page, BACKGROUND_TYPE &type);
    bool SetBackgroundType(int page, BACKGROUND_TYPE type);
    bool GetBackgroundValue(int page, double &value);
    bool SetBackgroundValue(int page, double value);
    ///@}
    bool GetBackgroundValueEx(int page, double &value); ///< the value for BG_Fixed, else 0
    /// Replaces the image of that size or adds one; the width * height values
    /// are copied.
    bool AddBackgroundFile(int page, uint32_t width, uint32_t height, double *values);
    /// Copies the image of that size into values (width * height; missing
    /// stored values read 0); false if none, or if width * height passes
    /// 32 bits (a key only a file can hold).
    bool GetBackgroundFile(int page, uint32_t width, uint32_t height, double *values);
    bool HasBackgroundFile(int page, uint32_t width, uint32_t height);    ///< an image of that size exists
    bool RemoveBackgroundFile(int page, uint32_t width, uint32_t height); ///< true also if none
    bool ClearBackgroundFiles(int page);                                  ///< removes every image of the page

    /// ---- Files: the RCAL file (".cal") and the include file (".inc") ----
    /// Load reads an RCAL file of any revision (FileRevision tells which:
    /// the last section it held) and rebuilds what an older one lacks: curves
    /// from the files it names, point radiances, fits and ranges. The file is
    /// untrusted: a foreign magic, a version other than 0, a cut inside a
    /// section, a count the remaining bytes cannot hold, a fit order beyond
    /// -2..64, a non-finite coefficient, curve or lookup value, or fits that
    /// an older file's rebuild makes non-finite, is false
    /// and leaves the object at its defaults (no file names, no pages) and
    /// usable; nothing is allocated beyond the file's own size. A file may
    /// end behind any whole section.
    /// Save writes the current revision (7) and reports any failed write.
    /// The path forms use fs (null: the disk). Save by path writes a
    /// temporary file beside the target and renames it over (CAtomicSave):
    /// a failed save leaves the previous file whole.
    ///@{
    enum : uint32_t {
        kSaveWithoutBackgrounds = 1, ///< Save: the background images left out
        kLoadSkipBackgrounds = 1,    ///< Load: those in the file passed over
    };
    bool Save(IFile *file, uint32_t flags);
    bool Save(IFileSystem *fs, char16_t const *path, uint32_t flags);
    bool Load(IFile *file, uint32_t flags);
    bool Load(IFileSystem *fs, char16_t const *path, uint32_t flags);
    ///@}
    /// Export writes the pair for path with its extension replaced: the
    /// include file (".inc", a SAF header of text tags naming the ".cal"
    /// file) and then the RCAL file without background images. With merge an
    /// existing include file is loaded and its other tags kept (a failed load
    /// is false). Every row of the include table is set, with stand-ins
    /// ("0" field of view, "1.0" range and factor) where the object holds
    /// none. A page is written when its enabled points can carry its fit; a
    /// page's own tags always. False, with no RCAL file written, when the
    /// include file fails; false too when the RCAL file then fails. Both are
    /// whole-file saves through a temporary file, except an include file
    /// merged in place (CSAFFile::Save's rules).
    bool Export(IFileSystem *fs, char16_t const *path, bool merge);
    /// Rewrites the tags of an include file only (started new if absent),
    /// setting only the rows the object holds, so that the file's own values
    /// survive; "CAFile" becomes calPath's file name. No RCAL file is written.
    bool UpdateInclude(IFileSystem *fs, char16_t const *incPath, char16_t const *calPath);
    /// Reads an include file and the RCAL file its "CAFile" names beside it
    /// (background images skipped), then takes over the include's band pass,
    /// field of view, slant range and per page ("name_X", or the bare name
    /// for page 0) factor, background and polynomials where they differ: a
    /// text equals a double when the double printed at the text's precision
    /// reads back within 1e-8. Changed polynomials become overrides. A "file"
    /// background ends as BG_None (no image is read); an order beyond -2..64
    /// is passed over. False, with nothing changed, when the include file
    /// fails, has no "CAFile" or the RCAL file cannot be opened; false, with
    /// the object at its defaults, when Load refuses the RCAL file.
    bool Import(IFileSystem *fs, char16_t const *path);

    // ---- Data, public as the stored format and its callers have them ----

    CString ResponseFile; ///< path of the response table
    bool UseResponseFile; ///< the response comes from ResponseFile, else the top hat
    SResponse RawResponse;   ///< as read or generated, Y scaled to 1
    SResponse FinalResponse; ///< on the final axis, which all curves share
    EResponseStatus ResponseStatus; ///< how reading ResponseFile went
    CString ModtranFile; ///< path of the MODTRAN table
    bool TransmissionEnabled; ///< the atmosphere's transmission is applied
    bool PathRadianceEnabled; ///< the atmosphere's path radiance is added
    /// Atmosphere curves, as read and on the final axis.
    ///@{
    SResponse RawTransmission, FinalTransmission;
    SResponse RawPathRadiance, FinalPathRadiance;
    ///@}
    EResponseStatus ModtranStatus; ///< how reading ModtranFile went
    bool UseTophat; ///< the top hat response is in use
    /// Top hat band and step, in micrometres.
    ///@{
    double TophatStart, TophatEnd, TophatDelta;
    ///@}
    /// Band pass computed from the response.
    ///@{
    double BandpassLow, BandpassHigh;
    ///@}
    bool BandpassOverridden; ///< the used pair is in force
    /// Band pass override.
    ///@{
    double UsedBandpassLow, UsedBandpassHigh;
    ///@}
    double Range; ///< slant range
    bool RangeSet; ///< Range holds a value
    /// Field of view, vertical and horizontal.
    ///@{
    double VFOV, HFOV;
    ///@}
    bool FOVSet; ///< VFOV and HFOV hold values
    TArray<RESPONCE> AdditionalResponse; ///< the additional responses (filters), in order
    TArray<CAL_PAGE> CalPages; ///< the calibration pages
    TArray<SNameValuePair> Tags; ///< the file-wide tags
    bool LookupUpdates; ///< pages rebuild their lookup when they change
    /// Fired with the page index when sorting changed the order of its points.
    event1<int> PointsReordered;
    int FileRevision; ///< the revision of the file loaded; 7 after DefaultCal

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

    /// Page access: InRange for 0..count-1; Reach also for a page equal to
    /// the count, which it grows. Null otherwise.
    ///@{
    CAL_PAGE *PageInRange(int page);
    CAL_PAGE *ReachPage(int page);
    CAL_POINT *PointInRange(int page, int point);
    RESPONCE *ReachResponse(int index); ///< index 0..count, growing at count
    ///@}
    /// The two arrays of a curve number; false for a bad number.
    ///@{
    bool CurveArrays(int curve, TArray<double> *&x, TArray<double> *&y);
    TArray<SNameValuePair> *TagList(int page); ///< -1 the file-wide list
    ///@}

    /// The spectral model applied to a spectrum s over the final axis.
    ///@{
    void ApplyAdditionalResponses(TArray<double> &s);
    void ApplyAtmosphere(TArray<double> &s);
    bool AtmosphereOn() const;
    double Radiance(double t, double e, bool withAtmosphere);
    ///@}

    void UpdateCalPoint(int page, int point, bool refit);
    void UpdateCalPageCoeffs(int page);
    void UpdateCalPageRange(int page);
    void UpdateCalPageTempCoeffs(int page);
    void UpdateCalPage(int page);
    /// Sorts a page's points by temperature; returns the new index of `point`
    /// (0 for -1, -1 if not found or a bad page). -1, -1 sorts every page.
    ///@{
    int SortCalPoints(int page, int point);
    void RaisePointsReordered(int page);
    ///@}
    /// Enabled points' X and Y for a fit (measurement and radiance).
    void GatherEnabled(CAL_PAGE const &page, TArray<double> &counts, TArray<double> &radiance);

    void LoadSpectralResponse(bool adjust);
    void AdjustSpectralResponse(bool update);
    void SetupTophat(bool adjust);
    void UseTophatResponse(); ///< the flags of the top hat, generated
    EResponseStatus AddAdditionalSpectralResponse(char16_t const *path, bool enabled);
    bool RemoveAdditionalSpectralResponse(int index);
    void LoadAdditionalSpectralResponse(int index, bool adjust);
    EResponseStatus LoadAdditionalSpectralResponse(SResponse &response, char16_t const *path);
    void AdjustAdditionalSpectralResponse(int index, bool update);
    void AdjustAllResponses(bool update);

    void LoadModtran(bool adjust);
    void AdjustModtran(bool update);

    void RepairLoaded(); ///< after Load, by FileRevision

    BACKGROUND_FILE *FindBackgroundFile(CAL_PAGE &page, uint32_t width, uint32_t height);
};

} // namespace qv
