/// @file
/// Line and token handling shared by the curve file readers (internal header
/// of qv/numerics). Locale-free: white space is the ASCII set of the "C"
/// locale.
#pragma once

#include <cstdint>
#include <memory>

#include "qv/core/Array.h"
#include "qv/files/IFile.h"
#include "qv/filesystems/IFileSystem.h"

namespace qv::numerics_detail {

constexpr int kCurveLineBytes = 512; ///< the longest line GetLine hands over

/// Skips leading white space, cuts trailing white space in place.
char *TrimLine(char *line);

/// The next token of *cursor separated by any of separators (runs of them
/// count as one, as strtok has it); null when none is left. Advances *cursor.
char *NextToken(char **cursor, char const *separators);

/// Opens path for reading through fs (null: the disk); null if it does not open.
std::unique_ptr<IFile> OpenCurveFile(IFileSystem *fs, char16_t const *path);

/// Lets an array that is filled item by item grow in large steps, and gives it
/// its own growth rate back afterwards.
class CBulkGrowth {
public:
    explicit CBulkGrowth(TArray<double> &array) : array_(array), rate_(array.SetGrowthRate(4096)) {} ///< growth rate 4096 until destruction
    ~CBulkGrowth() { array_.SetGrowthRate(rate_); }
    CBulkGrowth(CBulkGrowth const &) = delete;
    CBulkGrowth &operator=(CBulkGrowth const &) = delete;

private:
    TArray<double> &array_;
    uint16_t rate_;
};

} // namespace qv::numerics_detail
