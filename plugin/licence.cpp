#include "plugin/licence.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

MStatus takeLicence() {
  MString dataDirectory;
  MGlobal::executeCommand("getDataDirectory_QXMT_Proc", dataDirectory);
  int shouldCheck = 0;
  MGlobal::executeCommand("shouldCheckForUpdatesOnLoad_QXMT_Proc", shouldCheck);
  if (shouldCheck == 1) MGlobal::executeCommand("checkForUpdates_QXMT_Proc");
  return MS::kSuccess;
}

void releaseLicence() {}
