/// @file
/// The process's invokers, one instance each inside libqv.so.
///
/// directInvoker runs calls at once on the caller's thread. messageQueueInvoker
/// is built when libqv.so loads, so its calls run in the message loop of the
/// thread that loaded the library (normally the main thread, which has to pump
/// its queue for them to run; see qv/platform/MessageQueue.h). threadInvoker
/// starts its worker thread on first use. All three live until the process
/// exits; the worker then stops and calls still queued are dropped.
#pragma once

#include "qv/core/Export.h"
#include "qv/core/Singleton.h"
#include "qv/threads/DirectInvoker.h"
#include "qv/threads/MessageQueueInvoker.h"

namespace qv {

extern template class TSingletonPtr<CDirectInvoker>;
extern QV_API TSingletonPtr<CDirectInvoker> directInvoker; ///< runs calls at once on the caller's thread

extern template class TSingletonPtr<CMessageQueueInvoker, 1, true>;
extern QV_API TSingletonPtr<CMessageQueueInvoker, 1, true> messageQueueInvoker; ///< runs calls on the thread that loaded libqv.so

extern template class TSingletonPtr<CInvokerThread>;
extern QV_API TSingletonPtr<CInvokerThread> threadInvoker; ///< runs calls on a worker thread of its own

} // namespace qv
