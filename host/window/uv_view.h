#pragma once

#include <QImage>
#include <QWidget>
#include <optional>
#include <vector>

#include "host/nodes/mesh_components.h"
#include "host/window/person.h"
#include "host/window/uv_display.h"

class QMenu;

namespace host::window {

/// The current UV set of the meshes that are selected or whose components are: shells in colours,
/// faces by their stretch, or lines alone, over squares or the texture that the mesh shows, with
/// the shells' borders and pinned UVs.
///
/// What is selected in the scene stands out, and what is picked here is selected there: a click or
/// a frame, with Shift to turn over and Ctrl to take away. UVs are picked, or edges, faces and
/// vertices where these alone are what a click in a view picks. The wheel zooms; Alt or the other
/// buttons and a drag move.
class UvView : public QWidget {
 public:
  explicit UvView(Person& person, QWidget* parent = nullptr);
  void follow();
  /// What can be shown, as items of a menu.
  void fillShowMenu(QMenu& menu);
  [[nodiscard]] const std::vector<nodes::MeshItem>& shown() const { return shown_; }

 protected:
  void paintEvent(QPaintEvent*) override;
  void resizeEvent(QResizeEvent*) override { redraw(); }
  void wheelEvent(QWheelEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void contextMenuEvent(QContextMenuEvent* event) override;

 private:
  [[nodiscard]] QPointF toScreen(double u, double v) const;
  [[nodiscard]] QPointF toUv(const QPointF& at) const;
  [[nodiscard]] scene::ComponentType pickedType() const;
  void redraw();
  void readTexture();
  [[nodiscard]] std::vector<nodes::MeshItem> meshesOfScene() const;
  void drawGround(QPainter& painter) const;
  [[nodiscard]] QImage drawMap() const;
  void drawBorders(QPainter& painter, const nodes::MeshItem& item, int uvSet) const;
  void drawPins(QPainter& painter, const mesh::UvSet& set, const std::vector<float>& pins) const;
  void drawSelected(QPainter& painter, const nodes::MeshItem& item, int uvSet) const;
  void pick(const QRectF& frame, bool isClick, Qt::KeyboardModifiers modifiers);
  void frameAll();

  Person& person_;
  std::vector<nodes::MeshItem> shown_;    ///< with what of them is selected
  std::vector<std::vector<float>> pins_;  ///< of each, when they show
  QImage texture_;
  QPointF center_{0.5, 0.5}, grabbed_;
  std::optional<QRectF> band_;  ///< while a frame is drawn
  double span_ = 1.15;          ///< of v over the height of the widget
  UvDisplay display_;
  QImage map_;      ///< all but what is selected; null when it is out of date
  QImage picture_;  ///< all but the frame; null when it is out of date
  bool isMoving_ = false;
};

}  // namespace host::window
