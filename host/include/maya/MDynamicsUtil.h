#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/MVectorArray.h>

/// Textures that drive attributes of emitters and fields: any attribute that a 2d texture drives.
class MDynamicsUtil {
 public:
  static bool hasValidDynamics2dTexture(const MObject& node, const MObject& attribute,
                                        MStatus* status = nullptr);
  static MStatus evalDynamics2dTexture(const MObject& node, const MObject& attribute,
                                       MDoubleArray& uCoords, MDoubleArray& vCoords,
                                       MVectorArray* resultColors, MDoubleArray* resultAlphas);
};
