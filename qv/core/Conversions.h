/// @file
/// The conversion classes, all in one include: CBool, CInt8 ... CUInt64,
/// CIntPtr, CUIntPtr, CFlt32, CFlt64, CGUID, and FmtFloat.
#pragma once

#include "qv/core/BoolConversions.h"
#include "qv/core/FloatConversions.h"
#include "qv/core/FmtFloat.h"
#include "qv/core/GuidText.h"
#include "qv/core/IntegerConversions.h"
