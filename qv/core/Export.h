/// @file
/// QV_API marks what libqv.so exports; everything else stays hidden.
#pragma once

/// Default visibility: the declaration is exported from libqv.so.
#define QV_API __attribute__((visibility("default")))
