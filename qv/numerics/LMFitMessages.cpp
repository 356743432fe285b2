// What the Levenberg-Marquardt info codes mean, as the library tells it.
#include "qv/numerics/LMFit.h"

namespace qv {

namespace {

char16_t const *const kMessages[] = {
    u"Improper input: nothing free, fewer samples than free parameters, a call limit below 1, or no memory.",
    u"Converged: the sum of squares cannot be reduced by more than the relative tolerance.",
    u"Converged: the parameters cannot change by more than the relative tolerance.",
    u"Converged: both the sum of squares and the parameters are within the relative tolerance.",
    u"Stopped: the residuals are orthogonal to every column of the Jacobian, within the tolerance.",
    u"Stopped: the model function was called as often as the call limit allows.",
    u"Stopped: the tolerance on the sum of squares is too small to reduce it any further.",
    u"Stopped: the tolerance on the parameters is too small to improve them any further.",
    u"Stopped: the residuals are orthogonal to the Jacobian to machine precision; the tolerance is too small.",
};

} // namespace

char16_t const *GetLMFitMessage(int info) {
    constexpr int kCount = sizeof(kMessages) / sizeof(kMessages[0]);
    if (info < 0 || info >= kCount) return u"Unknown result code of the minimiser.";
    return kMessages[info];
}

} // namespace qv
