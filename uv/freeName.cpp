#include "uv/freeName.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

MString freeName(const char* stem) {
  MString name(stem);
  for (int number = 1;; ++number) {
    int isTaken = 0;
    MGlobal::executeCommand("objExists " + name, isTaken, false, false);
    if (isTaken == 0) return name;
    name = MString(stem) + number;
  }
}
