/// @file
/// SNameValuePair: one free name/value text pair, as lists of tags hold them.
/// A plain record; the strings share their text by reference count.
#pragma once

#include "qv/core/String.h"

namespace qv {

/// @copydoc NameValuePair.h
struct SNameValuePair {
    CString Name;  ///< the name
    CString Value; ///< its text
};

} // namespace qv
