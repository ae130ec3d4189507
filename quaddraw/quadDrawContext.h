#pragma once

#include <maya/MMeshIsectAccelParams.h>
#include <maya/MPoint.h>
#include <maya/MPointArray.h>

#include "quaddraw/drawnMesh.h"
#include "quaddraw/locatorPoints.h"
#include "quaddraw/quadFinder.h"
#include "shared/tool/toolContext.h"

/// Draws new topology: a click places a loose point, on the live surface where there is one; Ctrl
/// picks a point up; Shift shows the quad through the four nearest points and borders, and makes it
/// on release. docs/tools/quad-draw.md has the table of its gestures.
///
/// Loose points and preview live in a locator that comes and goes with the tool. Polygons are made
/// by the host's commands; what a stroke does is one step of undo.
class quadDrawContext : public selectionToolContext {
 public:
  quadDrawContext();
  ~quadDrawContext() override;

 protected:
  void enter(MEvent& event) override;
  void leave() override;
  MStatus press(MEvent& event) override;
  MStatus drag(MEvent& event) override;
  MStatus release(MEvent& event) override;

  void hover(const M3dView& view, int x, int y) override;
  void cancelStroke() override;
  void meshGone() override;
  void sceneEnds() override;

 private:
  void switchLocalTumble(bool on);
  /// Brings mesh, loose points and what shows where up to date. Free when nothing changed.
  void refreshFinder(const M3dView& view);
  bool preview(const M3dView& view, int x, int y);
  void placeCursorPoint(const M3dView& view);
  void drawCursorPoint(M3dView view) const;
  void lay();
  void layAlong();
  bool isPixelsFrom(int pixels) const;
  void pickUp(const M3dView& view);
  void commit();
  void takeUsed(const MPointArray& quad);
  void finishStroke();
  void tell(const char* sentence) const;

  locatorPoints points;
  drawnMesh drawn;
  quadFinder finder;
  MMeshIsectAccelParams rays;

  // The stroke.
  MPointArray pointsBefore;
  MPoint currentPoint;
  int laidX = 0, laidY = 0;  ///< where a drag that paints laid its last point
  bool hasLaid = false;      ///< whether it has
  bool hasCurrentPoint = false, hasPickedUp = false, hasChangedPoints = false;
  bool restoreLocalTumble = false;
};
