#pragma once

#include <maya/MDagPath.h>
#include <maya/MFrameContext.h>
#include <maya/MHWGeometry.h>
#include <maya/MObject.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MUIDrawManager.h>
#include <maya/detail/DrawApi.h>
#include <maya/detail/Handle.h>

namespace MHWRender {

/// Base of the classes that give a plug-in's shapes or locators geometry for Viewport 2.0.
///
/// Each time a view is drawn the calls come in this order: `updateDG`, `updateRenderItems`,
/// `populateGeometry`, `addUIDrawables` where there are any, `cleanUp`. The geometry is asked for
/// every time: `isIndexingDirty` and `isStreamDirty` are answered but not needed. Required streams
/// are those that the shaders of the enabled items use: positions, normals for lit ones, colours
/// for those by vertex.
class MPxGeometryOverride {
 public:
  explicit MPxGeometryOverride(const MObject& object);
  virtual ~MPxGeometryOverride();
  MPxGeometryOverride(const MPxGeometryOverride&) = delete;
  MPxGeometryOverride& operator=(const MPxGeometryOverride&) = delete;

  virtual DrawAPI supportedDrawAPIs() const;
  virtual bool hasUIDrawables() const;
  virtual void updateDG() = 0;
  virtual void updateRenderItems(const MDagPath& path, MRenderItemList& list) = 0;
  virtual void populateGeometry(const MGeometryRequirements& requirements,
                                const MRenderItemList& renderItems, MGeometry& data) = 0;
  virtual void addUIDrawables(const MDagPath& path, MUIDrawManager& drawManager,
                              const MFrameContext& frameContext);
  virtual void cleanUp() = 0;
  virtual bool isIndexingDirty(const MRenderItem& item);
  virtual bool isStreamDirty(const MVertexBufferDescriptor& descriptor);
  virtual bool requiresGeometryUpdate() const;
  virtual bool requiresUpdateRenderItems(const MDagPath& path) const;
  virtual bool refineSelectionPath() const;
  virtual bool traceCallSequence() const;
  virtual void handleTraceMessage(const MString& message) const;

 private:
  friend struct host::api::Access;
  MObject object_;
};

}  // namespace MHWRender
