#pragma once

#include <maya/MColor.h>
#include <maya/MDoubleArray.h>
#include <maya/MMatrix.h>
#include <maya/MPointArray.h>
#include <maya/MUIDrawManager.h>

/// What a draw locator shows, in its own space.
struct locatorSets {
  MPointArray points;     ///< shown with a weight each; hidden when the numbers differ
  MDoubleArray weights;   ///< 0 red to 1 cyan
  MPointArray outline;    ///< a closed line
  MPointArray component;  ///< 1 point: a vertex; 2: an edge; 3 or more: a face's corners in order

  bool showsPoints() const { return points.length() > 0 && points.length() == weights.length(); }
  bool showsOutline() const { return outline.length() > 0; }
  bool showsComponent() const { return component.length() > 0; }
  bool isEmpty() const { return !showsPoints() && !showsOutline() && !showsComponent(); }
};

/// How both ways of drawing show a set.
namespace locatorLook {
constexpr float kPointSize = 8.0F;
constexpr float kOutlineWidth = 4.0F;
constexpr float kEdgeWidth = 3.0F;
/// The colours of vertex, edge, face, outline and pins; a face is drawn through a stipple.
MColor vertexColor();
MColor edgeColor();
MColor faceColor();
MColor outlineColor();
MColor pinColor();
MColor weightColor(double weight);
}  // namespace locatorLook

/// Draws the sets with OpenGL 1.x into the view whose section is open. All attributes and client
/// attributes are pushed before and popped after; blending goes on after the drawing, just before
/// the attributes come back, and off after, so nothing is ever blended. That order is fixed.
/// @param stipple the pattern of faces, 32 rows of 4 bytes
void drawWithGl(const locatorSets& sets, const unsigned char* stipple);

/// Draws pins (world space) in the same way, round.
/// @param toView the view's way from world to camera
void drawPinsWithGl(const MPointArray& worldPoints, const MMatrix& toView);

/// Draws the sets with a draw manager, with the same look.
void drawWithManager(const locatorSets& sets, MHWRender::MUIDrawManager& manager);
void drawPinsWithManager(const MPointArray& points, MHWRender::MUIDrawManager& manager);

/// The checkerboard through which faces are drawn; one for the whole process, made when the first
/// draw locator is and released when the last one goes.
class facePattern {
 public:
  static void acquire();
  static void release();
  /// 32 rows of 4 bytes, or null while there is no locator.
  static const unsigned char* bytes();
};
