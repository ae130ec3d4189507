#pragma once

#include "host/math/matrix4.h"
#include "host/viewport/backends/backend.h"

namespace host::api {

/// Where plug-ins draw with OpenGL now: into the frame that is being drawn, in the space of the
/// object whose turn it is; between frames onto the last picture, in world space.
class DirectTarget {
 public:
  /// For the time of one object's drawing.
  class Scope {
   public:
    Scope(viewport::Backend& backend, const math::Matrix4& world);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;
  };

  /// Opens the section; calls nest. False when there is nothing to draw with; `end` must follow all
  /// the same.
  bool begin();
  /// Closes it with the outermost call, and draws the texts.
  void end();
  [[nodiscard]] bool isOpen() const { return depth_ > 0; }
  /// Open, and with something to draw with.
  [[nodiscard]] bool isDrawing() const { return isOpen() && isLive_; }
  /// A line of text at a place in the space of the object.
  void addText(viewport::TextItem text);

 private:
  [[nodiscard]] viewport::Backend* target();
  viewport::Backend* frame_ = nullptr;   ///< null between frames
  viewport::Backend* opened_ = nullptr;  ///< of the section that is open
  math::Matrix4 world_;
  viewport::DrawList texts_;
  int depth_ = 0;
  bool isLive_ = false;
};

[[nodiscard]] DirectTarget& directTarget();

}  // namespace host::api
