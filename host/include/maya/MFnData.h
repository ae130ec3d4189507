#pragma once

#include <maya/MFnBase.h>
#include <maya/MTypes.h>

/// Works on data objects: the values of typed attributes.
class MFnData : public MFnBase {
 public:
  enum Type {
    kInvalid,
    kNumeric,
    kPlugin,
    kPluginGeometry,
    kString,
    kMatrix,
    kStringArray,
    kDoubleArray,
    kIntArray,
    kPointArray,
    kVectorArray,
    kComponentList,
    kMesh,
    kLattice,
    kNurbsCurve,
    kNurbsSurface,
    kSphere,
    kDynArrayAttrs,
    kDynSweptGeometry,
    kSubdSurface,
    kNObject,
    kNId,
    kAny,
    kFloatArray,
    kMatrixArray,
    kUInt64Array,
    kFalloffFunction,
    kInt64Array,
    kLast
  };

  MFnData() = default;
  MFnData(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFn::Type type() const override { return MFn::kData; }
};
