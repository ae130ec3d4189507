#include "host/window/uv_view.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>
#include <cmath>

#include "host/builtins/uv/uv_picture.h"
#include "host/nodes/mesh_shape.h"

namespace host::window {

UvView::UvView(Person& person, QWidget* parent) : QWidget(parent), person_(person) {
  setMinimumSize(120, 120);
  setObjectName("uvView");
  setAccessibleName("uvView");
}

void UvView::showStretch(bool isOn) {
  showsStretch_ = isOn;
  update();
}

void UvView::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.fillRect(rect(), QColor(52, 55, 60));
  if (width() < 2 || height() < 2) return;
  const double across = span_ * width() / height();
  builtins::UvPictureOptions options;
  options.width = width();
  options.height = height();
  options.uMin = center_.x() - across / 2;
  options.uMax = center_.x() + across / 2;
  options.vMin = center_.y() - span_ / 2;
  options.vMax = center_.y() + span_ / 2;
  options.fill = showsStretch_ ? builtins::UvPictureOptions::Fill::Stretch
                               : builtins::UvPictureOptions::Fill::Shells;
  const auto place = [&](double u, double v) {
    return QPointF((u - options.uMin) / across * width(), (options.vMax - v) / span_ * height());
  };
  io::Image image;
  for (const scene::SelectionItem& item : person_.document().selection().items()) {
    const scene::DagPath shape = item.isDag() ? item.path.toShape() : scene::DagPath();
    if (shape.isWorld() || !shape.node()->type().isA("mesh")) continue;
    const auto mesh = nodes::evaluatedMesh(*shape.node());
    if (!mesh || mesh->uvSetCount() == 0) continue;
    const int set = std::max(mesh->currentUvSet(), 0);
    if (image.rgba.empty())
      image = builtins::drawUvs(*mesh, set, options);
    else
      builtins::drawUvsOver(image, *mesh, set, options);
  }
  painter.setPen(QColor(80, 84, 90));
  for (int i = 0; i <= 10; ++i) {
    painter.drawLine(place(i / 10.0, 0), place(i / 10.0, 1));
    painter.drawLine(place(0, i / 10.0), place(1, i / 10.0));
  }
  if (!image.rgba.empty())
    painter.drawImage(0, 0,
                      QImage(image.rgba.data(), image.width, image.height, 4 * image.width,
                             QImage::Format_RGBA8888));
  painter.setPen(QColor(170, 175, 185));
  painter.drawRect(QRectF(place(0, 1), place(1, 0)));
}

void UvView::wheelEvent(QWheelEvent* event) {
  span_ = std::clamp(span_ * std::pow(0.999, event->angleDelta().y()), 1e-4, 1e3);
  update();
}

void UvView::mousePressEvent(QMouseEvent* event) {
  grabbed_ = event->position();
}

void UvView::mouseMoveEvent(QMouseEvent* event) {
  if (event->buttons() == Qt::NoButton) return;
  const QPointF by = event->position() - grabbed_;
  grabbed_ = event->position();
  center_ += QPointF(-by.x(), by.y()) * span_ / height();
  update();
}

void UvView::contextMenuEvent(QContextMenuEvent* event) {
  QMenu menu(this);
  QAction* stretch = menu.addAction(tr("Stretch"));
  stretch->setCheckable(true);
  stretch->setChecked(showsStretch_);
  QAction* frame = menu.addAction(tr("Frame"));
  const QAction* chosen = menu.exec(event->globalPos());
  if (chosen == stretch) showStretch(stretch->isChecked());
  if (chosen == frame) {
    center_ = {0.5, 0.5};
    span_ = 1.15;
    update();
  }
}

}  // namespace host::window
