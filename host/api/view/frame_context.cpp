#include <maya/MDrawContext.h>
#include <maya/MFrameContext.h>

#include "host/api/view/view_access.h"
#include "host/viewport/scene_gather.h"

using namespace host;
using api::FrameRep;
using api::setStatus;

namespace {

FrameRep* frameOf(const MHWRender::MFrameContext& context, MStatus* status = nullptr) {
  auto* rep = api::Access::rep<FrameRep>(context);
  setStatus(status, rep ? MStatus::kSuccess : MStatus::kFailure);
  return rep;
}

/// The product that a matrix type names, before it is transposed or inverted: world, view,
/// projection and the products in that order, four types each.
math::Matrix4 baseMatrix(const FrameRep& frame, int product) {
  const math::Matrix4& view = frame.projection.view();
  const math::Matrix4& projection = frame.projection.projection();
  switch (product) {
    case 0:
      return frame.world;
    case 1:
      return view;
    case 2:
      return projection;
    case 3:
      return view * projection;
    case 4:
      return frame.world * view;
    default:
      return frame.world * view * projection;
  }
}

MBoundingBox boxOf(const std::vector<math::Vec3>& points) {
  MBoundingBox box;
  for (const math::Vec3& p : points) box.expand(MPoint(p.x, p.y, p.z));
  return box;
}

}  // namespace

namespace MHWRender {

MFrameContext::~MFrameContext() = default;

MMatrix MFrameContext::getMatrix(MatrixType type, MStatus* status) const {
  const FrameRep* frame = frameOf(*this, status);
  if (!frame) return {};
  enum Form { kTransposed = 1, kInverse = 2 };
  const int form = static_cast<int>(type) % 4;
  math::Matrix4 matrix = baseMatrix(*frame, static_cast<int>(type) / 4);
  if (form & kInverse) {
    const auto inverted = math::inverse(matrix);
    if (!inverted) setStatus(status, MStatus::kFailure);
    matrix = inverted.value_or(math::Matrix4());
  }
  return api::toMMatrix(form & kTransposed ? math::transpose(matrix) : matrix);
}

MDoubleArray MFrameContext::getTuple(TupleType type, MStatus* status) const {
  MDoubleArray tuple;
  const FrameRep* frame = frameOf(*this, status);
  if (!frame) return tuple;
  const viewport::Camera& camera = frame->projection.camera();
  const auto add = [&tuple](const math::Vec3& v, double w) {
    for (const double value : {v.x, v.y, v.z, w}) tuple.append(value);
  };
  switch (type) {
    case kViewPosition:
      add(camera.eye(), 1);
      break;
    case kViewDirection:
      add(camera.viewDirection(), 0);
      break;
    case kViewUp:
      add(camera.up(), 0);
      break;
    case kViewRight:
      add(camera.right(), 0);
      break;
    case kViewportPixelSize:
      tuple.append(frame->projection.port().width);
      tuple.append(frame->projection.port().height);
      break;
    case kViewNearClipValue:
      tuple.append(camera.nearClip);
      break;
    case kViewFarClipValue:
      tuple.append(camera.farClip);
      break;
  }
  return tuple;
}

MDagPath MFrameContext::getCurrentCameraPath(MStatus* status) const {
  const FrameRep* frame = frameOf(*this, status);
  return frame ? api::wrap(frame->camera) : MDagPath();
}

MStatus MFrameContext::getViewportDimensions(int& originX, int& originY, int& width,
                                             int& height) const {
  const FrameRep* frame = frameOf(*this);
  if (!frame) return MStatus::kFailure;
  originX = originY = 0;
  width = frame->projection.port().width;
  height = frame->projection.port().height;
  return MStatus::kSuccess;
}

unsigned int MFrameContext::getDisplayStyle() const {
  const FrameRep* frame = frameOf(*this);
  if (!frame) return kGouraudShaded;
  const viewport::ViewOptions& options = frame->options;
  using viewport::DisplayStyle;
  unsigned int style = 0;
  const bool isShaded =
      options.style == DisplayStyle::Shaded || options.style == DisplayStyle::WireOnShaded;
  if (isShaded) style |= options.flatShaded ? kFlatShaded : kGouraudShaded;
  if (options.style == DisplayStyle::Wireframe || options.style == DisplayStyle::WireOnShaded)
    style |= kWireFrame;
  if (options.style == DisplayStyle::BoundingBox) style |= kBoundingBox;
  if (options.xray) style |= kXray;
  if (options.backFaceCulling) style |= kBackfaceCulling;
  return style;
}

bool MFrameContext::worldToViewport(const MPoint& worldPoint, double& x, double& y,
                                    MStatus* status) const {
  const FrameRep* frame = frameOf(*this, status);
  if (!frame) return false;
  const viewport::ViewPosition at =
      frame->projection.worldToView(math::Vec3{worldPoint.x, worldPoint.y, worldPoint.z});
  x = at.x;
  y = at.y;
  return !at.isClipped;
}

MStatus MFrameContext::viewportToWorld(double x, double y, MPoint& worldPoint,
                                       MVector& worldVector) const {
  const FrameRep* frame = frameOf(*this);
  if (!frame) return MStatus::kFailure;
  const viewport::ViewRay ray = frame->projection.viewToWorld({x, y});
  const math::Vec3 direction = ray.direction();
  worldPoint = MPoint(ray.nearPoint.x, ray.nearPoint.y, ray.nearPoint.z);
  worldVector = MVector(direction.x, direction.y, direction.z);
  return MStatus::kSuccess;
}

MDrawContext::~MDrawContext() = default;

MStatus MDrawContext::getRenderTargetSize(int& width, int& height) const {
  int x = 0, y = 0;
  return getViewportDimensions(x, y, width, height);
}

MBoundingBox MDrawContext::getSceneBox(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  viewport::SceneView scene;
  scene.meshes = viewport::gatherMeshes(api::document());
  return boxOf(viewport::framePoints(scene));
}

MBoundingBox MDrawContext::getFrustumBox(MStatus* status) const {
  const FrameRep* frame = frameOf(*this, status);
  if (!frame) return {};
  const auto width = static_cast<double>(frame->projection.port().width);
  const auto height = static_cast<double>(frame->projection.port().height);
  std::vector<math::Vec3> corners;
  for (const viewport::ViewPoint corner :
       {viewport::ViewPoint{0, 0}, {width, 0}, {0, height}, {width, height}}) {
    const viewport::ViewRay ray = frame->projection.viewToWorld(corner);
    corners.push_back(ray.nearPoint);
    corners.push_back(ray.farPoint);
  }
  return boxOf(corners);
}

unsigned int MDrawContext::numberOfActiveLights(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return 1;  // the view's own light, at the camera
}

}  // namespace MHWRender
