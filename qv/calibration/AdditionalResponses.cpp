// Additional spectral responses (filters): tables that multiply the response.
// They are not scaled (a filter keeps its own values) and are 0 outside
// their table, which shuts those wavelengths out.
#include "qv/calibration/CalFileProbe.h"
#include "qv/calibration/CurveChecks.h"
#include "qv/calibration/CurveCopy.h"
#include "qv/calibration/RCalFile.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveFiles.h"

namespace qv {

EResponseStatus CRCalFile::LoadAdditionalSpectralResponse(SResponse &response, char16_t const *path) {
    if (!calibration_detail::CalFileExists(path)) return RS_FileNotFound;
    if (!ReadXYFile(response.X, response.Y, &GetFileSystem(), path)) return RS_ReadError;
    // Checked as a response is, without the peak: a filter may block all.
    return CheckFilterCurve(response.X, response.Y);
}

void CRCalFile::LoadAdditionalSpectralResponse(int index, bool adjust) {
    if (index == -1) {
        for (int i = 0; i < int(AdditionalResponse.GetSize()); ++i)
            LoadAdditionalSpectralResponse(i, adjust);
        return;
    }
    RESPONCE *r = ReachResponse(index);
    if (!r) return;
    r->Status = LoadAdditionalSpectralResponse(r->Raw, r->File);
    if (adjust) AdjustAdditionalSpectralResponse(index, true);
}

void CRCalFile::AdjustAdditionalSpectralResponse(int index, bool update) {
    if (index == -1) {
        for (int i = 0; i < int(AdditionalResponse.GetSize()); ++i)
            AdjustAdditionalSpectralResponse(i, false);
        if (update) UpdateCalPage(-1);
        return;
    }
    RESPONCE *r = ReachResponse(index);
    if (!r) return;
    calibration_detail::CopyValues(r->Final.X, FinalResponse.X);
    Interpolate(r->Raw.X, r->Raw.Y, r->Final.X, r->Final.Y, 0);
    if (update) UpdateCalPage(-1);
}

EResponseStatus CRCalFile::AddAdditionalSpectralResponse(char16_t const *path, bool enabled) {
    RESPONCE added;
    EResponseStatus status = LoadAdditionalSpectralResponse(added.Raw, path);
    if (status != RS_OK) return status;
    added.File = path;
    added.Enabled = enabled;
    added.Status = RS_OK;
    if (!AdditionalResponse.Add(added)) return RS_ReadError;
    AdjustAdditionalSpectralResponse(int(AdditionalResponse.GetSize()) - 1, true);
    return RS_OK;
}

bool CRCalFile::RemoveAdditionalSpectralResponse(int index) {
    if (index < 0 || index >= int(AdditionalResponse.GetSize())) return false;
    AdditionalResponse.Remove(uint32_t(index));
    UpdateCalPage(-1);
    return true;
}

int CAdditionalResponses::getCount() const {
    return int(file_->AdditionalResponse.GetSize());
}

EResponseStatus CAdditionalResponses::Add(char16_t const *path, bool enabled) {
    return file_->AddAdditionalSpectralResponse(path, enabled);
}

bool CAdditionalResponses::Remove(int index) {
    return file_->RemoveAdditionalSpectralResponse(index);
}

bool CAdditionalResponse::getEnabled() const {
    CRCalFile::RESPONCE const *r = file_->ReachResponse(index_);
    return r && r->Enabled;
}

void CAdditionalResponse::setEnabled(bool enabled) {
    CRCalFile::RESPONCE *r = file_->ReachResponse(index_);
    if (!r) return;
    r->Enabled = enabled;
    // Read anew from the file each time.
    file_->LoadAdditionalSpectralResponse(index_, true);
}

char16_t const *CAdditionalResponse::getFile() const {
    CRCalFile::RESPONCE const *r = file_->ReachResponse(index_);
    char16_t const *path = r ? r->File.GetTChar() : nullptr;
    return path ? path : u"";
}

void CAdditionalResponse::setFile(char16_t const *path) {
    CRCalFile::RESPONCE *r = file_->ReachResponse(index_);
    if (!r) return;
    r->File = path;
    file_->LoadAdditionalSpectralResponse(index_, true);
}

EResponseStatus CAdditionalResponse::getStatus() const {
    CRCalFile::RESPONCE const *r = file_->ReachResponse(index_);
    return r ? r->Status : RS_FileNotFound;
}

} // namespace qv
