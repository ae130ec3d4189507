#pragma once

#include <maya/MPxDrawOverride.h>
#include <maya/MUserData.h>

#include "modeling/locatorPicture.h"

/// What a draw locator showed when it was last prepared.
class DrawLocatorData : public MUserData {
 public:
  DrawLocatorData() : MUserData(false) {}
  ~DrawLocatorData() override;
  locatorSets sets;
};

/// Draws draw locators in Viewport 2.0, as they draw themselves in the legacy viewport.
class DrawLocatorDrawOverride : public MHWRender::MPxDrawOverride {
 public:
  static MHWRender::MPxDrawOverride* creator(const MObject& node);
  explicit DrawLocatorDrawOverride(const MObject& node);
  ~DrawLocatorDrawOverride() override;

  bool hasUIDrawables() const override { return true; }
  bool isBounded(const MDagPath&, const MDagPath&) const override { return true; }
  MBoundingBox boundingBox(const MDagPath& path, const MDagPath& camera) const override;
  bool disableInternalBoundingBoxDraw() const override { return true; }
  MUserData* prepareForDraw(const MDagPath& path, const MDagPath& camera,
                            const MHWRender::MFrameContext& frame, MUserData* old) override;
  void addUIDrawables(const MDagPath& path, MHWRender::MUIDrawManager& manager,
                      const MHWRender::MFrameContext& frame, const MUserData* data) override;
};

/// Where a pin locator's pins stood in the world when it was last prepared.
class pinLocatorData : public MUserData {
 public:
  pinLocatorData() : MUserData(false) {}
  ~pinLocatorData() override;
  bool isVisible = false;
  MPointArray points;
};

/// Draws pin locators in Viewport 2.0. The pins are placed in the world, wherever the locator is.
class pinLocatorDrawOverride : public MHWRender::MPxDrawOverride {
 public:
  static MHWRender::MPxDrawOverride* creator(const MObject& node);
  explicit pinLocatorDrawOverride(const MObject& node);
  ~pinLocatorDrawOverride() override;

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
