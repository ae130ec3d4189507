#include "host/window/icons.h"

#include <QDir>
#include <QFileInfo>
#include <QPainter>
#include <QPainterPath>
#include <array>
#include <cmath>
#include <utility>

namespace host::window {
namespace {

constexpr double kSide = 24;

/// A cube from above a corner: its outline and the three edges at the near corner.
struct CubePicture {
  std::array<QPointF, 6> rim{QPointF(12, 3),  QPointF(20, 7.5), QPointF(20, 16.5),
                             QPointF(12, 21), QPointF(4, 16.5), QPointF(4, 7.5)};
  QPointF middle{12, 12};

  [[nodiscard]] QPolygonF face(std::size_t i) const {
    return {{rim[i], rim[(i + 1) % 6], rim[(i + 2) % 6], middle}};
  }
  void fill(QPainter& painter, const std::array<QColor, 3>& colors) const {
    // Top, right and left.
    const std::array<std::size_t, 3> first{5, 1, 3};
    for (std::size_t i = 0; i < 3; ++i) {
      painter.setBrush(colors[i]);
      painter.drawPolygon(face(first[i]));
    }
    painter.setBrush(Qt::NoBrush);
  }
  void lines(QPainter& painter) const {
    painter.drawPolygon(rim.data(), 6);
    for (const std::size_t i : {1U, 3U, 5U}) painter.drawLine(middle, rim[i]);
  }
};

void arrow(QPainter& painter, QPointF from, QPointF to) {
  painter.drawLine(from, to);
  const QPointF along = (to - from) / std::hypot(to.x() - from.x(), to.y() - from.y()) * 3.5;
  const QPointF across(-along.y(), along.x());
  painter.drawPolyline(QPolygonF{{to - along + across, to, to - along - across}});
}

void drawTool(QPainter& painter, DrawnIcon which) {
  switch (which) {
    case DrawnIcon::Select: {
      const QPolygonF pointer{
          {{7, 3}, {7, 19}, {11, 15.5}, {13.5, 21}, {16, 20}, {13.5, 14.5}, {18.5, 14}}};
      painter.drawPolygon(pointer);
      break;
    }
    case DrawnIcon::Move:
      for (const QPointF end : {QPointF(12, 3), QPointF(12, 21), QPointF(3, 12), QPointF(21, 12)})
        arrow(painter, {12, 12}, end);
      break;
    case DrawnIcon::Rotate:
      painter.drawArc(QRectF(4, 4, 16, 16), 40 * 16, 290 * 16);
      arrow(painter, {16.5, 5.2}, {19.5, 9.5});
      break;
    case DrawnIcon::Scale:
      painter.drawRect(QRectF(4, 13, 7, 7));
      painter.drawRect(QRectF(4, 4, 16, 16));
      arrow(painter, {10, 14}, {17.5, 6.5});
      break;
    default:
      break;
  }
}

void drawDisplay(QPainter& painter, DrawnIcon which) {
  const CubePicture cube;
  const QColor pen = painter.pen().color();
  const auto mixed = [&](int alpha) { return QColor(pen.red(), pen.green(), pen.blue(), alpha); };
  switch (which) {
    case DrawnIcon::Wireframe:
      cube.lines(painter);
      break;
    case DrawnIcon::Shaded:
      cube.fill(painter, {mixed(230), mixed(150), mixed(80)});
      break;
    case DrawnIcon::Textured:
      cube.fill(painter, {QColor(210, 150, 70), QColor(120, 150, 90), QColor(80, 120, 180)});
      break;
    case DrawnIcon::Lights:
      painter.drawEllipse(QPointF(12, 12), 4, 4);
      for (int i = 0; i < 8; ++i) {
        const double angle = i * 0.7853981634;
        const QPointF out(std::cos(angle), std::sin(angle));
        painter.drawLine(QPointF(12, 12) + out * 6.5, QPointF(12, 12) + out * 9.5);
      }
      break;
    case DrawnIcon::Grid:
      for (int i = 0; i < 4; ++i) {
        painter.drawLine(QPointF(4, 4 + i * 16 / 3.0), QPointF(20, 4 + i * 16 / 3.0));
        painter.drawLine(QPointF(4 + i * 16 / 3.0, 4), QPointF(4 + i * 16 / 3.0, 20));
      }
      break;
    case DrawnIcon::Panes:
      painter.drawRect(QRectF(3, 4, 18, 16));
      painter.drawLine(QPointF(12, 4), QPointF(12, 20));
      painter.drawLine(QPointF(3, 12), QPointF(21, 12));
      break;
    case DrawnIcon::Frame:
      for (const auto& [x, y] :
           {std::pair(4, 4), std::pair(20, 4), std::pair(4, 20), std::pair(20, 20)}) {
        painter.drawLine(QPointF(x, y), QPointF(x < 12 ? x + 5 : x - 5, y));
        painter.drawLine(QPointF(x, y), QPointF(x, y < 12 ? y + 5 : y - 5));
      }
      painter.drawEllipse(QPointF(12, 12), 3.5, 3.5);
      break;
    default:
      break;
  }
}

void drawComponent(QPainter& painter, DrawnIcon which) {
  const CubePicture cube;
  const QColor accent(255, 190, 60);
  if (which == DrawnIcon::Face || which == DrawnIcon::Object)
    for (const std::size_t i : {5U, 1U, 3U}) {
      painter.setBrush(which == DrawnIcon::Object || i == 5U ? accent : QColor(Qt::transparent));
      painter.drawPolygon(cube.face(i));
    }
  painter.setBrush(Qt::NoBrush);
  cube.lines(painter);
  if (which == DrawnIcon::Edge) {
    painter.setPen(QPen(accent, 3));
    painter.drawLine(cube.middle, cube.rim[3]);
  }
  if (which == DrawnIcon::Vertex) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(accent);
    painter.drawEllipse(cube.middle, 3, 3);
  }
}

/// What scripts call some of the drawn ones.
const std::array<std::pair<const char*, DrawnIcon>, 15> kNames{
    {{"aselect", DrawnIcon::Select},
     {"move_M", DrawnIcon::Move},
     {"rotate_M", DrawnIcon::Rotate},
     {"scale_M", DrawnIcon::Scale},
     {"polyCube", DrawnIcon::Shaded},
     {"polyMesh", DrawnIcon::Shaded},
     {"WireFrame", DrawnIcon::Wireframe},
     {"Shaded", DrawnIcon::Shaded},
     {"Textured", DrawnIcon::Textured},
     {"grid", DrawnIcon::Grid},
     {"fourView", DrawnIcon::Panes},
     {"selectByObject", DrawnIcon::Object},
     {"vertex", DrawnIcon::Vertex},
     {"edge", DrawnIcon::Edge},
     {"face", DrawnIcon::Face}}};

QString fileOf(const QString& name) {
  if (QFileInfo(name).isAbsolute()) return QFileInfo(name).isFile() ? name : QString();
  for (QString folder : qEnvironmentVariable("XBMLANGPATH").split(':', Qt::SkipEmptyParts)) {
    // "%B" stands for the name there.
    if (folder.endsWith("%B")) folder.chop(2);
    const QString file = QDir(folder).filePath(name);
    if (QFileInfo(file).isFile()) return file;
  }
  return {};
}

}  // namespace

QIcon drawnIcon(DrawnIcon which) {
  constexpr int kScale = 2;
  QPixmap picture(static_cast<int>(kSide) * kScale, static_cast<int>(kSide) * kScale);
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  painter.scale(kScale, kScale);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(QPen(QColor(220, 222, 225), 1.4));
  drawTool(painter, which);
  drawDisplay(painter, which);
  if (which >= DrawnIcon::Object) drawComponent(painter, which);
  painter.end();
  picture.setDevicePixelRatio(kScale);
  return picture;
}

QIcon iconFor(const std::string& name) {
  const QString text = QString::fromStdString(name);
  if (text.isEmpty()) return {};
  const QString file = fileOf(text);
  // A picture that can't be read is none.
  if (!file.isEmpty()) {
    const QPixmap picture(file);
    return picture.isNull() ? QIcon() : QIcon(picture);
  }
  const QString stem = QFileInfo(text).completeBaseName();
  for (const auto& [known, which] : kNames)
    if (stem == known) return drawnIcon(which);
  return {};
}

}  // namespace host::window
