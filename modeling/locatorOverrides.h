#pragma once

#include "modeling/locatorPicture.h"
#include "shared/tool/locatorOverride.h"

/// What a draw locator showed when it was last prepared.
class DrawLocatorData : public MUserData {
 public:
  DrawLocatorData() : MUserData(false) {}
  ~DrawLocatorData() override;
  locatorSets sets;
};

/// Draws draw locators in Viewport 2.0, as they draw themselves in the legacy viewport.
class DrawLocatorDrawOverride : public locatorOverride<DrawLocatorData> {
 public:
  static MHWRender::MPxDrawOverride* creator(const MObject& node);
  explicit DrawLocatorDrawOverride(const MObject& node) : locatorOverride(node) {}
  ~DrawLocatorDrawOverride() override;
  MBoundingBox boundingBox(const MDagPath& path, const MDagPath& camera) const override;

 private:
  void read(const MDagPath& path, DrawLocatorData& data) const override;
  void draw(const DrawLocatorData& data, MHWRender::MUIDrawManager& manager) const override;
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
class pinLocatorDrawOverride : public locatorOverride<pinLocatorData> {
 public:
  static MHWRender::MPxDrawOverride* creator(const MObject& node);
  explicit pinLocatorDrawOverride(const MObject& node) : locatorOverride(node) {}
  ~pinLocatorDrawOverride() override;
  MBoundingBox boundingBox(const MDagPath& path, const MDagPath& camera) const override;
  MMatrix transform(const MDagPath& path, const MDagPath& camera) const override;

 private:
  void read(const MDagPath& path, pinLocatorData& data) const override;
  void draw(const pinLocatorData& data, MHWRender::MUIDrawManager& manager) const override;
};
