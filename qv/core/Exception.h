/// @file
/// CException: a message with an optional inner exception, for callers that
/// want to report a chain of causes. The library never constructs or throws it.
///
/// Ownership: the message is a shared CString; inner is not owned and must
/// outlive the exception (a copy points to the same inner one).
/// Threads: a plain value; one object belongs to one thread at a time.
#pragma once

#include "qv/core/Export.h"
#include "qv/core/String.h"

namespace qv {

/// @copydoc Exception.h
class QV_API CException {
public:
    /// inner (may be null) is not owned and must outlive the exception.
    CException(CString message, CException const *inner);
    CException(CException const &other); ///< shares the message and the inner pointer
    ~CException();

    CString message() const;                   ///< the message as given
    CException const *innerException() const;  ///< the inner exception, or null

private:
    CString messageText;
    CException const *inner;
};

} // namespace qv
