#pragma once

#include <maya/MDoubleArray.h>
#include <maya/MFnDagNode.h>
#include <maya/MObject.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>
#include <maya/MSpace.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

#define kMFnNurbsEpsilon 1e-3

/// Works on curves: on a curve node, an instance of one (through a path), or curve data.
class MFnNurbsCurve : public MFnDagNode {
 public:
  enum Form { kInvalid, kOpen, kClosed, kPeriodic, kLast };

  MFnNurbsCurve() = default;
  MFnNurbsCurve(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFnNurbsCurve(const MDagPath& path, MStatus* status = nullptr) { attach(path, status); }
  MFn::Type type() const override { return MFn::kNurbsCurve; }

  using MFnDagNode::create;
  /// Makes a curve under a transform, in curve data, or with a new transform.
  MObject create(const MPointArray& controlVertices, const MDoubleArray& knotSequences,
                 unsigned int degree, Form form, bool create2D, bool createRational,
                 MObject parentOrOwner = MObject::kNullObj, MStatus* status = nullptr);
  MObject createWithEditPoints(const MPointArray& editPoints, unsigned int degree, Form form,
                               bool create2D, bool createRational, bool uniformParam,
                               MObject parentOrOwner = MObject::kNullObj,
                               MStatus* status = nullptr);

  Form form(MStatus* status = nullptr) const;
  int degree(MStatus* status = nullptr) const;
  int numCVs(MStatus* status = nullptr) const;
  int numSpans(MStatus* status = nullptr) const;
  int numKnots(MStatus* status = nullptr) const;
  MStatus getKnotDomain(double& start, double& end) const;
  MStatus getKnots(MDoubleArray& array) const;
  double knot(unsigned int index, MStatus* status = nullptr) const;
  MStatus getCVs(MPointArray& array, MSpace::Space space = MSpace::kObject) const;
  MStatus setCVs(const MPointArray& array, MSpace::Space space = MSpace::kObject);
  MStatus getCV(unsigned int index, MPoint& point, MSpace::Space space = MSpace::kObject) const;
  MStatus setCV(unsigned int index, const MPoint& point, MSpace::Space space = MSpace::kObject);
  bool isParamOnCurve(double param, MStatus* status = nullptr) const;
  MStatus getPointAtParam(double param, MPoint& point, MSpace::Space space = MSpace::kObject) const;
  double getParamAtPoint(const MPoint& point, MSpace::Space space = MSpace::kObject,
                         MStatus* status = nullptr) const;
  MStatus getParamAtPoint(const MPoint& point, double& param,
                          MSpace::Space space = MSpace::kObject) const;
  MStatus getParamAtPoint(const MPoint& point, double& param, double tolerance,
                          MSpace::Space space = MSpace::kObject) const;
  bool isPointOnCurve(const MPoint& point, double tolerance = kMFnNurbsEpsilon,
                      MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MPoint closestPoint(const MPoint& toThisPoint, double* param = nullptr,
                      double tolerance = kMFnNurbsEpsilon, MSpace::Space space = MSpace::kObject,
                      MStatus* status = nullptr) const;
  MPoint closestPoint(const MPoint& toThisPoint, bool paramAsStart, double* param,
                      double tolerance = kMFnNurbsEpsilon, MSpace::Space space = MSpace::kObject,
                      MStatus* status = nullptr) const;
  double distanceToPoint(const MPoint& point, MSpace::Space space = MSpace::kObject,
                         MStatus* status = nullptr) const;
  MVector tangent(double param, MSpace::Space space = MSpace::kObject,
                  MStatus* status = nullptr) const;
  MVector normal(double param, MSpace::Space space = MSpace::kObject,
                 MStatus* status = nullptr) const;
  MStatus getDerivativesAtParm(double param, MPoint& pos, MVector& dU, MSpace::Space space,
                               MVector* dUU = nullptr) const;
  double length(double tolerance = kMFnNurbsEpsilon, MStatus* status = nullptr) const;
  double findParamFromLength(double partLength, MStatus* status = nullptr) const;
  double findLengthFromParam(double param, MStatus* status = nullptr) const;
  double area(double tolerance = kMFnNurbsEpsilon, MStatus* status = nullptr) const;
  MStatus updateCurve();
};
