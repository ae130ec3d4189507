#pragma once

#include <maya/MColor.h>
#include <maya/MDagPath.h>
#include <maya/MHWGeometry.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

namespace MHWRender {

/// How an object is shown, by its selection and display state.
enum DisplayStatus {
  kActive,
  kLive,
  kDormant,
  kInvisible,
  kHilite,
  kTemplate,
  kActiveTemplate,
  kActiveComponent,
  kLead,
  kIntermediateObject,
  kActiveAffected,
  kNoStatus
};

/// Looks up how an object is to be drawn.
class MGeometryUtilities {
 public:
  static DisplayStatus displayStatus(const MDagPath& path, MStatus* status = nullptr);
  static MColor wireframeColor(const MDagPath& path, MStatus* status = nullptr);
};

}  // namespace MHWRender
