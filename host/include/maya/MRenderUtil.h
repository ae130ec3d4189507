#pragma once

#include <maya/MFloatMatrix.h>
#include <maya/MFloatVector.h>
#include <maya/MString.h>
#include <maya/MTypes.h>

/// Helpers for shading: noise, and the state of the renderer.
class MRenderUtil {
 public:
  enum MRenderState {
    kNotRendering,
    kBatchRender,
    kInteractiveRender,
    kIprRender,
    kHardwareRender
  };

  /// One of a table of random numbers from 0 to 1.
  static float valueInNoiseTable(int index);
  // Gradient noise from -1 to 1, the same for the same place.
  static float noise1(float x);
  static float noise2(float x, float y);
  static float noise3(float x, float y, float z);
  static float noise4(float x, float y, float z, float time);
  static MRenderState mayaRenderState();
  static bool generatingIprFile();
  static bool inCurrentRenderLayer(const class MDagPath& objectPath, MStatus* status = nullptr);
  static MString mainBeautyPassName();
};
