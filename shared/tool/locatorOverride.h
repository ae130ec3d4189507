#pragma once

#include <maya/MDagPath.h>
#include <maya/MPxDrawOverride.h>
#include <maya/MUserData.h>

/// Base of the Viewport 2.0 pictures of the toolkit's locators, which are a node's data drawn by
/// the draw manager: the data is read when the host prepares the node, and drawn from what was
/// read.
/// @tparam Data an MUserData that holds all that is drawn
template <class Data>
class locatorOverride : public MHWRender::MPxDrawOverride {
 public:
  bool hasUIDrawables() const final { return true; }
  bool isBounded(const MDagPath&, const MDagPath&) const final { return true; }
  bool disableInternalBoundingBoxDraw() const final { return true; }
  MUserData* prepareForDraw(const MDagPath& path, const MDagPath&, const MHWRender::MFrameContext&,
                            MUserData* old) final {
    auto* data = dynamic_cast<Data*>(old);
    if (!data) data = new Data;
    read(path, *data);
    return data;
  }
  void addUIDrawables(const MDagPath&, MHWRender::MUIDrawManager& manager,
                      const MHWRender::MFrameContext&, const MUserData* data) final {
    if (const auto* prepared = dynamic_cast<const Data*>(data)) draw(*prepared, manager);
  }

 protected:
  explicit locatorOverride(const MObject& node) : MPxDrawOverride(node, nullptr) {}

 private:
  virtual void read(const MDagPath& path, Data& data) const = 0;
  virtual void draw(const Data& data, MHWRender::MUIDrawManager& manager) const = 0;
};
