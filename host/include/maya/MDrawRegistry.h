#pragma once

#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

namespace MHWRender {

class MPxDrawOverride;
class MPxGeometryOverride;

/// Registers what draws the nodes of a draw classification.
class MDrawRegistry {
 public:
  typedef MPxDrawOverride* (*DrawOverrideCreator)(const MObject& object);

  static MStatus registerDrawOverrideCreator(const MString& drawClassification,
                                             const MString& registrantId,
                                             DrawOverrideCreator creator);
  static MStatus deregisterDrawOverrideCreator(const MString& drawClassification,
                                               const MString& registrantId);

  typedef MPxGeometryOverride* (*GeometryOverrideCreator)(const MObject& object);

  static MStatus registerGeometryOverrideCreator(const MString& drawClassification,
                                                 const MString& registrantId,
                                                 GeometryOverrideCreator creator);
  static MStatus deregisterGeometryOverrideCreator(const MString& drawClassification,
                                                   const MString& registrantId);
};

}  // namespace MHWRender
