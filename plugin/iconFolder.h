#pragma once

#include <maya/MString.h>

/// The folder of a data file relative to where the module was loaded from: the load path's parent
/// with `below` after it ("data/icons"). Empty for an empty path.
MString dataFolder(const MString& loadPath, const char* below);

/// Has the host look for icons in the module's folder, in front of its own ones; once, however
/// often it is called.
void addIconFolder(const MString& loadPath);
