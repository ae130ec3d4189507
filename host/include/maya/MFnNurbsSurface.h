#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MFnDagNode.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSpace.h>
#include <maya/MTesselationParams.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

#ifndef kMFnNurbsEpsilon
#define kMFnNurbsEpsilon 1e-3
#endif

/// Works on curved surfaces: on a surface node, an instance of one (through a path), or surface
/// data. Control points are numbered u * numCVsInV() + v.
class MFnNurbsSurface : public MFnDagNode {
 public:
  enum Form { kInvalid, kOpen, kClosed, kPeriodic, kLast };

  MFnNurbsSurface() = default;
  MFnNurbsSurface(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFnNurbsSurface(const MDagPath& path, MStatus* status = nullptr) { attach(path, status); }
  MFn::Type type() const override { return MFn::kNurbsSurface; }

  using MFnDagNode::create;
  /// Makes a surface under a transform, in surface data, or with a new transform.
  MObject create(const MPointArray& controlVertices, const MDoubleArray& uKnotSequences,
                 const MDoubleArray& vKnotSequences, unsigned int degreeInU, unsigned int degreeInV,
                 Form formU, Form formV, bool createRational,
                 MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  MObject copy(const MObject& source, MObject parentOrOwner = MObject::kNullObj,
               MStatus* status = nullptr);

  Form formInU(MStatus* status = nullptr) const;
  Form formInV(MStatus* status = nullptr) const;
  int degreeU(MStatus* status = nullptr) const;
  int degreeV(MStatus* status = nullptr) const;
  int numCVsInU(MStatus* status = nullptr) const;
  int numCVsInV(MStatus* status = nullptr) const;
  int numSpansInU(MStatus* status = nullptr) const;
  int numSpansInV(MStatus* status = nullptr) const;
  int numKnotsInU(MStatus* status = nullptr) const;
  int numKnotsInV(MStatus* status = nullptr) const;
  int numPatches(MStatus* status = nullptr) const;
  int numPatchesInU(MStatus* status = nullptr) const;
  int numPatchesInV(MStatus* status = nullptr) const;
  bool isBezier(MStatus* status = nullptr) const;
  bool isUniform(MStatus* status = nullptr) const;
  /// Surfaces of the host have no trims.
  bool isTrimmedSurface(MStatus* status = nullptr) const;
  bool isFlipNorm(MStatus* status = nullptr) const;
  bool hasHistoryOnCreate(MStatus* status = nullptr) const;

  MStatus getKnotsInU(MDoubleArray& array) const;
  MStatus getKnotsInV(MDoubleArray& array) const;
  MStatus setKnotsInU(const MDoubleArray& array, unsigned int startIndex, unsigned int endIndex);
  MStatus setKnotsInV(const MDoubleArray& array, unsigned int startIndex, unsigned int endIndex);
  double knotInU(unsigned int index, MStatus* status = nullptr) const;
  double knotInV(unsigned int index, MStatus* status = nullptr) const;
  MStatus setKnotInU(unsigned int index, double param);
  MStatus setKnotInV(unsigned int index, double param);
  bool isKnotU(double param, MStatus* status = nullptr) const;
  bool isKnotV(double param, MStatus* status = nullptr) const;
  MStatus getKnotDomain(double& startU, double& endU, double& startV, double& endV) const;

  MStatus getCVs(MPointArray& array, MSpace::Space space = MSpace::kObject) const;
  MStatus setCVs(const MPointArray& array, MSpace::Space space = MSpace::kObject);
  MStatus getCV(unsigned int indexU, unsigned int indexV, MPoint& point,
                MSpace::Space space = MSpace::kObject) const;
  MStatus setCV(unsigned int indexU, unsigned int indexV, const MPoint& point,
                MSpace::Space space = MSpace::kObject);

  bool isParamOnSurface(double paramU, double paramV, MStatus* status = nullptr) const;
  MStatus getPointAtParam(double paramU, double paramV, MPoint& point,
                          MSpace::Space space = MSpace::kObject) const;
  MStatus getParamAtPoint(const MPoint& point, double& paramU, double& paramV,
                          MSpace::Space space = MSpace::kObject) const;
  MStatus getParamAtPoint(const MPoint& point, bool ignoreTrimBoundaries, double& paramU,
                          double& paramV, MSpace::Space space = MSpace::kObject,
                          double tolerance = kMFnNurbsEpsilon) const;
  bool isPointOnSurface(const MPoint& point, double tolerance = kMFnNurbsEpsilon,
                        MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MVector normal(double paramU, double paramV, MSpace::Space space = MSpace::kObject,
                 MStatus* status = nullptr) const;
  /// Unit tangents.
  MStatus getTangents(double paramU, double paramV, MVector& vectorInU, MVector& vectorInV,
                      MSpace::Space space = MSpace::kObject) const;
  MStatus getDerivativesAtParm(double paramU, double paramV, MPoint& pos, MVector& dU, MVector& dV,
                               MSpace::Space space, MVector* dUU = nullptr, MVector* dVV = nullptr,
                               MVector* dUV = nullptr) const;
  MPoint closestPoint(const MPoint& toThisPoint, double* paramU = nullptr, double* paramV = nullptr,
                      bool ignoreTrimBoundaries = false, double tolerance = kMFnNurbsEpsilon,
                      MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  /// From the parameters given in `paramU` and `paramV` when they are to be the start.
  MPoint closestPoint(const MPoint& toThisPoint, bool paramAsStart, double* paramU, double* paramV,
                      bool ignoreTrimBoundaries = false, double tolerance = kMFnNurbsEpsilon,
                      MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  double distanceToPoint(const MPoint& point, MSpace::Space space = MSpace::kObject,
                         MStatus* status = nullptr) const;
  double area(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  /// Where a ray meets the surface first.
  bool intersect(const MPoint& rayStartingPoint, const MVector& alongThisDirection, double& u,
                 double& v, MPoint& point, double tolerance = kMFnNurbsEpsilon,
                 MSpace::Space space = MSpace::kObject, bool calculateDistance = false,
                 double* distance = nullptr, bool calculateExactHit = false,
                 bool* wasExactHit = nullptr, MStatus* status = nullptr) const;
  /// All places where it does, the nearest first.
  bool intersect(const MPoint& rayStartingPoint, const MVector& alongThisDirection,
                 MDoubleArray& uArray, MDoubleArray& vArray, MPointArray& points,
                 double tolerance = kMFnNurbsEpsilon, MSpace::Space space = MSpace::kObject,
                 bool calculateDistance = false, MDoubleArray* distances = nullptr,
                 bool calculateExactHit = false, bool* wasExactHit = nullptr,
                 MStatus* status = nullptr) const;

  /// Makes a mesh under a transform, in mesh data, or with a new transform.
  MObject tesselate(MTesselationParams& parms = MTesselationParams::fsDefaultTesselationParams,
                    MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  MStatus updateSurface();
};
