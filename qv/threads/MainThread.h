/// @file
/// Which thread is the application's main UI thread.
///
/// The first call of either function, from any thread, makes the calling
/// thread the main UI thread for the rest of the process: an application
/// calls one of them early from its UI thread. qvInMainUIThread then says
/// whether the calling thread is that thread; qvNotInMainUIThread is its
/// negation. Thread-safe: when two threads race into the first call, one of
/// them wins and both answers agree with it.
#pragma once

#include "qv/core/Export.h"

namespace qv {

QV_API bool qvInMainUIThread();    ///< whether the calling thread is the main UI thread
QV_API bool qvNotInMainUIThread(); ///< the negation of qvInMainUIThread

} // namespace qv
