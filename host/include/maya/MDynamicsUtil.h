#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/MVectorArray.h>

/// Textures on dynamics nodes; the host has none.
class MDynamicsUtil {
 public:
  static bool hasValidDynamics2dTexture(const MObject& node, const MObject& attribute,
                                        MStatus* status = nullptr);
  static MStatus evalDynamics2dTexture(const MObject& node, const MObject& attribute,
                                       MDoubleArray& uCoords, MDoubleArray& vCoords,
                                       MVectorArray* resultColors, MDoubleArray* resultAlphas);
};
