/// @file
/// The text forms of the log: the time prefix of a line, CR LF lines in UTF-8,
/// and the reading of "%%" in an entry's text. Internal to libqv and its tests.
#pragma once

#include <string>

#include "qv/core/DateTime.h"
#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

/// "[%m-%D-%Y %H:%M:%S]: " of time, e.g. "[02-09-2024 07:05:03]: ".
QV_API CString FormatLogTimePrefix(CDateTime const &time);
/// The prefix of the present UTC time.
CString LogTimePrefixNow();
/// text in UTF-8, each lone CR and each lone LF written as CR LF.
QV_API std::string ToLogBytes(CString const &text);
/// An entry's text as the log prints it: "%%" becomes "%", the rest stands.
QV_API CString ResolvePercentEscapes(CString const &text);

} // namespace qv
