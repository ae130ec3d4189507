#pragma once

#include <map>
#include <string>

#include "host/viewport/framing.h"
#include "host/workspace/workspace.h"

namespace host::workspace {

/// What cameras were made to frame, as long as they stand there: pictures of other proportions than
/// their panel's show that too, which would be cut off in a narrower one and small in a wider one.
class Framings {
 public:
  /// Remembers what a camera, as it stands now, is to show, with the room around it.
  void keep(Workspace& workspace, const std::string& camera, const viewport::Camera& placed,
            const viewport::ViewExtents& extents);

 private:
  struct Framing {
    viewport::Camera camera;
    viewport::ViewExtents extents;
  };
  void zoom(const View& view, viewport::SceneView& scene) const;

  std::map<std::string, Framing, std::less<>> byCamera_;
  bool isWatching_ = false;
};

}  // namespace host::workspace
