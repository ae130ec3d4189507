#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "host/base/ids.h"
#include "host/base/result.h"
#include "host/viewport/draw_list.h"
#include "host/viewport/projection.h"

namespace host::viewport {

/// A picture: 4 bytes a pixel (red, green, blue, alpha), rows from the top down, without padding.
struct Image {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgba;
  [[nodiscard]] const std::uint8_t* pixel(int x, int yFromTop) const {
    return rgba.data() + 4 * (at(yFromTop) * at(width) + at(x));
  }
};

/// What holds for a whole frame.
struct FrameSettings {
  Camera camera;
  PortSize port;
  Rgba backgroundTop{0.36f, 0.40f, 0.45f, 1};
  Rgba backgroundBottom{0.16f, 0.175f, 0.20f, 1};
  bool ambientOcclusion = true;  ///< soft contact shadows in creases, where the backend can
};

/// What draws a frame. One frame: beginFrame, any number of draw calls and direct sections,
/// endFrame; then the picture can be read or shown until the next frame begins.
class Backend {
 public:
  virtual ~Backend() = default;
  Backend(const Backend&) = delete;
  Backend& operator=(const Backend&) = delete;

  [[nodiscard]] virtual std::string_view name() const = 0;
  /// The longest side of a frame and of a texture, in pixels.
  [[nodiscard]] virtual int maxSide() const = 0;

  /// Clears the frame. Fails, with nothing begun, for a port beyond maxSide() or when memory runs
  /// out.
  [[nodiscard]] virtual Result<void> beginFrame(const FrameSettings& settings) = 0;
  virtual void draw(const DrawList& list) = 0;
  virtual void endFrame() = 0;

  /// Opens a section in which the caller draws with OpenGL 1.x itself: its context is current, the
  /// camera and `world` are loaded into the fixed-function matrices, depth test on, lighting off.
  /// Also between frames, where it adds to the last picture. Sections don't nest; each is closed
  /// with endDirect, whatever this returns.
  /// @return false when there is nothing to draw with
  virtual bool beginDirect(const Matrix4& world) = 0;
  virtual void endDirect() = 0;

  /// The last frame's picture, or an error when none was drawn.
  [[nodiscard]] virtual Result<Image> readPixels() = 0;

 protected:
  Backend() = default;
};

/// Draws one whole frame and reads it back.
[[nodiscard]] Result<Image> renderImage(Backend& backend, const FrameSettings& settings,
                                        const DrawList& list);

}  // namespace host::viewport
