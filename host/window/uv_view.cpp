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
#include "host/window/uv_pick.h"
#include "host/workspace/materials.h"
#include "host/workspace/workspace.h"

namespace host::window {
namespace {

using scene::ComponentType;
using workspace::workspaceOf;

constexpr double kReach = 8;  // pixels
const QColor kSelected(255, 190, 60);

}  // namespace

UvView::UvView(Person& person, QWidget* parent) : QWidget(parent), person_(person) {
  setMinimumSize(120, 120);
  setObjectName("uvView");
  setAccessibleName("uvView");
}

void UvView::follow() {
  scene::Document& document = person_.document();
  shown_.clear();
  if (auto items = nodes::meshItems(document.selection())) shown_ = std::move(*items);
  // Meshes whose components may be picked stay in sight when none of these is selected.
  if (auto more = nodes::meshItems(document.hilite()))
    for (nodes::MeshItem& item : *more) {
      const bool isThere = std::ranges::any_of(
          shown_, [&](const nodes::MeshItem& each) { return each.path == item.path; });
      item.components = {scene::Component(ComponentType::Uv)};
      if (!isThere) shown_.push_back(std::move(item));
    }
  std::erase_if(shown_, [](const nodes::MeshItem& item) { return item.mesh.uvSetCount() == 0; });
  texture_ = QImage();
  if (showsTexture_) readTexture();
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

void UvView::showStretch(bool isOn) {
  showsStretch_ = isOn;
  update();
}

void UvView::showTexture(bool isOn) {
  showsTexture_ = isOn;
  follow();
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
  QPainter painter(this);
  painter.fillRect(rect(), QColor(52, 55, 60));
  if (width() < 2 || height() < 2) return;
  const QRectF unit(toScreen(0, 1), toScreen(1, 0));
  if (!texture_.isNull()) {
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawImage(unit, texture_);
  }
  painter.setPen(QColor(80, 84, 90));
  for (int i = 0; i <= 10 && texture_.isNull(); ++i) {
    painter.drawLine(toScreen(i / 10.0, 0), toScreen(i / 10.0, 1));
    painter.drawLine(toScreen(0, i / 10.0), toScreen(1, i / 10.0));
  }
  drawMeshes(painter);
  painter.setPen(QColor(170, 175, 185));
  painter.drawRect(unit);
  if (band_) {
    painter.setPen(QPen(Qt::white, 1, Qt::DashLine));
    painter.drawRect(band_->normalized());
  }
}

void UvView::drawMeshes(QPainter& painter) {
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
  options.fill = showsStretch_ ? Fill::Stretch : texture_.isNull() ? Fill::Shells : Fill::None;
  io::Image image;
  for (const nodes::MeshItem& item : shown_) {
    const int set = std::max(item.mesh.currentUvSet(), 0);
    if (image.rgba.empty())
      image = builtins::drawUvs(item.mesh, set, options);
    else
      builtins::drawUvsOver(image, item.mesh, set, options);
  }
  if (!image.rgba.empty())
    painter.drawImage(0, 0,
                      QImage(image.rgba.data(), image.width, image.height, 4 * image.width,
                             QImage::Format_RGBA8888));
  painter.setRenderHint(QPainter::Antialiasing);
  for (const nodes::MeshItem& item : shown_)
    if (!item.isObject()) drawSelected(painter, item, std::max(item.mesh.currentUvSet(), 0));
}

void UvView::drawSelected(QPainter& painter, const nodes::MeshItem& item, int uvSet) const {
  const mesh::Mesh& mesh = item.mesh;
  const mesh::UvSet& set = mesh.uvSet(uvSet);
  if (set.cornerIds.empty()) return;
  const mesh::Adjacency& adjacency = mesh.adjacency();
  const auto place = [&](CornerId c) -> std::optional<QPointF> {
    const UvId id = set.cornerIds[static_cast<std::size_t>(c)];
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
  update();
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
  update();
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
    const int set = std::max(item.mesh.currentUvSet(), 0);
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
    for (const auto& uv : item.mesh.uvSet(std::max(item.mesh.currentUvSet(), 0)).points) {
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
  update();
}

void UvView::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  const auto toggle = [&](const QString& name, bool isOn) {
    QAction* action = menu.addAction(name);
    action->setCheckable(true);
    action->setChecked(isOn);
    return action;
  };
  const QAction* stretch = toggle(tr("Stretch"), showsStretch_);
  const QAction* texture = toggle(tr("Texture"), showsTexture_);
  const QAction* frame = menu.addAction(tr("Frame All"));
  const QAction* chosen = menu.exec(event->globalPos());
  if (!chosen) return;
  if (chosen == stretch) showStretch(stretch->isChecked());
  if (chosen == texture) showTexture(texture->isChecked());
  if (chosen == frame) frameAll();
}

}  // namespace host::window
