#include "host/window/uv_view.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

#include "host/builtins/uv/uv_picture.h"
#include "host/edits/select.h"
#include "host/mesh/adjacency.h"
#include "host/mesh/shells.h"
#include "host/nodes/uv_pins.h"
#include "host/window/uv_pick.h"
#include "host/workspace/materials.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using scene::ComponentType;
using workspace::workspaceOf;

constexpr double kReach = 8;  // pixels
const QColor kSelected(255, 190, 60);

int setOf(const nodes::MeshItem& item) {
  return std::max(item.mesh.currentUvSet(), 0);
}

/// Whether two readings of a mesh have one map: the same arrays, which nobody writes while both
/// hold them.
bool isSameMap(const nodes::MeshItem& a, const nodes::MeshItem& b, bool withPoints) {
  if (!(a.path == b.path) || setOf(a) != setOf(b) || a.mesh.faceCount() != b.mesh.faceCount())
    return false;
  const mesh::UvSet &x = a.mesh.uvSet(setOf(a)), &y = b.mesh.uvSet(setOf(b));
  if (x.points.data() != y.points.data() || x.cornerIds.data() != y.cornerIds.data()) return false;
  if (withPoints && a.mesh.points().data() != b.mesh.points().data()) return false;
  return a.mesh.sharesTopologyWith(b.mesh);
}

}  // namespace

UvView::UvView(Person& person, QWidget* parent) : QWidget(parent), person_(person) {
  setMinimumSize(120, 120);
  setObjectName("uvView");
  setAccessibleName("uvView");
}

std::vector<nodes::MeshItem> UvView::meshesOfScene() const {
  scene::Document& document = person_.document();
  std::vector<nodes::MeshItem> meshes;
  if (auto items = nodes::meshItems(document.selection())) meshes = std::move(*items);
  // Meshes whose components may be picked stay in sight when none of these is selected.
  if (auto more = nodes::meshItems(document.hilite()))
    for (nodes::MeshItem& item : *more) {
      const bool isThere = std::ranges::any_of(
          meshes, [&](const nodes::MeshItem& each) { return each.path == item.path; });
      item.components = {scene::Component(ComponentType::Uv)};
      if (!isThere) meshes.push_back(std::move(item));
    }
  std::erase_if(meshes, [](const nodes::MeshItem& item) { return item.mesh.uvSetCount() == 0; });
  return meshes;
}

void UvView::follow() {
  std::vector<nodes::MeshItem> meshes = meshesOfScene();
  const UvDisplay display = UvDisplay::read(person_.session().optionVars());
  std::vector<std::vector<float>> pins;
  for (const nodes::MeshItem& item : meshes)
    pins.push_back(display.pins ? nodes::uvPins(*item.path.node(), item.mesh, setOf(item))
                                : std::vector<float>());
  // A map of many faces is not drawn anew for everything that is done in the scene.
  const bool isSame = display == display_ && !display.texture && pins == pins_ &&
                      std::ranges::equal(meshes, shown_, [&](const auto& a, const auto& b) {
                        return isSameMap(a, b, display.fill == UvDisplay::Fill::Stretch);
                      });
  shown_ = std::move(meshes);
  pins_ = std::move(pins);
  display_ = display;
  texture_ = QImage();
  if (display_.texture) readTexture();
  if (!isSame) return redraw();
  picture_ = QImage();
  update();
}

void UvView::redraw() {
  map_ = picture_ = QImage();
  update();
}

/// The texture of the first material, as the views have it.
void UvView::readTexture() {
  if (shown_.empty()) return;
  workspace::Views& views = workspaceOf(person_.session()).views;
  workspace::View view = views.active();
  view.options.showTextures = true;
  auto scene = workspace::gatherView(person_.document(), view);
  if (!scene) return;
  views.materials().dress(person_.document(), *scene);
  for (const viewport::RenderMesh& mesh : scene->meshes) {
    if (!(mesh.path == shown_.front().path)) continue;
    for (const viewport::MaterialPtr& material : mesh.materials) {
      if (!material || !material->texture) continue;
      const viewport::Texture& picture = *material->texture;
      texture_ = QImage(picture.rgba.data(), picture.width, picture.height, 4 * picture.width,
                        QImage::Format_RGBA8888)
                     .mirrored();
      return;
    }
  }
}

QPointF UvView::toScreen(double u, double v) const {
  return {width() / 2.0 + (u - center_.x()) * height() / span_,
          height() / 2.0 - (v - center_.y()) * height() / span_};
}

QPointF UvView::toUv(const QPointF& at) const {
  return {center_.x() + (at.x() - width() / 2.0) * span_ / height(),
          center_.y() - (at.y() - height() / 2.0) * span_ / height()};
}

void UvView::paintEvent(QPaintEvent*) {
  if (width() < 2 || height() < 2) return;
  if (map_.isNull()) map_ = drawMap();
  if (picture_.isNull()) {
    picture_ = map_;
    QPainter over(&picture_);
    over.setRenderHint(QPainter::Antialiasing);
    for (const nodes::MeshItem& item : shown_)
      if (!item.isObject()) drawSelected(over, item, setOf(item));
  }
  QPainter painter(this);
  painter.drawImage(0, 0, picture_);
  if (band_) {
    painter.setPen(QPen(Qt::white, 1, Qt::DashLine));
    painter.drawRect(band_->normalized());
  }
}

/// What lies below the map: a grid of tenths, squares, or the texture.
void UvView::drawGround(QPainter& painter) const {
  painter.fillRect(rect(), QColor(52, 55, 60));
  const QRectF unit(toScreen(0, 1), toScreen(1, 0));
  if (!texture_.isNull()) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(unit, texture_);
    return;
  }
  constexpr int kSquares = 10;
  const auto at = [](int i) { return static_cast<double>(i) / kSquares; };
  if (display_.checker) {
    for (int row = 0; row < kSquares; ++row)
      for (int column = 0; column < kSquares; ++column)
        painter.fillRect(
            QRectF(toScreen(at(column), at(row + 1)), toScreen(at(column + 1), at(row))),
            (row + column) % 2 == 0 ? QColor(70, 73, 79) : QColor(112, 116, 123));
    return;
  }
  painter.setPen(QColor(80, 84, 90));
  for (int i = 0; i <= kSquares; ++i) {
    painter.drawLine(toScreen(at(i), 0), toScreen(at(i), 1));
    painter.drawLine(toScreen(0, at(i)), toScreen(1, at(i)));
  }
}

QImage UvView::drawMap() const {
  QImage all(size(), QImage::Format_RGB32);
  QPainter painter(&all);
  drawGround(painter);
  using Fill = builtins::UvPictureOptions::Fill;
  builtins::UvPictureOptions options;
  options.width = width();
  options.height = height();
  const QPointF low = toUv({0.0, static_cast<double>(height())});
  const QPointF high = toUv({static_cast<double>(width()), 0.0});
  options.uMin = low.x();
  options.uMax = high.x();
  options.vMin = low.y();
  options.vMax = high.y();
  options.fill = display_.fill == UvDisplay::Fill::Stretch ? Fill::Stretch
                 : display_.fill == UvDisplay::Fill::None  ? Fill::None
                                                           : Fill::Shells;
  io::Image image;
  for (const nodes::MeshItem& item : shown_) {
    const int set = setOf(item);
    if (image.rgba.empty())
      image = builtins::drawUvs(item.mesh, set, options);
    else
      builtins::drawUvsOver(image, item.mesh, set, options);
  }
  if (!image.rgba.empty()) {
    // What lies below stays in sight through filled faces.
    const bool hasGround = display_.checker || !texture_.isNull();
    if (hasGround && options.fill != Fill::None) painter.setOpacity(0.55);
    painter.drawImage(0, 0,
                      QImage(image.rgba.data(), image.width, image.height, 4 * image.width,
                             QImage::Format_RGBA8888));
    painter.setOpacity(1);
  }
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QColor(170, 175, 185));
  painter.drawRect(QRectF(toScreen(0, 1), toScreen(1, 0)));
  for (std::size_t i = 0; i < shown_.size(); ++i) {
    const mesh::UvSet& set = shown_[i].mesh.uvSet(setOf(shown_[i]));
    if (set.cornerIds.empty()) continue;
    if (display_.borders) drawBorders(painter, shown_[i], setOf(shown_[i]));
    drawPins(painter, set, pins_[i]);
  }
  return all;
}

void UvView::drawBorders(QPainter& painter, const nodes::MeshItem& item, int uvSet) const {
  const mesh::UvSet& set = item.mesh.uvSet(uvSet);
  const mesh::Adjacency& adjacency = item.mesh.adjacency();
  const auto place = [&](CornerId c) -> std::optional<QPointF> {
    const UvId id = set.cornerIds[static_cast<std::size_t>(c)];
    if (id < 0) return std::nullopt;
    const auto& uv = set.points[static_cast<std::size_t>(id)];
    return toScreen(uv.u, uv.v);
  };
  painter.setPen(QPen(QColor(235, 240, 250), 2));
  for (const EdgeId e : mesh::uvBorderEdges(item.mesh, uvSet))
    for (const CornerId c : adjacency.edgeCorners(e)) {
      const auto a = place(c), b = place(adjacency.nextCorner(c));
      if (a && b) painter.drawLine(*a, *b);
    }
}

void UvView::drawPins(QPainter& painter, const mesh::UvSet& set,
                      const std::vector<float>& pins) const {
  painter.setPen(QPen(QColor(30, 35, 45), 1));
  for (std::size_t i = 0; i < pins.size() && i < set.points.size(); ++i) {
    if (!(pins[i] > 0)) continue;
    // A dot as full as the pin is firm.
    painter.setBrush(QColor(90, 200, 255, 90 + static_cast<int>(165 * std::min(pins[i], 1.0f))));
    painter.drawEllipse(toScreen(set.points[i].u, set.points[i].v), 4, 4);
  }
  painter.setBrush(Qt::NoBrush);
}

void UvView::drawSelected(QPainter& painter, const nodes::MeshItem& item, int uvSet) const {
  const mesh::Mesh& mesh = item.mesh;
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  if (set.cornerIds.empty()) return;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  const auto place = [&](CornerId c) -> std::optional<QPointF> {
    const UvId id = set.cornerIds[c];
    if (id < 0) return std::nullopt;
    const auto& uv = set.points[static_cast<std::size_t>(id)];
    return toScreen(uv.u, uv.v);
  };
  const auto dot = [&](const QPointF& at) {
    painter.fillRect(QRectF(at.x() - 2.5, at.y() - 2.5, 5, 5), kSelected);
  };
  for (const scene::Component& component : item.components) {
    switch (component.type()) {
      case ComponentType::Uv:
        for (const Index id : component.expanded(static_cast<Index>(set.points.size())))
          if (id < static_cast<Index>(set.points.size())) {
            const auto& uv = set.points[static_cast<std::size_t>(id)];
            dot(toScreen(uv.u, uv.v));
          }
        break;
      case ComponentType::Vertex:
        for (const VertexId v : component.expanded(mesh.vertexCount()))
          for (const CornerId c : adjacency.vertexCorners(v))
            if (const auto at = place(c)) dot(*at);
        break;
      case ComponentType::Edge:
        painter.setPen(QPen(kSelected, 2));
        for (const EdgeId e : component.expanded(mesh.edgeCount()))
          for (const CornerId c : adjacency.edgeCorners(e)) {
            const auto a = place(c), b = place(adjacency.nextCorner(c));
            if (a && b) painter.drawLine(*a, *b);
          }
        break;
      case ComponentType::Face:
        painter.setPen(QPen(kSelected, 1));
        painter.setBrush(QColor(255, 190, 60, 90));
        for (const FaceId f : component.expanded(mesh.faceCount())) {
          QPolygonF loop;
          for (CornerId c = mesh.firstCorner(f); c < mesh.firstCorner(f + 1); ++c)
            if (const auto at = place(c)) loop << *at;
          painter.drawPolygon(loop);
        }
        painter.setBrush(Qt::NoBrush);
        break;
      case ComponentType::VertexFace:
        break;
    }
  }
}

void UvView::wheelEvent(QWheelEvent* event) {
  // What is under the pointer stays there.
  const QPointF before = toUv(event->position());
  span_ = std::clamp(span_ * std::pow(0.999, event->angleDelta().y()), 1e-4, 1e3);
  center_ += before - toUv(event->position());
  redraw();
}

void UvView::mousePressEvent(QMouseEvent* event) {
  grabbed_ = event->position();
  isMoving_ = event->button() == Qt::MiddleButton || (event->modifiers() & Qt::AltModifier) != 0;
  if (event->button() == Qt::LeftButton && !isMoving_) band_ = QRectF(grabbed_, grabbed_);
}

void UvView::mouseMoveEvent(QMouseEvent* event) {
  if (band_) {
    band_->setBottomRight(event->position());
    return update();
  }
  if (!isMoving_ || event->buttons() == Qt::NoButton) return;
  const QPointF by = event->position() - grabbed_;
  grabbed_ = event->position();
  center_ += QPointF(-by.x(), by.y()) * span_ / height();
  redraw();
}

void UvView::mouseReleaseEvent(QMouseEvent* event) {
  isMoving_ = false;
  if (!band_) return;
  const QRectF frame = band_->normalized();
  band_.reset();
  constexpr double kClick = 3;  // pixels that a click may slip
  pick(frame, frame.width() < kClick && frame.height() < kClick, event->modifiers());
  update();
}

ComponentType UvView::pickedType() const {
  const auto& kinds = workspaceOf(person_.session()).selectionModes.componentTypes;
  const auto isOnly = [&](const char* kind) { return kinds.size() == 1 && kinds.contains(kind); };
  if (!workspaceOf(person_.session()).selectionModes.isComponentMode) return ComponentType::Uv;
  if (isOnly("edge") || isOnly("polymeshEdge")) return ComponentType::Edge;
  if (isOnly("facet") || isOnly("polymeshFace")) return ComponentType::Face;
  return ComponentType::Uv;
}

void UvView::pick(const QRectF& frame, bool isClick, Qt::KeyboardModifiers modifiers) {
  const ComponentType type = pickedType();
  const QPointF low = toUv(frame.bottomLeft()), high = toUv(frame.topRight());
  const UvRect rect{low.x(), high.x(), low.y(), high.y()};
  scene::SelectionList list;
  for (const nodes::MeshItem& item : shown_) {
    const int set = setOf(item);
    std::vector<Index> ids;
    if (!isClick) {
      ids = uvComponentsIn(item.mesh, set, type, rect);
    } else if (const auto id = uvComponentAt(item.mesh, set, type, low.x(), low.y(),
                                             kReach * span_ / height())) {
      ids = {*id};
    }
    if (!ids.empty()) list.add(item.path, scene::Component(type, std::move(ids)));
    if (isClick && !list.isEmpty()) break;
  }
  const edits::SelectHow how = (modifiers & Qt::ControlModifier) != 0 ? edits::SelectHow::Remove
                               : (modifiers & Qt::ShiftModifier) != 0 ? edits::SelectHow::Toggle
                                                                      : edits::SelectHow::Replace;
  if (list.isEmpty() && how != edits::SelectHow::Replace) return;
  person_.edit("select", [&]() -> Result<void> {
    scene::Document& document = person_.document();
    // The meshes stay in sight, and ready to be picked in the views too.
    scene::SelectionList objects;
    for (const nodes::MeshItem& item : shown_) objects.add(item.path.transform());
    edits::hilite(document, objects, edits::SelectHow::Add);
    // An object that is selected whole is not what one of its UVs is added to.
    if (how != edits::SelectHow::Replace) {
      scene::SelectionList whole;
      for (const scene::SelectionItem& item : document.selection().items())
        if (item.isDag() && item.isObject()) whole.add(item.path);
      if (!whole.isEmpty()) edits::select(document, whole, edits::SelectHow::Remove);
    }
    edits::select(document, list, how);
    return {};
  });
}

void UvView::frameAll() {
  double low[2] = {0, 0}, high[2] = {1, 1};
  bool isFirst = true;
  for (const nodes::MeshItem& item : shown_)
    for (const auto& uv : item.mesh.uvSet(setOf(item)).points) {
      const double place[2] = {uv.u, uv.v};
      for (int i = 0; i < 2; ++i) {
        low[i] = isFirst ? place[i] : std::min(low[i], place[i]);
        high[i] = isFirst ? place[i] : std::max(high[i], place[i]);
      }
      isFirst = false;
    }
  center_ = {(low[0] + high[0]) / 2, (low[1] + high[1]) / 2};
  const double across = (high[0] - low[0]) * height() / std::max(width(), 1);
  span_ = std::clamp(1.15 * std::max(across, high[1] - low[1]), 1e-4, 1e3);
  redraw();
}

void UvView::fillShowMenu(QMenu& menu) {
  cmd::OptionVars& kept = person_.session().optionVars();
  const auto add = [&](const QString& name, bool isOn, auto set) {
    QAction* action = menu.addAction(name);
    action->setCheckable(true);
    action->setChecked(isOn);
    connect(action, &QAction::triggered, this, [this, &kept, set](bool isNowOn) {
      UvDisplay display = UvDisplay::read(kept);
      set(display, isNowOn);
      display.store(kept);
      person_.lookSoon(Person::kPanels);
    });
  };
  using Fill = UvDisplay::Fill;
  const UvDisplay now = UvDisplay::read(kept);
  add(tr("Shells"), now.fill == Fill::Shells,
      [](UvDisplay& d, bool isOn) { d.fill = isOn ? Fill::Shells : Fill::None; });
  add(tr("Stretch"), now.fill == Fill::Stretch,
      [](UvDisplay& d, bool isOn) { d.fill = isOn ? Fill::Stretch : Fill::None; });
  menu.addSeparator();
  add(tr("Borders"), now.borders, [](UvDisplay& d, bool isOn) { d.borders = isOn; });
  add(tr("Pins"), now.pins, [](UvDisplay& d, bool isOn) { d.pins = isOn; });
  menu.addSeparator();
  add(tr("Texture"), now.texture, [](UvDisplay& d, bool isOn) { d.texture = isOn; });
  add(tr("Checker"), now.checker, [](UvDisplay& d, bool isOn) { d.checker = isOn; });
  menu.addSeparator();
  connect(menu.addAction(tr("Frame All")), &QAction::triggered, this, [this] { frameAll(); });
}

void UvView::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  fillShowMenu(menu);
  menu.exec(event->globalPos());
}

}  // namespace host::window
