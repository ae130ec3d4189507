#pragma once

#include <maya/MDagPath.h>
#include <maya/MDoubleArray.h>
#include <maya/MMatrix.h>
#include <maya/MPoint.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>
#include <maya/detail/DrawApi.h>
#include <maya/detail/Handle.h>

namespace MHWRender {

/// What is fixed while one frame of a view is drawn: camera, matrices, size, style.
class MFrameContext {
 public:
  enum MatrixType {
    kWorldMtx,
    kWorldTransposeMtx,
    kWorldInverseMtx,
    kWorldTranspInverseMtx,
    kViewMtx,
    kViewTransposeMtx,
    kViewInverseMtx,
    kViewTranspInverseMtx,
    kProjectionMtx,
    kProjectionTranposeMtx,
    kProjectionInverseMtx,
    kProjectionTranspInverseMtx,
    kViewProjMtx,
    kViewProjTranposeMtx,
    kViewProjInverseMtx,
    kViewProjTranspInverseMtx,
    kWorldViewMtx,
    kWorldViewTransposeMtx,
    kWorldViewInverseMtx,
    kWorldViewTranspInverseMtx,
    kWorldViewProjMtx,
    kWorldViewProjTransposeMtx,
    kWorldViewProjInverseMtx,
    kWorldViewProjTranspInverseMtx
  };
  enum TupleType {
    kViewPosition,
    kViewDirection,
    kViewUp,
    kViewRight,
    kViewportPixelSize,
    kViewNearClipValue,
    kViewFarClipValue
  };
  enum DisplayStyle {
    kGouraudShaded = 1 << 0,
    kWireFrame = 1 << 1,
    kBoundingBox = 1 << 2,
    kTextured = 1 << 3,
    kDefaultMaterial = 1 << 4,
    kXrayJoint = 1 << 5,
    kXray = 1 << 6,
    kTwoSidedLighting = 1 << 7,
    kFlatShaded = 1 << 8,
    kShadeActiveOnly = 1 << 9,
    kXrayActiveComponents = 1 << 10,
    kBackfaceCulling = 1 << 11,
    kSmoothWireframe = 1 << 12
  };

  virtual ~MFrameContext();

  MMatrix getMatrix(MatrixType type, MStatus* status = nullptr) const;
  MDoubleArray getTuple(TupleType type, MStatus* status = nullptr) const;
  MDagPath getCurrentCameraPath(MStatus* status = nullptr) const;
  MStatus getViewportDimensions(int& originX, int& originY, int& width, int& height) const;
  unsigned int getDisplayStyle() const;
  /// Returns the pixel of a world-space point; false when it is clipped.
  bool worldToViewport(const MPoint& worldPoint, double& x, double& y,
                       MStatus* status = nullptr) const;
  MStatus viewportToWorld(double x, double y, MPoint& worldPoint, MVector& worldVector) const;

 protected:
  MFrameContext() = default;
  friend struct host::api::Access;
  host::api::Handle handle_;
};

}  // namespace MHWRender
