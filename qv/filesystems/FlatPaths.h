// The full-path and working-directory rules that the flat and the merge file
// systems share: a path that begins with '/' stands as it is, any other is
// expanded against the working directory with '/'. Internal to libqv.
#pragma once

namespace qv {

class IFileSystem;

// The full path of path against workingDirectory into out (size units with
// terminator). False if out is too small or an argument is null.
bool FlatFullPath(char16_t const *workingDirectory, char16_t *out, char16_t const *path, int size);
// Sets workingDirectory (PathBufferSize units) to the full path of path with
// a trailing '/', if fs says path is a directory.
bool SetFlatWorkingDirectory(IFileSystem &fs, char16_t *workingDirectory, char16_t const *path);
// Copies workingDirectory out; false if it does not fit.
bool GetFlatWorkingDirectory(char16_t const *workingDirectory, char16_t *out, int size);

} // namespace qv
