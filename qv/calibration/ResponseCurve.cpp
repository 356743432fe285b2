// The spectral response: read from an XY file or generated as a top hat, its
// band pass, and the final wavelength axis that every other curve shares.
#include "qv/calibration/CalFileProbe.h"
#include "qv/calibration/CalLimits.h"
#include "qv/calibration/CurveChecks.h"
#include "qv/calibration/CurveCopy.h"
#include "qv/calibration/RCalFile.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveFiles.h"

namespace qv {

namespace {

// The final axis of a file is at least this fine (microns).
constexpr double kFinestFileStep = 0.01;

double Last(TArray<double> const &a) {
    return a.GetAt(a.GetSize() - 1);
}

} // namespace

// Reads the table with its band pass; the status tells what went wrong. A
// failure before the reading leaves the older curve, one after it the part
// that was read.
void CRCalFile::LoadSpectralResponse(bool adjust) {
    if (!UseResponseFile) return;
    if (!calibration_detail::CalFileExists(ResponseFile)) {
        ResponseStatus = RS_FileNotFound;
        return;
    }
    if (!ReadXYFile(RawResponse.X, RawResponse.Y, &GetFileSystem(), ResponseFile)) {
        ResponseStatus = RS_ReadError;
        return;
    }
    // A table the resampling cannot use (jumbled axis, no positive peak,
    // NaN) would give radiances of 0 or NaN that pass for results: refused.
    // A falling axis is turned around.
    EResponseStatus checked = CheckResponseCurve(RawResponse.X, RawResponse.Y);
    if (checked != RS_OK) {
        ResponseStatus = checked;
        return;
    }
    uint32_t n = RawResponse.X.GetSize();
    ScaleToOne(RawResponse.Y);
    // Half-maximum edges taken at samples, with no interpolation: stored
    // band passes were computed so.
    uint32_t first = n, last = n;
    for (uint32_t i = 0; i < n; ++i)
        if (RawResponse.Y.GetAt(i) > 0.5) {
            if (first == n) first = i;
            last = i;
        }
    BandpassLow = RawResponse.X.GetAt(first == n ? 0 : first);
    BandpassHigh = RawResponse.X.GetAt(last == n ? n - 1 : last);
    ResponseStatus = RS_OK;
    if (adjust) AdjustAllResponses(true);
}

void CRCalFile::SetupTophat(bool adjust) {
    if (!UseTophat) return;
    // A top hat beyond the bound is refused: no curve, radiance 0.
    if (calibration_detail::StepAxisTooLong(TophatStart, TophatEnd, TophatDelta, calibration_detail::kMaxAxisPoints))
        RawResponse.X.Empty();
    else
        XAxis(RawResponse.X, TophatStart, TophatEnd, TophatDelta);
    Tophat(RawResponse.X, RawResponse.Y);
    BandpassLow = TophatStart;
    BandpassHigh = TophatEnd;
    if (adjust) AdjustAllResponses(true);
}

void CRCalFile::UseTophatResponse() {
    UseTophat = true;
    UseResponseFile = false;
}

void CRCalFile::AdjustSpectralResponse(bool update) {
    FinalResponse.X.Empty();
    FinalResponse.Y.Empty();
    uint32_t n = RawResponse.X.GetSize();
    if (n < 2) return;
    if (UseTophat) {
        calibration_detail::CopyValues(FinalResponse.X, RawResponse.X);
        calibration_detail::CopyValues(FinalResponse.Y, RawResponse.Y);
    } else if (UseResponseFile) {
        // Never coarser than the file, and at least as fine as 0.01 micron.
        // The step divides by the count, not count - 1: stored final axes
        // were made so.
        double lo = RawResponse.X.GetAt(0), hi = Last(RawResponse.X);
        double step = (hi - lo) / n;
        if (step > kFinestFileStep) step = kFinestFileStep;
        // A table spanning too far for the finest step is refused: no curve.
        if (!calibration_detail::StepAxisTooLong(lo, hi, step, calibration_detail::kMaxAxisPoints)) {
            XAxis(FinalResponse.X, lo, hi, step);
            Interpolate(RawResponse.X, RawResponse.Y, FinalResponse.X, FinalResponse.Y, 0);
        }
    }
    if (update) UpdateCalPage(-1);
}

void CRCalFile::AdjustAllResponses(bool update) {
    AdjustSpectralResponse(false);
    AdjustModtran(false);
    AdjustAdditionalSpectralResponse(-1, false);
    if (update) UpdateCalPage(-1);
}

bool CRCalFile::SetSpectralResponseFile(char16_t const *path) {
    UseTophat = false;
    UseResponseFile = true;
    ResponseFile = path;
    LoadSpectralResponse(true);
    if (ResponseStatus != RS_OK) {
        UseTophatResponse();
        SetupTophat(false);
        AdjustAllResponses(true);
    }
    return UseResponseFile && ResponseStatus == RS_OK;
}

bool CRCalFile::SetSpectralResponseTophat(double start, double end, double delta) {
    UseTophatResponse();
    TophatStart = start;
    TophatEnd = end;
    TophatDelta = delta;
    SetupTophat(false);
    AdjustAllResponses(true);
    return true;
}

ESpectralResponseType CSpectralResponse::getType() const {
    return file_->UseResponseFile && file_->ResponseStatus == RS_OK ? SRT_File : SRT_Tophat;
}

void CSpectralResponse::setType(ESpectralResponseType type) {
    if (type != SRT_File) {
        file_->UseTophatResponse();
        file_->SetupTophat(true);
        return;
    }
    file_->UseTophat = false;
    file_->UseResponseFile = true;
    file_->LoadSpectralResponse(true);
    if (file_->ResponseStatus == RS_OK) return;
    file_->UseTophatResponse();
    // Without a file name there is nothing the top hat replaces.
    if (!file_->ResponseFile.IsEmpty()) file_->SetupTophat(true);
}

char16_t const *CSpectralResponse::getFile() const {
    return file_->ResponseFile.GetTChar();
}

void CSpectralResponse::setFile(char16_t const *path) {
    file_->ResponseFile = path;
    file_->ResponseStatus = RS_NotLoaded;
    file_->LoadSpectralResponse(true);
}

EResponseStatus CSpectralResponse::getStatus() const {
    return file_->ResponseStatus;
}

double CSpectralResponse::getBandpassLow() const {
    return file_->BandpassLow;
}

double CSpectralResponse::getBandpassHigh() const {
    return file_->BandpassHigh;
}

double CTophat::getStart() const {
    return file_->TophatStart;
}

double CTophat::getEnd() const {
    return file_->TophatEnd;
}

double CTophat::getDelta() const {
    return file_->TophatDelta;
}

void CTophat::setStart(double value) {
    file_->TophatStart = value;
    file_->SetupTophat(true);
}

void CTophat::setEnd(double value) {
    file_->TophatEnd = value;
    file_->SetupTophat(true);
}

void CTophat::setDelta(double value) {
    file_->TophatDelta = value;
    file_->SetupTophat(true);
}

} // namespace qv
