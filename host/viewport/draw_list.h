#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/math/matrix4.h"
#include "host/viewport/material.h"

namespace host::viewport {

using math::Matrix4;
using math::Vec2f;
using math::Vec3;
using math::Vec3f;

/// A colour as it appears on screen (sRGB), not premultiplied.
struct Rgba {
  float r = 0, g = 0, b = 0, a = 1;
  [[nodiscard]] Rgba withAlpha(float alpha) const { return {r, g, b, alpha}; }
  friend bool operator==(const Rgba&, const Rgba&) = default;
};

/// Four bytes in memory order r g b a, as vertex colours are kept.
[[nodiscard]] std::uint32_t packColor(const Rgba& color);

/// Vertex arrays, immutable once in a list, so that a backend may keep its own copy for as long as
/// they live. All arrays are as long as `positions` or empty.
struct VertexData {
  std::vector<Vec3f> positions;
  std::vector<Vec3f>
      normals;  ///< unit; needed by lit triangles; let points and lines know their side
  std::vector<std::uint32_t> colors;  ///< packColor
  std::vector<Vec2f> uvs;             ///< needed by textures
};
using VertexDataPtr = std::shared_ptr<const VertexData>;

/// Indices into vertex arrays; two a line, three a triangle.
using IndexData = std::vector<std::uint32_t>;
using IndexDataPtr = std::shared_ptr<const IndexData>;

/// A picture to put on triangles, rows bottom up. At most 16384 pixels a side.
struct Texture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgba;
};
using TexturePtr = std::shared_ptr<const Texture>;

enum class Primitive : std::uint8_t { Points, Lines, Triangles };

/// World items go through item matrix and camera. Screen items are in pixels, (0, 0) lower left, z
/// ignored, never hidden.
enum class Space : std::uint8_t { World, Screen };

enum class DepthTest : std::uint8_t {
  Nearer,  ///< drawn where nothing lies in front
  Always,  ///< drawn on top of everything ("x-ray")
  Behind,  ///< drawn only where something lies in front
};

/// Order of drawing within a list; items of one pass keep the order in which they were added, after
/// their priority.
enum class Pass : std::uint8_t { Opaque, Translucent, Wire, Dots, Overlay };

enum class Stipple : std::uint8_t {
  None,
  Dotted,        ///< lines
  Dashed,        ///< lines
  Checkerboard,  ///< triangles: every other pixel
};

/// One draw call: primitives of one kind and look.
struct DrawItem {
  VertexDataPtr vertices;
  IndexDataPtr indices;  ///< none: all vertices in order
  TexturePtr texture;
  MaterialPtr material;       ///< triangles that are lit: instead of a plain surface of the colour
  bool showsTexture = false;  ///< of the material
  Matrix4 world;
  Primitive primitive = Primitive::Triangles;
  Space space = Space::World;
  Pass pass = Pass::Opaque;
  int priority = 0;
  DepthTest depthTest = DepthTest::Nearer;
  bool depthWrite = true;
  bool lit = false;  ///< triangles
  bool cullBackFaces = false;
  bool stepsBack = true;  ///< triangles: by their slope, so that lines on them are not cut where
                          ///< they turn away. Back faces may peek out at silhouettes for it
  bool fadeShortLines =
      false;  ///< lines: thin out those of a few pixels, which would merge into a dark mass
  bool squarePoints = false;  ///< points: squares instead of discs
  Stipple stipple = Stipple::None;
  Rgba color{1, 1, 1, 1};    ///< multiplied with the vertex colours
  Rgba outline{0, 0, 0, 0};  ///< points: rim, drawn inside the size
  float width = 1;           ///< pixels: line width or point diameter
  float pull = 0;  ///< pixels by which it is moved towards the viewer before the depth test; points
                   ///< and lines with normals only where they face the viewer, so that nothing
                   ///< peeks out from behind
};

enum class TextAlign : std::uint8_t { Left, Center, Right };

/// One line of text at a place in the world or on the screen, always facing the viewer.
struct TextItem {
  std::string text;  ///< printable ASCII; other characters show as a box
  Vec3 position;     ///< of the baseline's start, centre or end
  Space space = Space::Screen;
  TextAlign align = TextAlign::Left;
  Rgba color{1, 1, 1, 1};
  float height = 12;  ///< of a capital letter, pixels
};

/// A light in world space, of linear light.
struct Light {
  enum class Kind : std::uint8_t { Ambient, Directional, Point, Spot };
  Kind kind = Kind::Directional;
  Vec3 position, direction{0, 0, -1};
  Vec3 color{1, 1, 1};                  ///< times intensity
  double decay = 0;                     ///< falls off with this power of the distance in cm
  double cosInner = 1, cosOuter = 0.9;  ///< spot: full light within, none beyond
  double dropoff = 0;                   ///< spot: exponent of the falling off from the axis
  double ambientShade = 0;              ///< ambient: share that comes from its place
};

/// How the lit triangles of a list are lit.
struct Lighting {
  enum class Mode : std::uint8_t { Studio, Lights, Flat };
  Mode mode = Mode::Studio;
  std::vector<Light> lights;  ///< the first kMaxLights count
  static constexpr std::size_t kMaxLights = 8;
};

/// What one frame shows, independent of how it is drawn.
struct DrawList {
  std::vector<DrawItem> items;
  std::vector<TextItem> texts;
  Lighting lighting;

  /// Adds an item of vertices that are used only once and returns it for styling. Positions are in
  /// the space that the item is given.
  DrawItem& add(Primitive primitive, Pass pass, std::vector<Vec3f> positions);
  void append(const DrawList& other);
};

/// Everything wrong with a list, a sentence each: arrays of different lengths, indices out of range
/// or not a multiple of the primitive, coordinates that are not finite, widths that are not
/// positive, lit triangles without normals. Linear.
[[nodiscard]] std::vector<std::string> check(const DrawList& list);

/// Item indices in drawing order.
[[nodiscard]] std::vector<std::size_t> drawOrder(const DrawList& list);

}  // namespace host::viewport
