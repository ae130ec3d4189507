#pragma once

#include <maya/MFloatMatrix.h>
#include <maya/MFnDagNode.h>
#include <maya/MPoint.h>
#include <maya/MSpace.h>
#include <maya/MTypes.h>
#include <maya/MVector.h>

/// Works on cameras.
class MFnCamera : public MFnDagNode {
 public:
  enum FilmFit { kFillFilmFit, kHorizontalFilmFit, kVerticalFilmFit, kOverscanFilmFit, kInvalid };
  enum RollOrder { kRotateTranslate, kTranslateRotate };

  MFnCamera() = default;
  MFnCamera(const MObject& object, MStatus* status = nullptr) { attach(object, status); }
  MFnCamera(const MDagPath& path, MStatus* status = nullptr) { attach(path, status); }
  MFn::Type type() const override { return MFn::kCamera; }

  using MFnDagNode::create;
  MObject create(MStatus* status = nullptr);
  MObject create(const MObject& parent, MStatus* status = nullptr);
  MPoint eyePoint(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MVector viewDirection(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MVector upDirection(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MVector rightDirection(MSpace::Space space = MSpace::kObject, MStatus* status = nullptr) const;
  MPoint centerOfInterestPoint(MSpace::Space space = MSpace::kObject,
                               MStatus* status = nullptr) const;
  double centerOfInterest(MStatus* status = nullptr) const;
  MStatus setCenterOfInterest(double dist);
  MStatus setCenterOfInterestPoint(const MPoint& point, MSpace::Space space = MSpace::kObject);
  MStatus set(const MPoint& wsEyeLocation, const MVector& wsViewDirection,
              const MVector& wsUpDirection, double horizFieldOfView, double aspectRatio);

  bool isOrtho(MStatus* status = nullptr) const;
  MStatus setIsOrtho(bool orthoState);
  MStatus setIsOrtho(bool orthoState, double useDist);
  double orthoWidth(MStatus* status = nullptr) const;
  MStatus setOrthoWidth(double orthoWidth);
  /// Fields of view are in radians, lengths of lens and film in millimetres and inches.
  double horizontalFieldOfView(MStatus* status = nullptr) const;
  double verticalFieldOfView(MStatus* status = nullptr) const;
  MStatus setHorizontalFieldOfView(double fov);
  MStatus setVerticalFieldOfView(double fov);
  double focalLength(MStatus* status = nullptr) const;
  MStatus setFocalLength(double focalLength);
  double horizontalFilmAperture(MStatus* status = nullptr) const;
  double verticalFilmAperture(MStatus* status = nullptr) const;
  MStatus setHorizontalFilmAperture(double aperture);
  MStatus setVerticalFilmAperture(double aperture);
  double horizontalFilmOffset(MStatus* status = nullptr) const;
  double verticalFilmOffset(MStatus* status = nullptr) const;
  FilmFit filmFit(MStatus* status = nullptr) const;
  MStatus setFilmFit(FilmFit filmFit);
  double aspectRatio(MStatus* status = nullptr) const;
  MStatus setAspectRatio(double aspectRatio);
  double lensSqueezeRatio(MStatus* status = nullptr) const;
  double overscan(MStatus* status = nullptr) const;
  MStatus setOverscan(double overscan);
  double cameraScale(MStatus* status = nullptr) const;
  MStatus setCameraScale(double scale);
  double nearClippingPlane(MStatus* status = nullptr) const;
  double farClippingPlane(MStatus* status = nullptr) const;
  MStatus setNearClippingPlane(double dist);
  MStatus setFarClippingPlane(double dist);
  MStatus getViewingFrustum(double windowAspect, double& left, double& right, double& bottom,
                            double& top, bool applyOverscan = false, bool applySqueeze = false,
                            bool applyPanZoom = false) const;
  MFloatMatrix projectionMatrix(MStatus* status = nullptr) const;
  double tumblePivotDistance(MStatus* status = nullptr) const;
  MPoint tumblePivot(MStatus* status = nullptr) const;
  MStatus setTumblePivot(const MPoint& point) const;
};
