#pragma once

#include <maya/MPxDrawOverride.h>
#include <maya/MUserData.h>

#include "uv/markPicture.h"

/// The marks of a UV selection locator as they were when it was last prepared.
class uvLocatorData : public MUserData {
 public:
  uvLocatorData() : MUserData(false) {}
  ~uvLocatorData() override;
  meshMarks marks;
};

/// Draws UV selection locators in Viewport 2.0, as they draw themselves in the legacy viewport. The
/// marks are placed in the world, wherever the locator is.
class UVLocatorDrawOverride : public MHWRender::MPxDrawOverride {
 public:
  static MHWRender::MPxDrawOverride* creator(const MObject& node);
  explicit UVLocatorDrawOverride(const MObject& node);
  ~UVLocatorDrawOverride() override;

  bool hasUIDrawables() const override { return true; }
  bool isBounded(const MDagPath&, const MDagPath&) const override { return true; }
  MBoundingBox boundingBox(const MDagPath& path, const MDagPath& camera) const override;
  MMatrix transform(const MDagPath& path, const MDagPath& camera) const override;
  bool disableInternalBoundingBoxDraw() const override { return true; }
  MUserData* prepareForDraw(const MDagPath& path, const MDagPath& camera,
                            const MHWRender::MFrameContext& frame, MUserData* old) override;
  void addUIDrawables(const MDagPath& path, MHWRender::MUIDrawManager& manager,
                      const MHWRender::MFrameContext& frame, const MUserData* data) override;
};
