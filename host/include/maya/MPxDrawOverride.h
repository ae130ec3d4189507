#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MDagPath.h>
#include <maya/MDrawContext.h>
#include <maya/MFrameContext.h>
#include <maya/MMatrix.h>
#include <maya/MObject.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MUIDrawManager.h>
#include <maya/MUserData.h>
#include <maya/detail/DrawApi.h>
#include <maya/detail/Handle.h>

namespace MHWRender {

/// Base of the classes that draw a plug-in's nodes in Viewport 2.0.
class MPxDrawOverride {
 public:
  typedef void (*GeometryDrawOverrideCb)(const MDrawContext& context, const MUserData* data);

  MPxDrawOverride(const MObject& object, GeometryDrawOverrideCb callback,
                  bool isAlwaysDirty = true);
  virtual ~MPxDrawOverride();
  MPxDrawOverride(const MPxDrawOverride&) = delete;
  MPxDrawOverride& operator=(const MPxDrawOverride&) = delete;

  virtual DrawAPI supportedDrawAPIs() const;
  virtual bool hasUIDrawables() const;
  virtual void addUIDrawables(const MDagPath& objPath, MUIDrawManager& drawManager,
                              const MFrameContext& frameContext, const MUserData* data);
  virtual bool isBounded(const MDagPath& objPath, const MDagPath& cameraPath) const;
  virtual MBoundingBox boundingBox(const MDagPath& objPath, const MDagPath& cameraPath) const;
  virtual MMatrix transform(const MDagPath& objPath, const MDagPath& cameraPath) const;
  virtual bool disableInternalBoundingBoxDraw() const;
  /// Copies what drawing needs out of the node; the data returned last comes back in `oldData`.
  virtual MUserData* prepareForDraw(const MDagPath& objPath, const MDagPath& cameraPath,
                                    const MFrameContext& frameContext, MUserData* oldData) = 0;
  virtual bool excludedFromPostEffects() const;
  virtual bool isTransparent() const;
  virtual bool traceCallSequence() const;
  virtual void handleTraceMessage(const MString& message) const;

 private:
  friend struct host::api::Access;
  MObject object_;
  GeometryDrawOverrideCb callback_;
  bool isAlwaysDirty_;
};

}  // namespace MHWRender
