#include "host/api/view/shape_ui.h"

#include <algorithm>
#include <vector>

#include "host/api/node/px_node.h"
#include "host/api/view/direct_target.h"
#include "host/api/view/display_state.h"
#include "host/api/view/view_access.h"
#include "host/api/view/view_rep.h"
#include "host/viewport/backends/direct_draw.h"
#include "host/viewport/display_colors.h"
#include "host/workspace/workspace.h"

namespace host::api {

/// The door to what requests and questions are made of.
struct UiDoor {
  static void fill(MDrawInfo& info, const workspace::View& view, const scene::DagPath& path) {
    info.path_ = wrap(path);
    info.view_ = wrap(view);
    info.style_ = info.view_.displayStyle();
    // The two enumerations name the same states.
    info.status_ = static_cast<M3dView::DisplayStatus>(displayStatusOf(path));
    (void)info.view_.projectionMatrix(info.projection_);
  }
  static void ask(MSelectInfo& info, const viewport::PickQuestion& question,
                  const math::Matrix4& toViewer) {
    const auto pixel = [](double at) { return static_cast<unsigned int>(std::max(at, 0.0)); };
    info.x_ = pixel(question.low.x);
    info.y_ = pixel(question.low.y);
    info.width_ = pixel(question.high.x - question.low.x);
    info.height_ = pixel(question.high.y - question.low.y);
    info.isSelecting_ = true;
    info.isSingle_ = question.isClick;
    info.isHilitedOnly_ = question.onlyHilited;
    info.picksVertices_ = question.vertices;
    info.picksEdges_ = question.edges;
    info.picksFaces_ = question.faces;
    info.picksObjects_ = question.objects;
    info.alignment_ = toMMatrix(toViewer);
  }
  static void attach(MPxSurfaceShapeUI& ui, MPxSurfaceShape* shape) { ui.shape_ = shape; }
  static MColor color(const MDrawRequest& request) {
    if (request.color_ >= 0) return request.view_.colorAtIndex(index(request), request.table_);
    return MHWRender::MGeometryUtilities::wireframeColor(request.path_);
  }

 private:
  static unsigned int index(const MDrawRequest& request) {
    return static_cast<unsigned int>(request.color_);
  }
};

namespace {

/// Whether the class that was asked last what is picked left it to the host.
bool& hasNoSay() {
  static bool isSo = false;
  return isSo;
}

void drawRequest(MPxSurfaceShapeUI& ui, const workspace::View& view, const MDrawRequest& request,
                 viewport::Backend& backend) {
  const scene::DagPath& path = pathOf(request.multiPath());
  if (path.isWorld()) return;
  const DirectTarget::Scope scope(backend, path.inclusiveMatrix());
  if (directTarget().begin()) {
    viewport::setDirectColor(toRgba(UiDoor::color(request)));
    if (request.displayCulling()) viewport::setDirectCulling(true, request.displayCullOpposite());
    M3dView shown = wrap(view);
    const auto call = [&] {
      ui.draw(request, shown);
      return true;
    };
    (void)fenced(*path.node(), "draw", call, false);
  }
  directTarget().end();
}

/// The part of the picture in a rectangle spread over all of it, as clip coordinates.
math::Matrix4 closeUp(const viewport::PickQuestion& question, viewport::PortSize port) {
  const double width = std::max(question.high.x - question.low.x, 1.0),
               height = std::max(question.high.y - question.low.y, 1.0);
  const double x = (question.low.x + question.high.x) / 2,
               y = (question.low.y + question.high.y) / 2;
  return math::Matrix4::scaling({port.width / width, port.height / height, 1}) *
         math::Matrix4::translation(
             {(port.width - 2 * x) / width, (port.height - 2 * y) / height, 0});
}

/// Opens a direct section where nothing is being drawn; makes a first frame where there is none.
bool openSection(const viewport::ViewProjection& projection) {
  if (directTarget().begin()) return true;
  directTarget().end();
  const auto backend = workspace::workspaceOf(cmd::currentSession()).views.offscreen();
  viewport::FrameSettings frame;
  frame.camera = projection.camera();
  frame.port = projection.port();
  if (!backend || !(*backend)->beginFrame(frame)) return false;
  (*backend)->endFrame();
  if (directTarget().begin()) return true;
  directTarget().end();
  return false;
}

}  // namespace

MPxSurfaceShapeUI* shapeUiOf(dg::Node& node) {
  auto* shape = dynamic_cast<MPxSurfaceShape*>(userNodeOf(node));
  auto* rep = shape ? Access::rep<PxNodeRep>(static_cast<const MPxNode&>(*shape)) : nullptr;
  if (!rep || !rep->nodeClass || !rep->nodeClass->uiCreator) return nullptr;
  if (!rep->ui) {
    const auto make = [&] { return static_cast<MPxSurfaceShapeUI*>(rep->nodeClass->uiCreator()); };
    rep->ui.reset(fenced(node, "Making what draws", make, nullptr));
    if (rep->ui) UiDoor::attach(*rep->ui, shape);
  }
  return rep->ui.get();
}

void drawByUi(MPxSurfaceShapeUI& ui, const workspace::View& view, const scene::DagPath& path,
              viewport::Backend& backend) {
  MDrawInfo info;
  UiDoor::fill(info, view, path);
  MDrawRequestQueue queue;
  const bool isActiveOnly = info.displayStatus() != M3dView::kHilite;
  const auto call = [&] {
    ui.getDrawRequests(info, isActiveOnly, queue);
    return true;
  };
  (void)fenced(*path.node(), "getDrawRequests", call, false);
  std::vector<MDrawRequest> last;
  while (!queue.isEmpty()) {
    MDrawRequest request = queue.remove();
    if (request.drawLast())
      last.push_back(std::move(request));
    else
      drawRequest(ui, view, request, backend);
  }
  for (const MDrawRequest& request : last) drawRequest(ui, view, request, backend);
}

std::optional<viewport::PickAnswer> askUi(const std::string& panel, const scene::DagPath& path,
                                          const viewport::ViewProjection& projection,
                                          const viewport::PickQuestion& question) {
  MPxSurfaceShapeUI* ui = shapeUiOf(*path.node());
  workspace::View* view = workspace::workspaceOf(cmd::currentSession()).views.find(panel);
  if (!ui || !view || directTarget().isOpen()) return {};
  MSelectInfo info;
  const math::Matrix4 modelView = path.inclusiveMatrix() * projection.view();
  UiDoor::fill(info, *view, path);
  UiDoor::ask(info, question, modelView);
  if (!openSection(projection)) return {};
  viewport::setDirectView(modelView,
                          projection.projection() * closeUp(question, projection.port()));
  MSelectionList items;
  MPointArray places;
  hasNoSay() = false;
  const bool isHit = fenced(
      *path.node(), "select", [&] { return ui->select(info, items, places); }, false);
  while (directTarget().isOpen()) directTarget().end();
  if (hasNoSay()) return {};
  viewport::PickAnswer answer;
  if (!isHit) return answer;
  // A class adds the path that it is asked about, which is the shape's: selected is its object.
  for (scene::SelectionItem item : listOf(items).items()) {
    if (item.isDag() && item.isObject() && scene::isShape(*item.node)) {
      item.path = item.path.transform();
      item.node = item.path.node()->shared_from_this();
    }
    answer.items.merge(item);
  }
  for (unsigned int i = 0; i < places.length(); ++i)
    answer.places.push_back({places[i].x, places[i].y, places[i].z});
  return answer;
}

}  // namespace host::api

using namespace host;

MPxSurfaceShapeUI::MPxSurfaceShapeUI() = default;
MPxSurfaceShapeUI::~MPxSurfaceShapeUI() = default;
void MPxSurfaceShapeUI::getDrawRequests(const MDrawInfo&, bool, MDrawRequestQueue&) {}
void MPxSurfaceShapeUI::draw(const MDrawRequest&, M3dView&) const {}
bool MPxSurfaceShapeUI::select(MSelectInfo&, MSelectionList&, MPointArray&) const {
  api::hasNoSay() = true;
  return false;
}
bool MPxSurfaceShapeUI::snap(MSelectInfo&) const {
  return false;
}
MMaterial MPxSurfaceShapeUI::material(MDagPath&) const {
  return {};
}

bool MDrawInfo::objectDisplayStatus(M3dView::DisplayObjects objects) const {
  return (view_.objectDisplay() & static_cast<unsigned int>(objects)) != 0;
}
bool MDrawInfo::canDrawComponent(bool isDisplayOn, const MSelectionMask&) const {
  return isDisplayOn || status_ == M3dView::kHilite || status_ == M3dView::kActiveComponent;
}
MDrawRequest MDrawInfo::getPrototype(const MPxSurfaceShapeUI&) const {
  return MDrawRequest(*this);
}
MDrawRequest::MDrawRequest(const MDrawInfo& info)
    : path_(info.path_),
      view_(info.view_),
      projection_(info.projection_),
      style_(info.style_),
      status_(info.status_) {}
int MDrawRequest::color(M3dView::ColorTable table) const {
  return color_ >= 0 && table == table_ ? color_ : -1;
}
void MDrawRequest::setColor(int color, M3dView::ColorTable table) {
  color_ = color;
  table_ = table;
}

bool MSelectInfo::selectable(MSelectionMask& mask) const {
  return picksObjects_ && mask.intersects(MSelectionMask::kSelectObjectsMask);
}
bool MSelectInfo::selectableComponent(bool displayed, MSelectionMask& mask) const {
  if (!displayed || (isHilitedOnly_ && displayStatus() != M3dView::kHilite)) return false;
  MSelectionMask points(MSelectionMask::kSelectMeshVerts);
  for (const auto other : {MSelectionMask::kSelectCVs, MSelectionMask::kSelectLatticePoints,
                           MSelectionMask::kSelectEditPoints})
    points.addMask(other);
  return (picksVertices_ && mask.intersects(points)) ||
         (picksEdges_ && mask.intersects(MSelectionMask::kSelectMeshEdges)) ||
         (picksFaces_ && mask.intersects(MSelectionMask::kSelectMeshFaces));
}
bool MSelectInfo::getLocalRay(MPoint& position, MVector& direction) const {
  if (!isSingle_) return false;
  const MStatus found = view_.viewToObjectSpace(
      static_cast<short>(x_ + width_ / 2), static_cast<short>(y_ + height_ / 2),
      path_.inclusiveMatrixInverse(), position, direction);
  return found == MStatus::kSuccess;
}
MMatrix MSelectInfo::getAlignmentMatrix() const {
  return alignment_;
}
MStatus MSelectInfo::addSelection(const MSelectionList& item, const MPoint& point,
                                  MSelectionList& selectionList, MPointArray& worldSpaceSelectedPts,
                                  const MSelectionMask&, bool) const {
  if (item.isEmpty()) return MStatus::kInvalidParameter;
  if (isSingle_ && !selectionList.isEmpty() && worldSpaceSelectedPts.length() > 0) {
    const MMatrix toViewer = path_.inclusiveMatrixInverse() * alignment_;
    if ((point * toViewer).z <= (worldSpaceSelectedPts[0] * toViewer).z) return MStatus::kSuccess;
    selectionList.clear();
    worldSpaceSelectedPts.clear();
  }
  worldSpaceSelectedPts.append(point);
  return selectionList.merge(item);
}

namespace {

const viewport::Rgba kShine{0.25f, 0.25f, 0.25f, 1};
constexpr float kShininess = 20;

}  // namespace

MStatus MMaterial::evaluateMaterial(M3dView& view, const MDagPath& path) {
  return api::viewOf(view) && path.isValid() ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus MMaterial::getColor(MColor& color) const {
  color = api::toMColor(viewport::displayColors().surface);
  return MStatus::kSuccess;
}
MStatus MMaterial::getSpecular(MColor& color) const {
  color = api::toMColor(kShine);
  return MStatus::kSuccess;
}
MStatus MMaterial::getShininess(float& shininess) const {
  shininess = kShininess;
  return MStatus::kSuccess;
}
MStatus MMaterial::setMaterial(const MDagPath&, bool) {
  if (!api::directTarget().isDrawing()) return MStatus::kFailure;
  viewport::setDirectMaterial(viewport::displayColors().surface, kShine, kShininess);
  return MStatus::kSuccess;
}
