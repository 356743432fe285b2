// The atmosphere: transmission and path radiance from one MODTRAN table,
// resampled to the final axis. CalcRadiance uses them only while a curve is
// enabled and the table loaded (RS_OK); a failed table is thus ignored.
#include "qv/calibration/CalFileProbe.h"
#include "qv/calibration/CurveChecks.h"
#include "qv/calibration/CurveCopy.h"
#include "qv/calibration/RCalFile.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveFiles.h"

namespace qv {

// A disabled atmosphere reads nothing, so its status stays as it was.
void CRCalFile::LoadModtran(bool adjust) {
    if (!TransmissionEnabled && !PathRadianceEnabled) return;
    if (!calibration_detail::CalFileExists(ModtranFile)) {
        ModtranStatus = RS_FileNotFound;
        return;
    }
    if (!ReadModtranFile(RawTransmission.X, RawTransmission.Y, RawPathRadiance.Y, &GetFileSystem(), ModtranFile)) {
        ModtranStatus = RS_ReadError;
        return;
    }
    // Checked as a response is: a table the resampling cannot use, a
    // transmission outside 0..1 or a negative path radiance is refused.
    EResponseStatus checked = CheckAtmosphereCurves(RawTransmission.X, RawTransmission.Y, RawPathRadiance.Y);
    calibration_detail::CopyValues(RawPathRadiance.X, RawTransmission.X);
    ModtranStatus = checked;
    if (checked != RS_OK) return;
    if (adjust) AdjustModtran(true);
}

// Outside the table both curves are 0: a transmission of 0 removes those
// wavelengths from the radiance.
void CRCalFile::AdjustModtran(bool update) {
    calibration_detail::CopyValues(FinalTransmission.X, FinalResponse.X);
    Interpolate(RawTransmission.X, RawTransmission.Y, FinalTransmission.X, FinalTransmission.Y, 0);
    calibration_detail::CopyValues(FinalPathRadiance.X, FinalResponse.X);
    Interpolate(RawPathRadiance.X, RawPathRadiance.Y, FinalPathRadiance.X, FinalPathRadiance.Y, 0);
    if (update) UpdateCalPage(-1);
}

char16_t const *CModtran::getFile() const {
    return file_->ModtranFile.GetTChar();
}

void CModtran::setFile(char16_t const *path) {
    file_->ModtranFile = path;
    file_->ModtranStatus = RS_NotLoaded;
    file_->LoadModtran(true);
}

EResponseStatus CModtran::getStatus() const {
    return file_->ModtranStatus;
}

bool CModtranCurve::getEnabled() const {
    bool flag = curve_ == -2 ? file_->TransmissionEnabled : file_->PathRadianceEnabled;
    return flag && file_->ModtranStatus == RS_OK;
}

void CModtranCurve::setEnabled(bool enabled) {
    (curve_ == -2 ? file_->TransmissionEnabled : file_->PathRadianceEnabled) = enabled;
    bool wasLoaded = file_->ModtranStatus == RS_OK;
    // A successful load updates the pages by itself.
    if (!wasLoaded) file_->LoadModtran(true);
    if (wasLoaded || (!file_->TransmissionEnabled && !file_->PathRadianceEnabled)) file_->UpdateCalPage(-1);
}

} // namespace qv
