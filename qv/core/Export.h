/// @file
/// QV_API marks what libqv.so exports; everything else stays hidden.
#pragma once

#define QV_API __attribute__((visibility("default")))
