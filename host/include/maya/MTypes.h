#pragma once

// Authors count on these being there.
#include <assert.h>
#include <math.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <cstddef>
#include <cstdint>

#define MAYA_API_VERSION 201400
#define MAYA_APP_VERSION 2014

typedef unsigned int uint;
typedef unsigned char uchar;
typedef std::int64_t MInt64;
typedef std::uint64_t MUint64;
typedef std::intptr_t MIntPtrSz;
typedef std::uintptr_t MUintPtrSz;

typedef short short2[2];
typedef short short3[3];
typedef int int2[2];
typedef int int3[3];
typedef long long2[2];
typedef long long3[3];
typedef float float2[2];
typedef float float3[3];
typedef double double2[2];
typedef double double3[3];
typedef double double4[4];

/// The windowing system's handle of a window.
typedef void* MNativeWindowHdl;
/// Which device a context's event came from.
typedef int MDeviceNumber;

#ifdef _WIN32
#define PLUGIN_EXPORT __declspec(dllexport)
#else
#define PLUGIN_EXPORT __attribute__((visibility("default")))
#endif
