#include "qv/core/Exception.h"

#include <utility>

namespace qv {

CException::CException(CString message, CException const *inner) : messageText(std::move(message)), inner(inner) {}

CException::CException(CException const &other) = default;

CException::~CException() = default;

CString CException::message() const {
    return messageText;
}

CException const *CException::innerException() const {
    return inner;
}

} // namespace qv
