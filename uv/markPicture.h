#pragma once

#include <maya/MBoundingBox.h>
#include <maya/MMatrix.h>
#include <maya/MPointArray.h>
#include <maya/MUIDrawManager.h>

/// What shows of a mesh that is loaded for marking, in the world.
struct meshMarks {
  MPointArray seams;             ///< two points an edge
  MPointArray anchors;           ///< a point each
  MPointArray selectedEdges;     ///< two points an edge
  MPointArray selectedVertices;  ///< a point each

  bool isEmpty() const;
  MBoundingBox box() const;
};

/// How both ways of drawing show marks: a seam is a broad line, so that one that is selected too
/// shows the narrower line of the selection within it.
namespace markLook {
constexpr float kSeamWidth = 4.0F, kSelectionWidth = 2.0F;
constexpr float kAnchorSize = 10.0F, kVertexSize = 7.0F;
MColor seamColor();
MColor anchorColor();
MColor selectionColor();
}  // namespace markLook

/// Draws marks with OpenGL 1.x into the view whose section is open; every attribute is as before
/// afterwards.
/// @param toView the view's way from world to camera
void drawMarksWithGl(const meshMarks& marks, const MMatrix& toView);

/// Draws them with a draw manager whose space is the world, with the same look.
void drawMarksWithManager(const meshMarks& marks, MHWRender::MUIDrawManager& manager);
