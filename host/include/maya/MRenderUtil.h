#pragma once

#include <maya/MFloatArray.h>
#include <maya/MFloatMatrix.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFloatVectorArray.h>
#include <maya/MStatus.h>
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
  /// Evaluates a texture or utility network at places of a surface: `shadingNodeName` is a plug
  /// ("file1.outColor") or a node, whose outColor is meant then. What decides are the UVs; points,
  /// normals, filter sizes and the camera are not looked at, since the host's textures lie in UV
  /// space. Transparencies are those of a node with outTransparency, else 0. Shaders, which need
  /// light, are refused.
  static MStatus sampleShadingNetwork(MString shadingNodeName, int numSamples, bool useShadowMaps,
                                      bool reuseMaps, MFloatMatrix& cameraMatrix,
                                      MFloatPointArray* points, MFloatArray* uCoords,
                                      MFloatArray* vCoords, MFloatVectorArray* normals,
                                      MFloatPointArray* refPoints, MFloatVectorArray* tangentUs,
                                      MFloatVectorArray* tangentVs, MFloatArray* filterSizes,
                                      MFloatVectorArray& resultColors,
                                      MFloatVectorArray& resultTransparencies);
  static MRenderState mayaRenderState();
  static bool generatingIprFile();
  static bool inCurrentRenderLayer(const class MDagPath& objectPath, MStatus* status = nullptr);
  static MString mainBeautyPassName();
};
