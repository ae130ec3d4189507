#pragma once

#include <maya/MStatus.h>

class MString;

/// Shows an error and returns failure, for `return failWith(...)`.
MStatus failWith(const MString& text);
MStatus failWith(const char* text);
