#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MFrameContext.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

#include <memory>

namespace MHWRender {

class MStateManager;

/// What is fixed while one object is drawn.
class MDrawContext : public MFrameContext {
 public:
  ~MDrawContext() override;

  MStatus getRenderTargetSize(int& width, int& height) const;
  MBoundingBox getSceneBox(MStatus* status = nullptr) const;
  MBoundingBox getFrustumBox(MStatus* status = nullptr) const;
  unsigned int numberOfActiveLights(MStatus* status = nullptr) const;
  MStateManager* getStateManager() const;

 protected:
  MDrawContext() = default;
  friend struct host::api::Access;

 private:
  mutable std::shared_ptr<MStateManager> states_;
};

}  // namespace MHWRender
