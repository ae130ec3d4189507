#pragma once

#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/detail/DrawApi.h>
#include <maya/detail/Handle.h>

namespace MHWRender {

class MShaderManager;

/// The renderer of Viewport 2.0.
class MRenderer {
 public:
  static MRenderer* theRenderer(bool initializeRenderer = true);

  DrawAPI drawAPI() const;
  bool drawAPIIsOpenGL() const;
  unsigned int drawAPIVersion() const;
  MStatus outputTargetSize(unsigned int& width, unsigned int& height) const;
  const MShaderManager* getShaderManager() const;
  /// Says that an object must be drawn anew though none of its attributes changed.
  static void setGeometryDrawDirty(const MObject& object, bool topologyChanged = true);

 private:
  MRenderer() = default;
  friend struct host::api::Access;
};

}  // namespace MHWRender
