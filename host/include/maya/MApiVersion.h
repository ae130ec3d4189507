#pragma once

#include <maya/MTypes.h>

#define MAYA_API_VERSION_TEXT_OF_(number) #number
#define MAYA_API_VERSION_TEXT_(number) MAYA_API_VERSION_TEXT_OF_(number)

// The loader reads this symbol to learn which API a plug-in was built for. It is weak, so several
// sources of one plug-in may include the header.
#ifndef MNoVersionString
extern __attribute__((weak)) PLUGIN_EXPORT const char MApiVersion[];
const char MApiVersion[] = MAYA_API_VERSION_TEXT_(MAYA_API_VERSION);
#endif
