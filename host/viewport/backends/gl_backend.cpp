#include "host/viewport/backends/gl_backend.h"

#include <algorithm>
#include <optional>

#include "host/base/assert.h"
#include "host/math/box.h"
#include "host/viewport/backends/egl_context.h"
#include "host/viewport/backends/gl_buffers.h"
#include "host/viewport/backends/gl_occlusion.h"
#include "host/viewport/backends/gl_program.h"
#include "host/viewport/backends/gl_shaders.h"
#include "host/viewport/backends/gl_surface.h"
#include "host/viewport/backends/gl_target.h"
#include "host/viewport/stroke_font.h"

namespace host::viewport {

namespace {

/// The programs of all primitives.
struct Programs {
  GlProgram surface{shaders::surfaceVertex(), {}, shaders::surfaceFragment(true)};
  GlProgram solid{shaders::surfaceVertex(), {}, shaders::surfaceFragment(false)};
  GlProgram line{shaders::strokeVertex(), shaders::lineGeometry(), shaders::lineFragment()};
  GlProgram point{shaders::strokeVertex(), shaders::pointGeometry(), shaders::pointFragment()};
  GlProgram background{shaders::screenVertex(), {}, shaders::backgroundFragment()};

  [[nodiscard]] const GlProgram& of(const DrawItem& item) const {
    if (item.primitive == Primitive::Points) return point;
    if (item.primitive == Primitive::Lines) return line;
    const bool isSolid = item.pass == Pass::Opaque && item.stipple == Stipple::None;
    return isSolid ? solid : surface;
  }
};

Matrix4 pixelProjection(PortSize port) {
  Matrix4 m;
  m[0][0] = 2.0 / port.width;
  m[1][1] = 2.0 / port.height;
  m[3][0] = m[3][1] = -1;
  return m;
}

/// The camera with its clip planes drawn in around what there is to see: 24 bits of depth then tell
/// a wire from the surface it lies on, whatever the planes of the camera are. What is drawn
/// directly gets room on both sides.
Camera withTightClipping(const Camera& camera, const DrawList& list, GlBuffers& buffers) {
  const Matrix4 view = viewMatrix(camera);
  double nearest = camera.farClip;
  double farthest = camera.nearClip;
  for (const DrawItem& item : list.items) {
    if (item.space == Space::Screen || !item.vertices) continue;
    const math::Box seen = buffers.bounds(item.vertices).transformed(item.world * view);
    if (seen.isEmpty() || -seen.min.z < camera.nearClip) continue;  // all of it behind the eye
    nearest = std::min(nearest, std::max(-seen.max.z, camera.nearClip));
    farthest = std::max(farthest, -seen.min.z);
  }
  Camera result = camera;
  if (nearest > farthest) return result;
  result.nearClip = std::max(camera.nearClip, nearest * 0.2);
  result.farClip = std::clamp(farthest * 2 + nearest, result.nearClip * 2,
                              std::max(camera.farClip, result.nearClip * 2));
  return result;
}

class GlBackendImpl final : public GlBackend {
 public:
  explicit GlBackendImpl(std::unique_ptr<EglContext> context) : context_(std::move(context)) {
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &maxSide_);
    GLint textureSide = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &textureSide);
    maxSide_ = std::min(maxSide_, textureSide);
    glGenVertexArrays(1, &vertexArray_);
    parts_.emplace();
  }

  ~GlBackendImpl() override {
    activate();
    parts_.reset();
    glDeleteVertexArrays(1, &vertexArray_);
  }

  [[nodiscard]] std::string_view name() const override { return "gl"; }
  [[nodiscard]] int maxSide() const override { return maxSide_; }

  [[nodiscard]] Result<void> beginFrame(const FrameSettings& settings) override {
    HOST_ASSERT(!isInFrame_ && !isDirect_, "call endFrame (endDirect) before the next frame");
    const PortSize port = settings.port;
    if (port.width < 1 || port.height < 1 || port.width > maxSide_ || port.height > maxSide_)
      return fail("A picture of {} by {} pixels can't be drawn; a side may have 1 to {} pixels.",
                  port.width, port.height, maxSide_);
    activate();
    clearErrors();
    HOST_TRY(parts_->target.resize(port));
    settings_ = settings;
    camera_ = settings.camera;
    isClippingSet_ = false;
    isInFrame_ = true;
    parts_->buffers.dropUnused();
    prepareState();
    drawBackground();
    return {};
  }

  void draw(const DrawList& list) override {
    HOST_ASSERT(isInFrame_ && !isDirect_, "call beginFrame first, and endDirect");
    if (!isClippingSet_) camera_ = withTightClipping(settings_.camera, list, parts_->buffers);
    isClippingSet_ = true;  // later lists of the frame share its depth
    DrawList texts;
    appendTexts(list.texts, texts);
    isDepthResolved_ = false;
    for (const GlProgram* program : {&parts_->programs.surface, &parts_->programs.solid}) {
      program->use();
      setLighting(*program, list.lighting, viewMatrix(camera_));
    }
    bool needsOcclusion = settings_.ambientOcclusion && list.lighting.mode != Lighting::Mode::Flat;
    bool hasOpaque = false;
    prepareState();
    for (const std::size_t index : drawOrder(list)) {
      const DrawItem& item = list.items[index];
      const bool isOpaque = item.space == Space::World && item.pass == Pass::Opaque;
      if (!isOpaque && needsOcclusion && hasOpaque) addOcclusion();
      if (!isOpaque) needsOcclusion = false;
      hasOpaque |= isOpaque;
      drawItem(item);
    }
    if (needsOcclusion && hasOpaque) addOcclusion();
    for (const DrawItem& item : texts.items) drawItem(item);  // over everything
  }

  void endFrame() override {
    HOST_ASSERT(isInFrame_ && !isDirect_, "call beginFrame first, and endDirect");
    isInFrame_ = false;
    hasPicture_ = true;
    const GLenum error = glGetError();
    HOST_ASSERT(error == GL_NO_ERROR, "check the draw list with host::viewport::check");
  }

  bool beginDirect(const Matrix4& world) override {
    HOST_ASSERT(!isDirect_, "direct sections don't nest; call endDirect first");
    isDirect_ = true;
    if (!isInFrame_ && !hasPicture_) return false;
    activate();
    prepareState();
    glBindVertexArray(0);
    glUseProgram(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    glDisable(GL_BLEND);
    loadMatrix(GL_PROJECTION, projectionMatrix(camera_, settings_.port.aspect()));
    loadMatrix(GL_MODELVIEW, world * viewMatrix(camera_));
    return true;
  }

  void endDirect() override {
    HOST_ASSERT(isDirect_, "call beginDirect first");
    isDirect_ = false;
    if (!isInFrame_ && !hasPicture_) return;
    glPopClientAttrib();
    glPopAttrib();
    for (const GLenum mode : {GL_PROJECTION, GL_MODELVIEW}) loadMatrix(mode, Matrix4{});
    clearErrors();  // the caller's, not ours
    if (isInFrame_) prepareState();
  }

  [[nodiscard]] Result<Image> readPixels() override {
    HOST_ASSERT(!isInFrame_ && !isDirect_, "call endFrame before reading the picture");
    if (!hasPicture_) return fail("Nothing was drawn yet, so there is no picture to read.");
    activate();
    parts_->target.resolveColor();
    const PortSize port = settings_.port;
    Image image{port.width, port.height, {}};
    const std::size_t row = std::size_t{4} * at(port.width);
    image.rgba.resize(row * at(port.height));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, parts_->target.resolvedFramebuffer());
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, port.width, port.height, GL_RGBA, GL_UNSIGNED_BYTE, image.rgba.data());
    parts_->target.bind();
    for (std::size_t top = 0, bottom = at(port.height) - 1; top < bottom; ++top, --bottom)
      std::swap_ranges(image.rgba.begin() + static_cast<std::ptrdiff_t>(top * row),
                       image.rgba.begin() + static_cast<std::ptrdiff_t>((top + 1) * row),
                       image.rgba.begin() + static_cast<std::ptrdiff_t>(bottom * row));
    return image;
  }

  void present(unsigned framebuffer) override {
    HOST_ASSERT(!isInFrame_ && !isDirect_, "call endFrame before showing the picture");
    if (!hasPicture_) return;
    activate();
    parts_->target.resolveColor();
    const PortSize port = settings_.port;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, parts_->target.resolvedFramebuffer());
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    glBlitFramebuffer(0, 0, port.width, port.height, 0, 0, port.width, port.height,
                      GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
  }

 private:
  /// What lives in the context and must go before it.
  struct Parts {
    Programs programs;
    GlOcclusion occlusion;
    GlBuffers buffers;
    GlTarget target;
  };

  void activate() const {
    if (context_) context_->makeCurrent();
  }

  static void clearErrors() {
    while (glGetError() != GL_NO_ERROR) {
    }
  }

  static void loadMatrix(GLenum mode, const Matrix4& matrix) {
    glMatrixMode(mode);
    glLoadMatrixd(&matrix.m[0][0]);
  }

  void prepareState() {
    parts_->target.bind();
    glBindVertexArray(vertexArray_);
    glViewport(0, 0, settings_.port.width, settings_.port.height);
    glEnable(GL_MULTISAMPLE);
    glDisable(GL_SCISSOR_TEST);
    glDisable(GL_CULL_FACE);
    glDisable(GL_STENCIL_TEST);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glDepthMask(GL_TRUE);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    useOverBlending();
  }

  static void useOverBlending() {
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
  }

  void drawBackground() {
    glClearDepth(1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT | GL_STENCIL_BUFFER_BIT);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_BLEND);
    const GlProgram& program = parts_->programs.background;
    program.use();
    program.set("top", settings_.backgroundTop);
    program.set("bottom", settings_.backgroundBottom);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    prepareState();
  }

  [[nodiscard]] double pixelSize() const {
    return 2 * viewExtents(camera_, settings_.port.aspect()).halfWidth / settings_.port.width;
  }

  void addOcclusion() {
    parts_->occlusion.apply(parts_->target, projectionMatrix(camera_, settings_.port.aspect()),
                            pixelSize(), camera_.orthographic);
    prepareState();
  }

  void appendTexts(const std::vector<TextItem>& texts, DrawList& list) const {
    const ViewProjection view(settings_.camera, settings_.port);
    for (const TextItem& text : texts) {
      ViewPosition at{text.position.x, text.position.y, 0, true, false};
      if (text.space == Space::World) at = view.worldToView(text.position);
      if (!at.inFront) continue;
      DrawItem& item = list.add(Primitive::Lines, Pass::Overlay, textStrokes(text, at.x, at.y));
      item.space = Space::Screen;
      item.depthTest = DepthTest::Always;
      item.color = text.color;
      item.width = std::max(1.3f, text.height / 8);
    }
  }

  void setDepth(const DrawItem& item) const {
    const bool isTested = item.space == Space::World && item.depthTest != DepthTest::Always;
    isTested ? glEnable(GL_DEPTH_TEST) : glDisable(GL_DEPTH_TEST);
    glDepthFunc(item.depthTest == DepthTest::Behind ? GL_GREATER : GL_LEQUAL);
    glDepthMask(item.depthWrite && item.depthTest == DepthTest::Nearer ? GL_TRUE : GL_FALSE);
    // Occlusion darkens only the samples that a surface covers.
    const bool marks = isTested && item.pass == Pass::Opaque;
    marks ? glEnable(GL_STENCIL_TEST) : glDisable(GL_STENCIL_TEST);
    glStencilFunc(GL_ALWAYS, 1, 0xff);
    glStencilOp(GL_KEEP, GL_KEEP, GL_REPLACE);
  }

  /// Discs show or hide as a whole: by the depth of the surfaces at their centres.
  void setWholePoints(const DrawItem& item, const GlProgram& program) {
    const bool isWhole = item.primitive == Primitive::Points && item.space == Space::World &&
                         item.pass == Pass::Dots && item.depthTest == DepthTest::Nearer;
    program.set("whole", isWhole ? 1 : 0);
    if (!isWhole) return;
    if (!isDepthResolved_) {
      parts_->target.resolveDepth();
      program.use();
    }
    isDepthResolved_ = true;
    program.set("depth", 1);
    glActiveTexture(GL_TEXTURE1);
    glBindTexture(GL_TEXTURE_2D, parts_->target.depthTexture());
    glActiveTexture(GL_TEXTURE0);
    glDisable(GL_DEPTH_TEST);
  }

  void setSurface(const DrawItem& item, const GlProgram& program, const Matrix4& modelView) {
    program.setNormalMatrix("normalMatrix", modelView);
    program.set("worldUp", math::transformVector({0, 1, 0}, viewMatrix(camera_)));
    program.set("lit", item.lit ? 1 : 0);
    const TexturePtr texture = shownTexture(item);
    program.set("textured", texture ? 1 : 0);
    program.set("checkerboard", item.stipple == Stipple::Checkerboard ? 1 : 0);
    program.set("picture", 0);
    setMaterial(program, item);
    if (texture) parts_->buffers.bindTexture(texture);
    if (item.stepsBack) {
      glEnable(GL_POLYGON_OFFSET_FILL);
      glPolygonOffset(0.6f, 1.0f);
    }
    glFrontFace(math::determinant(item.world) < 0 ? GL_CW : GL_CCW);
    item.cullBackFaces ? glEnable(GL_CULL_FACE) : glDisable(GL_CULL_FACE);
  }

  void setStroke(const DrawItem& item, const GlProgram& program, const Matrix4& modelView) const {
    program.setNormalMatrix("normalMatrix", modelView);
    program.set("sided", item.vertices->normals.empty() ? 0 : 1);
    program.set("portSize", static_cast<float>(settings_.port.width),
                static_cast<float>(settings_.port.height));
    program.set("width", item.width);
    program.set("outline", item.outline);
    program.set("square", item.squarePoints ? 1 : 0);
    program.set("fadeShort", item.fadeShortLines ? 1 : 0);
    program.set("dash", item.stipple == Stipple::Dotted   ? 1
                        : item.stipple == Stipple::Dashed ? 2
                                                          : 0);
  }

  void drawItem(const DrawItem& item) {
    const auto count =
        static_cast<GLsizei>(item.indices ? item.indices->size() : item.vertices->positions.size());
    if (count == 0) return;
    const bool isOnScreen = item.space == Space::Screen;
    const GlProgram& program = parts_->programs.of(item);
    const Matrix4 modelView = isOnScreen ? item.world : item.world * viewMatrix(camera_);
    program.use();
    program.set("modelView", modelView);
    program.set("projection", isOnScreen ? pixelProjection(settings_.port)
                                         : projectionMatrix(camera_, settings_.port.aspect()));
    program.set("pull", isOnScreen ? 0.0f : item.pull);
    program.set("pixelSize", static_cast<float>(pixelSize()));
    program.set("orthographic", camera_.orthographic || isOnScreen ? 1 : 0);
    program.set("tint", item.color);
    setDepth(item);
    if (item.primitive == Primitive::Triangles)
      setSurface(item, program, modelView);
    else
      setStroke(item, program, modelView);
    if (item.primitive == Primitive::Points) setWholePoints(item, program);
    parts_->buffers.bindVertices(item.vertices);
    const GLenum mode = item.primitive == Primitive::Points  ? GL_POINTS
                        : item.primitive == Primitive::Lines ? GL_LINES
                                                             : GL_TRIANGLES;
    if (item.indices) {
      parts_->buffers.bindIndices(item.indices);
      glDrawElements(mode, count, GL_UNSIGNED_INT, nullptr);
    } else {
      glDrawArrays(mode, 0, count);
    }
    glDisable(GL_POLYGON_OFFSET_FILL);
    glDisable(GL_CULL_FACE);
  }

  std::unique_ptr<EglContext> context_;  ///< none: the window's
  std::optional<Parts> parts_;
  GLuint vertexArray_ = 0;
  GLint maxSide_ = 0;
  FrameSettings settings_;
  Camera camera_;  ///< the frame's, with the clip planes that the depth buffer uses
  bool isClippingSet_ = false;
  bool isDepthResolved_ = false;  ///< the depth texture holds what the list's surfaces made
  bool isInFrame_ = false;
  bool isDirect_ = false;
  bool hasPicture_ = false;
};

}  // namespace

Result<std::unique_ptr<GlBackend>> GlBackend::createOffscreen() {
  auto context = EglContext::create();
  if (!context) return failWith(std::move(context).error());
  return std::make_unique<GlBackendImpl>(std::move(*context));
}

Result<std::unique_ptr<GlBackend>> GlBackend::createOnCurrentContext() {
  GLint major = 0, minor = 0, profile = 0;
  if (!glGetString(GL_VERSION))
    return fail(ErrorKind::NotFound, "There is no OpenGL context to draw with.");
  glGetIntegerv(GL_MAJOR_VERSION, &major);
  glGetIntegerv(GL_MINOR_VERSION, &minor);
  if (major * 10 + minor >= 32) glGetIntegerv(GL_CONTEXT_PROFILE_MASK, &profile);
  const bool isCore = (profile & GL_CONTEXT_CORE_PROFILE_BIT) != 0;
  if (major * 10 + minor < 32 || isCore)
    return fail(
        "The window's OpenGL is {}.{}{}; version 3.2 with the compatibility profile is needed.",
        major, minor, isCore ? " core" : "");
  return std::make_unique<GlBackendImpl>(nullptr);
}

}  // namespace host::viewport
