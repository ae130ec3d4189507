#include "uv/uvMessages.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

MStatus failWith(const MString& text) {
  MGlobal::displayError(text);
  return MS::kFailure;
}

MStatus failWith(const char* text) {
  return failWith(MString(text));
}
