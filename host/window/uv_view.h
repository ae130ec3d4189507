#pragma once

#include <QImage>
#include <QWidget>
#include <optional>
#include <vector>

#include "host/nodes/mesh_components.h"
#include "host/window/person.h"

namespace host::window {

/// The current UV set of the meshes that are selected or whose components are: shells in colours,
/// faces by their stretch, or lines over the texture that the mesh shows.
///
/// What is selected in the scene stands out, and what is picked here is selected there: a click or
/// a frame, with Shift to turn over and Ctrl to take away. UVs are picked, or edges, faces and
/// vertices where these alone are what a click in a view picks. The wheel zooms; Alt or the other
/// buttons and a drag move.
class UvView : public QWidget {
 public:
  explicit UvView(Person& person, QWidget* parent = nullptr);
  void follow();
  void showStretch(bool isOn);
  void showTexture(bool isOn);

 protected:
  void paintEvent(QPaintEvent*) override;
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  [[nodiscard]] QPointF toScreen(double u, double v) const;
  [[nodiscard]] QPointF toUv(const QPointF& at) const;
  [[nodiscard]] scene::ComponentType pickedType() const;
  void readTexture();
  void drawMeshes(QPainter& painter);
  void drawSelected(QPainter& painter, const nodes::MeshItem& item, int uvSet) const;
  void pick(const QRectF& frame, bool isClick, Qt::KeyboardModifiers modifiers);
  void frameAll();

  Person& person_;
  std::vector<nodes::MeshItem> shown_;  ///< with what of them is selected
  QImage texture_;
  QPointF center_{0.5, 0.5}, grabbed_;
  std::optional<QRectF> band_;  ///< while a frame is drawn
  double span_ = 1.15;          ///< of v over the height of the widget
  bool showsStretch_ = false, showsTexture_ = false, isMoving_ = false;
};

}  // namespace host::window
