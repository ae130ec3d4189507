#pragma once

#include <maya/MColor.h>
#include <maya/MPointArray.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MUserData.h>

/// What a quad draw locator showed when it was last prepared.
class quadDrawLocatorData : public MUserData {
 public:
  quadDrawLocatorData() : MUserData(false) {}
  ~quadDrawLocatorData() override;

  /// The entries of a triangle list for a quad p0 p1 p2 p3: its two triangles, then p0 and p2
  /// again, which make no triangle. Empty for anything but four points.
  static MPointArray triangleList(const MPointArray& quad);

  bool showPoints = true, showQuad = true;
  MPointArray points;     ///< loose ones, world space
  MPointArray triangles;  ///< of the preview, world space
  MColor color;           ///< what the host would draw the node in
};

/// Draws quad draw locators in Viewport 2.0, as they draw themselves in the legacy viewport.
class quadDrawLocatorDrawOverride : public MHWRender::MPxDrawOverride {
 public:
  static MHWRender::MPxDrawOverride* creator(const MObject& node);
  explicit quadDrawLocatorDrawOverride(const MObject& node);
  ~quadDrawLocatorDrawOverride() override;

  MHWRender::DrawAPI supportedDrawAPIs() const override;
  bool isBounded(const MDagPath&, const MDagPath&) const override { return true; }
  MBoundingBox boundingBox(const MDagPath& path, const MDagPath& camera) const override;
  bool disableInternalBoundingBoxDraw() const override { return false; }
  bool hasUIDrawables() const override { return true; }
  MUserData* prepareForDraw(const MDagPath& path, const MDagPath& camera,
                            const MHWRender::MFrameContext& frame, MUserData* old) override;
  void addUIDrawables(const MDagPath& path, MHWRender::MUIDrawManager& manager,
                      const MHWRender::MFrameContext& frame, const MUserData* data) override;
};
