// Load and Save of a whole deck, from an IFile or a disk path.
#include "qv/files/File.h"
#include "qv/filesystems/AtomicSave.h"
#include "qv/modtran/ModtranTape5File.h"

namespace qv {

bool CModtranTape5File::Load(IFile &file) {
    runs.Empty();
    current = -1;
    while (true) {
        if (nRuns() == kModtranMaxRuns) {
            SetLastError("More than %d runs in the file.", kModtranMaxRuns);
            return false;
        }
        int run = AddRun(-1);
        if (run < 0 || !UseRun(run) || !LoadRun(file, 0)) return false;
        if (runs[uint32_t(run)].repeat == 0) return true;
    }
}

bool CModtranTape5File::Load(char16_t const *path) {
    CFile file;
    if (!file.Open(path, 0x02 | 0x10 | 0x100 | 0x200)) {
        SetLastError("The file %s could not be opened.", CString(path).GetUTF8());
        return false;
    }
    return Load(file);
}

bool CModtranTape5File::Save(char16_t const *path) {
    CAtomicSave save(nullptr, path);
    if (!save.File()) {
        SetLastError("The file %s could not be opened.", CString(path).GetUTF8());
        return false;
    }
    if (!Save(*save.File())) return false; // the old file stays; the text says what failed
    if (save.Commit()) return true;
    SetLastError("The file %s could not be replaced.", CString(path).GetUTF8());
    return false;
}

} // namespace qv
