#pragma once

#include "shared/tool/locatorOverride.h"
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
class UVLocatorDrawOverride : public locatorOverride<uvLocatorData> {
 public:
  static MHWRender::MPxDrawOverride* creator(const MObject& node);
  explicit UVLocatorDrawOverride(const MObject& node) : locatorOverride(node) {}
  ~UVLocatorDrawOverride() override;
  MBoundingBox boundingBox(const MDagPath& path, const MDagPath& camera) const override;
  MMatrix transform(const MDagPath& path, const MDagPath& camera) const override;

 private:
  void read(const MDagPath& path, uvLocatorData& data) const override;
  void draw(const uvLocatorData& data, MHWRender::MUIDrawManager& manager) const override;
};
