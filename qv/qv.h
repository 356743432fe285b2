// Every public header of libqv, for programs that want the whole library.
#pragma once

// Core types: text runtime, strings, containers, values, time, singletons, log.
#include "qv/core/Export.h"
#include "qv/core/WideChar.h"
#include "qv/core/WideFormat.h"
#include "qv/core/WideScan.h"
#include "qv/core/CodePage.h"
#include "qv/core/DebugOutput.h"
#include "qv/core/String.h"
#include "qv/core/StringFunctions.h"
#include "qv/core/Array.h"
#include "qv/core/Stack.h"
#include "qv/core/Queue.h"
#include "qv/core/Nullable.h"
#include "qv/core/Guid.h"
#include "qv/core/FloatToInt.h"
#include "qv/core/Conversions.h"
#include "qv/core/Variant.h"
#include "qv/core/PropertyArray.h"
#include "qv/core/FileTime.h"
#include "qv/core/DateTime.h"
#include "qv/core/Singleton.h"
#include "qv/core/Exception.h"
#include "qv/core/LogEntry.h"
#include "qv/core/Log.h"
#include "qv/core/ResourceId.h"
#include "qv/core/ResourceTable.h"
#include "qv/core/ModuleResources.h"
#include "qv/core/LanguageTags.h"
#include "qv/core/Locale.h"

// Locks.
#include "qv/threads/CriticalSection.h"
#include "qv/threads/Mutex.h"
#include "qv/threads/Event.h"
#include "qv/threads/Semaphore.h"
#include "qv/threads/RWLock.h"
#include "qv/threads/MultiLock.h"
#include "qv/threads/AutoLock.h"

// Calls between threads: invokables, invokers, events, threads, timers.
#include "qv/threads/Invokable.h"
#include "qv/threads/Invoker.h"
#include "qv/threads/Events.h"
#include "qv/threads/DirectInvoker.h"
#include "qv/threads/MessageQueueInvoker.h"
#include "qv/threads/Invokers.h"
#include "qv/threads/Thread.h"
#include "qv/threads/Timer.h"
#include "qv/threads/Callback.h"
#include "qv/threads/COMScope.h"
#include "qv/threads/SharedHandle.h"
#include "qv/threads/SharedMemory.h"
#include "qv/threads/LockedMemory.h"
#include "qv/threads/MainThread.h"

// Files.
#include "qv/files/IFile.h"
#include "qv/files/File.h"
#include "qv/files/MemFile.h"
#include "qv/files/BoundedFile.h"
#include "qv/files/GZFile.h"
#include "qv/files/CRC.h"
#include "qv/files/CRCFile.h"
#include "qv/files/ResourceFile.h"

// File systems.
#include "qv/filesystems/PathAlgebra.h"
#include "qv/filesystems/Path.h"
#include "qv/filesystems/IFileSystem.h"
#include "qv/filesystems/FileSystem.h"
#include "qv/filesystems/DiskFileSystem.h"
#include "qv/filesystems/CWDFixer.h"
#include "qv/filesystems/DirectoryMonitor.h"
#include "qv/filesystems/DiskDirectoryMonitor.h"

// Tagged formats.
#include "qv/formats/tagged/SAFFile.h"

// Numerics.
#include "qv/numerics/TypedData.h"
#include "qv/numerics/TypedArray.h"
#include "qv/numerics/PixelType.h"
#include "qv/numerics/Math.h"
#include "qv/numerics/Curve.h"
#include "qv/numerics/CurveFiles.h"
#include "qv/numerics/Planck.h"
#include "qv/numerics/Fits.h"
#include "qv/numerics/LMFit.h"

// Radiometric calibration.
#include "qv/calibration/RCalFile.h"
#include "qv/calibration/CalFacades.h"

// MODTRAN: tape5 decks, tape7 tables, running the tool.
#include "qv/modtran/ModtranEnums.h"
#include "qv/modtran/ModtranRun.h"
#include "qv/modtran/ModtranTape5File.h"
#include "qv/modtran/ModtranTape7File.h"
#include "qv/modtran/RunModtran.h"
