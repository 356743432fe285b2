/// @file
/// The façades through which applications reach a CRCalFile: small values that
/// hold only the file and indices, never data of their own. A façade binds any
/// index; its operations test the index when called, so a façade may outlive
/// the page, point or response it names and then reads defaults.
///
/// Bad indices: getters give 0 (false, RRT_None, RS_FileNotFound or the empty
/// string as listed), setters do nothing. Where a façade must not be used past
/// its file's lifetime, the caller keeps the file alive. Threads: as the file.
#pragma once

#include <cstdint>

#include "qv/calibration/CalEnums.h"
#include "qv/calibration/CalRecords.h"
#include "qv/core/Array.h"
#include "qv/core/Export.h"

namespace qv {

class CRCalFile;

/// Curve numbers: -1 the final response, -2 the final transmission, -3 the
/// final path radiance, -4 - i the final curve of additional response i, p >= 0
/// the lookup of page p (radiance as X, temperature as Y).
class QV_API CAxis {
public:
    CAxis(CRCalFile &file, int axis, int curve) : file_(&file), axis_(axis), curve_(curve) {} ///< axis 0 (X) or 1 (Y) of a curve number
    /// Value i of the axis (0 is X, 1 is Y); 0 past the end or for a bad curve.
    double operator[](int i) const;

private:
    CRCalFile *file_;
    int axis_;
    int curve_;
};

/// @copydoc CalFacades.h
class QV_API CCurve {
public:
    CCurve(CRCalFile &file, int curve) : X(file, 0, curve), Y(file, 1, curve), file_(&file), curve_(curve) {} ///< binds a curve number (see CAxis)
    CAxis X; ///< the X values (wavelength, or radiance for a lookup)
    CAxis Y; ///< the Y values
    int getCount() const;               ///< 0 for a bad curve
    void getX(TArray<double> &x) const; ///< copies; empty for a bad curve
    void getY(TArray<double> &y) const; ///< copies; empty for a bad curve

protected:
    CRCalFile *file_; ///< the file the curve belongs to
    int curve_;       ///< the curve number (see CAxis)
};

/// The lookup of one page and the settings it is built from. A setter stores
/// only a value more than 1e-8 away from the old one, and then rebuilds the
/// lookup if the file's LookupUpdates is on.
class QV_API CLookup : public CCurve {
public:
    CLookup(CRCalFile &file, int page) : CCurve(file, page), page_(page) {} ///< binds a page
    /// Temperature start, end and step of the lookup, and the emissivity it
    /// is built with; getters give 0 for a bad page.
    ///@{
    double getStart() const;
    double getEnd() const;
    double getDelta() const;
    double getEmissivity() const;
    void setStart(double value);
    void setEnd(double value);
    void setDelta(double value);
    void setEmissivity(double value);
    ///@}

private:
    void Store(double calibration_records::CAL_PAGE::*field, double value);
    double Read(double calibration_records::CAL_PAGE::*field) const;
    int page_;
};

/// The fitted coefficients of a page: counts to radiance, or with the
/// temperature flag radiance to temperature.
class QV_API CCoefficients {
public:
    CCoefficients(CRCalFile &file, int page, bool temperature) : file_(&file), page_(page), temperature_(temperature) {} ///< binds a page and a polynomial
    /// Fitted coefficient i; 0 unless 0 <= i <= the fit's order.
    double operator[](int i) const;
    /// The fit quality; -1.0 for a bad page.
    double getR2() const;

private:
    CRCalFile *file_;
    int page_;
    bool temperature_;
};

/// The calibrated range of a page. The setters store only while automatic
/// mode is off; they return their argument either way, 0 for a bad page.
class QV_API CRange {
public:
    CRange(CRCalFile &file, int page) : file_(&file), page_(page) {} ///< binds a page
    bool getAuto() const; ///< true for a bad page
    /// Setting true recomputes the range at once. Returns the argument.
    bool setAuto(bool value);
    /// The stored range; 0 for a bad page.
    ///@{
    double getMinCounts() const;
    double getMaxCounts() const;
    double getMinRadiance() const;
    double getMaxRadiance() const;
    double getMinTemperature() const;
    double getMaxTemperature() const;
    ///@}
    /// Store only while automatic mode is off (see the class comment).
    ///@{
    double setMinCounts(double value);
    double setMaxCounts(double value);
    double setMinRadiance(double value);
    double setMaxRadiance(double value);
    double setMinTemperature(double value);
    double setMaxTemperature(double value);
    ///@}

private:
    double Get(double calibration_records::CAL_PAGE::*field) const;
    double Set(double calibration_records::CAL_PAGE::*field, double value);
    CRCalFile *file_;
    int page_;
};

/// One measured point of a page. Setters of the temperature re-sort the page,
/// so a point façade keeps naming the index, not the moved point.
class QV_API CCalPoint {
public:
    CCalPoint(CRCalFile &file, int page, int point) : file_(&file), page_(page), point_(point) {} ///< binds a page and a point index
    /// The stored values of the point; 0 (false, RRT_None) for a bad index.
    ///@{
    double getTemperature() const;
    double getEmissivity() const;
    double getMeasurement() const;
    double getReflectedRadiance() const;
    double getReflectedTemperature() const;
    double getReflectedEmissivity() const;
    EReflectedRadianceType getReflectedRadianceType() const;
    bool getEnabled() const;
    double getRadiance() const;
    ///@}
    /// Stores, recomputes the point's radiance, re-sorts the page, refits and
    /// updates the range.
    void setTemperature(double value);
    /// These store and recompute the point's radiance, refitting the page.
    ///@{
    void setEmissivity(double value);
    void setMeasurement(double value);
    void setReflectedRadiance(double value);
    void setReflectedTemperature(double value);
    void setReflectedEmissivity(double value);
    void setReflectedRadianceType(EReflectedRadianceType value);
    ///@}
    /// Stores, refits and updates the range; the radiance stays.
    void setEnabled(bool value);

private:
    template <class T> T Get(T calibration_records::CAL_POINT::*field) const;
    /// Stores and recomputes the point's radiance, refitting the page.
    ///@{
    template <class T> void SetAndRecompute(T calibration_records::CAL_POINT::*field, T value);
    CRCalFile *file_;
    int page_;
    int point_;
    ///@}
};

/// @copydoc CalFacades.h
class QV_API CCalPoints {
public:
    CCalPoints(CRCalFile &file, int page) : file_(&file), page_(page) {} ///< binds a page
    int getCount() const;      ///< number of points; 0 for a bad page
    int getNumEnabled() const; ///< number of enabled points; 0 for a bad page
    CCalPoint operator[](int point) const { return CCalPoint(*file_, page_, point); } ///< binds any index; the point may not exist
    /// Adds a point and refits; the range and the lookup stay. Returns where
    /// the point ended in temperature order (after any of equal temperature),
    /// -1 for a bad page.
    int Add(double temperature, double emissivity, double measurement, bool enabled);
    /// Adds many points as Add does one, with the work done once: each
    /// point's radiance computed (the Radiance given is ignored), the page
    /// sorted once (PointsReordered fires once if that moved a point) and
    /// refitted once; the range and the lookup stay. Reading a large set of
    /// points stays linear in their number, where point-by-point Add refits
    /// after each. False, adding nothing, for a bad page or when the heap
    /// refuses.
    bool AddAll(TArray<calibration_records::CAL_POINT> const &points);
    /// False for a bad page. An index past the end removes nothing but still
    /// clamps the order and refits (true).
    bool Remove(int point);

private:
    CRCalFile *file_;
    int page_;
};

/// @copydoc CalFacades.h
class QV_API CCalPage {
public:
    /// Binds any index; the page may not exist.
    CCalPage(CRCalFile &file, int page)
        : Points(file, page), Coefficients(file, page, false), TempCoefficients(file, page, true), Lookup(file, page),
          Range(file, page), file_(&file), page_(page) {}
    CCalPoints Points;              ///< the measured points
    CCoefficients Coefficients;     ///< counts-to-radiance fit
    CCoefficients TempCoefficients; ///< radiance-to-temperature fit
    CLookup Lookup;                 ///< radiance-to-temperature lookup
    CRange Range;                   ///< calibrated range

    bool getExists() const; ///< the page index is within 0..count-1
    int getPolyOrder() const; ///< 0 for a bad page
    /// Clamped to count - 1, then to at least 1; refits only on a change.
    void setPolyOrder(int order);
    int getTempPolyOrder() const; ///< 0 for a bad page
    /// Clamped to 1..6; refits only on a change.
    void setTempPolyOrder(int order);
    /// Point values in point order: all points, or the enabled ones only.
    ///@{
    void getTemperature(TArray<double> &values, bool all) const;
    void getMeasurement(TArray<double> &values, bool all) const;
    void getRadiance(TArray<double> &values, bool all) const;
    ///@}
    /// Lowest and highest enabled temperature. True only from the second
    /// enabled point on: one enabled point fills both and still gives false.
    bool GetTemperatureRange(double &min, double &max) const;

private:
    void Gather(TArray<double> &values, bool all, double calibration_records::CAL_POINT::*field) const;
    CRCalFile *file_;
    int page_;
};

/// @copydoc CalFacades.h
class QV_API CCalPages {
public:
    explicit CCalPages(CRCalFile &file) : file_(&file) {} ///< binds the file
    int getCount() const;                                 ///< number of pages
    /// Binds any index; the page may not exist.
    CCalPage operator[](int page) const { return CCalPage(*file_, page); }
    /// Appends a default page and computes it; -1 when four pages exist.
    int Add();
    bool Remove(int page); ///< false if out of range

private:
    CRCalFile *file_;
};

/// @copydoc CalFacades.h
class QV_API CTophat {
public:
    explicit CTophat(CRCalFile &file) : file_(&file) {} ///< binds the file
    /// Band start, end and step of the top hat, in micrometres.
    ///@{
    double getStart() const;
    double getEnd() const;
    double getDelta() const;
    ///@}
    /// Store; while the response is a top hat it is generated anew and every
    /// page recomputed.
    ///@{
    void setStart(double value);
    void setEnd(double value);
    void setDelta(double value);
    ///@}

private:
    CRCalFile *file_;
};

/// @copydoc CalFacades.h
class QV_API CSpectralResponse {
public:
    explicit CSpectralResponse(CRCalFile &file) : Tophat(file), Curve(file, -1), file_(&file) {} ///< binds the file
    CTophat Tophat; ///< the top hat settings
    CCurve Curve;   ///< the final response (curve -1)
    /// SRT_File only while the file is in use and loaded.
    ESpectralResponseType getType() const;
    /// SRT_File loads the file, falling back to the top hat on failure; any
    /// other value switches to the top hat.
    void setType(ESpectralResponseType type);
    char16_t const *getFile() const; ///< null when never set
    /// Stores the path and loads it (status RS_NotLoaded first).
    void setFile(char16_t const *path);
    EResponseStatus getStatus() const; ///< how reading the file went
    /// The band pass computed from the response.
    ///@{
    double getBandpassLow() const;
    double getBandpassHigh() const;
    ///@}

private:
    CRCalFile *file_;
};

/// @copydoc CalFacades.h
class QV_API CModtranCurve : public CCurve {
public:
    CModtranCurve(CRCalFile &file, int curve) : CCurve(file, curve) {} ///< curve -2 or -3
    /// The curve's flag is set and the table loaded.
    bool getEnabled() const;
    /// Stores the flag; loads the table if it is not loaded yet, and
    /// recomputes the pages where the result changes.
    void setEnabled(bool enabled);
};

/// @copydoc CalFacades.h
class QV_API CModtran {
public:
    explicit CModtran(CRCalFile &file) : Transmission(file, -2), PathRadiance(file, -3), file_(&file) {} ///< binds the file
    CModtranCurve Transmission; ///< the final transmission (curve -2)
    CModtranCurve PathRadiance; ///< the final path radiance (curve -3)
    char16_t const *getFile() const; ///< null when never set
    /// Stores the path and, with a curve enabled, loads it at once.
    void setFile(char16_t const *path);
    EResponseStatus getStatus() const; ///< how reading the table went

private:
    CRCalFile *file_;
};

/// Index tests accept an index equal to the count, which grows the list by a
/// default response (existing callers rely on it).
class QV_API CAdditionalResponse {
public:
    CAdditionalResponse(CRCalFile &file, int index) : Curve(file, -4 - index), file_(&file), index_(index) {} ///< binds any index
    CCurve Curve; ///< the final curve of this response (curve -4 - index)
    bool getEnabled() const; ///< false for a bad index
    /// Stores and reads the table anew from its file.
    void setEnabled(bool enabled);
    char16_t const *getFile() const; ///< the empty string for a bad index
    /// Stores and reads the table anew from its file.
    void setFile(char16_t const *path);
    EResponseStatus getStatus() const; ///< RS_FileNotFound for a bad index

private:
    CRCalFile *file_;
    int index_;
};

/// @copydoc CalFacades.h
class QV_API CAdditionalResponses {
public:
    explicit CAdditionalResponses(CRCalFile &file) : file_(&file) {} ///< binds the file
    int getCount() const; ///< number of additional responses
    CAdditionalResponse operator[](int index) const { return CAdditionalResponse(*file_, index); } ///< binds any index
    /// Reads the table; on failure returns the status and adds nothing.
    EResponseStatus Add(char16_t const *path, bool enabled);
    bool Remove(int index); ///< false for a bad index

private:
    CRCalFile *file_;
};

} // namespace qv
