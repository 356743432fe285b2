#include "qv/threads/Invokers.h"

namespace qv {

template class TSingletonPtr<CDirectInvoker>;
TSingletonPtr<CDirectInvoker> directInvoker;

template class TSingletonPtr<CMessageQueueInvoker, 1, true>;
TSingletonPtr<CMessageQueueInvoker, 1, true> messageQueueInvoker;

template class TSingletonPtr<CInvokerThread>;
TSingletonPtr<CInvokerThread> threadInvoker;

} // namespace qv
