#pragma once

#include <maya/M3dView.h>
#include <maya/MDagPath.h>
#include <maya/MDagPathArray.h>
#include <maya/MPoint.h>
#include <maya/MString.h>
#include <maya/MVector.h>

#include <memory>
#include <optional>

#include "brushes/brushCursor.h"
#include "brushes/brushKeys.h"
#include "brushes/brushRecord.h"
#include "brushes/brushSettings.h"
#include "brushes/brushSurface.h"
#include "brushes/brushSurfaces.h"
#include "brushes/strokeSampler.h"
#include "brushes/tabletInput.h"
#include "shared/tool/toolContext.h"
#include "shared/view/viewProjector.h"

/// A place of a surface under the pointer, in the world.
struct brushHit {
  std::shared_ptr<brushSurface> surface;  ///< of the mesh that is hit; null: nothing is
  int face = -1;
  MPoint point;
  MVector normal;          ///< unit, smooth over the face, towards the viewer
  MVector towardsViewer;   ///< unit
  double radius = 0.0;     ///< cm, of a dab here with full pressure
  double pixelSize = 0.0;  ///< cm that a pixel shows here
  bool isHit() const { return surface != nullptr; }
};

/// One dab of a stroke.
struct brushDab {
  brushHit hit;            ///< where it is; without a surface the pointer is beside the mesh
  penSample place;         ///< pixels, and the pen
  double radius = 0.0;     ///< cm, pressure in
  double strength = 0.0;   ///< 0 to 1, pressure in
  bool invert = false;     ///< the setting, turned over by Ctrl
  bool smooth = false;     ///< Shift: the brush evens out instead of doing what it does
  MPoint held;             ///< the pointer in the plane across the view through the stroke's start
  MVector moved;           ///< how far `held` went since the dab before
  double turn = 0.0;       ///< radians: the stroke's direction on screen, 0 to the right
  double stepShare = 0.0;  ///< way since the dab before, in radii: what builds up goes with it
  unsigned int count = 0;  ///< 0 for the first
};

/// Base of all brushes: what a stroke is, where its dabs lie, how it is undone and what the cursor
/// shows. A brush says what a dab does. docs/tools/brushes.md tells users about it.
///
/// Left and middle button brush. Shift smooths, Ctrl inverts; with B held a drag sets the radius,
/// with M the strength. A stroke is one step of undo; Escape takes it back, another tool in
/// mid-stroke ends it where it is.
///
/// The record of a stroke goes to the undo queue with its first change, so that what a script does
/// to the mesh in mid-stroke comes after it there.
class brushContext : public plainToolContext {
 public:
  /// @param command the context command's name, for the keys that are held
  brushContext(const char* command, const char* title, const char* help);
  ~brushContext() override;

  brushSettings settings;
  /// The modes that `-mode` takes, ended by null; settings.mode is a place in it.
  virtual const char* const* modeNames() const = 0;
  /// Settings were changed by their flags.
  virtual void settingsChanged() {}

  /// What drags do instead of brushing, while a key is held.
  enum adjustments { kBrush = 0, kAdjustRadius = 1, kAdjustStrength = 2 };
  void setAdjustment(int what) { adjusting = what; }
  int adjustment() const { return adjusting; }
  /// How many dabs the last stroke made, and the bytes that its record holds.
  unsigned int dabsOfStroke() const { return dabCount; }
  std::size_t bytesOfStroke() const { return recordBytes; }

 protected:
  // What a brush implements.
  /// Whether a mesh can be brushed.
  virtual bool canBrush(const MDagPath& mesh) const;
  /// A stroke begins here. @return false when there is nothing to brush
  virtual bool beginStroke(const brushHit& hit) = 0;
  virtual void dab(const brushDab& dab) = 0;
  /// The dabs of an event are done: shows what they have changed, in one write to the host.
  virtual void showDabs() = 0;
  /// What the stroke has changed so far: null while nothing, then the same object to the end, or
  /// to `meshChanged`.
  virtual std::shared_ptr<brushRecord> strokeRecord() = 0;
  /// The stroke is over, released or given up: forgets it.
  virtual void endStroke() = 0;
  /// Somebody else has moved points of the mesh in mid-stroke; its surface has them. What was
  /// recorded so far stays a record of its own, what follows belongs in a new one.
  virtual void meshChanged() = 0;
  /// Whether one dab comes for each event, at the pointer, instead of dabs at even steps. Such a
  /// stroke has to begin on the mesh.
  virtual bool followsPointer() const { return false; }
  /// Where a world point of the cursor lies on the mirrored side. @return false when nothing is
  /// shown there
  virtual bool mirrorImage(const MPoint& point, MPoint& image) const;
  /// Whether the first dab waits until the stroke has a direction.
  virtual bool needsDirection() const { return false; }

  void enter(MEvent& event) override;
  void leave() override;
  MStatus press(MEvent& event) final;
  MStatus drag(MEvent& event) final;
  MStatus release(MEvent& event) final;
  void hover(const M3dView& view, int x, int y) override;
  void cancelStroke() final;
  void meshGone() override;
  void sceneEnds() override;

  /// The view of the stroke; there is one from the first hover or press on.
  const viewProjector& sight() const { return *projector; }
  /// The place of a surface under a pixel: of the stroke's while there is one, else of the meshes
  /// that are selected or hilited, else of all that are seen.
  brushHit hitAt(double x, double y);
  /// The pointer in the plane across the view through the stroke's start.
  MPoint heldAt(double x, double y) const;
  /// The stroke writes to the mesh that was hit while this lives.
  brushSurfaces::ownEdit ownEdit() { return {surfaces, *startHit.surface}; }
  const brushHit& strokeStart() const { return startHit; }
  bool isInStroke() const { return startHit.isHit(); }
  /// Whether Shift or Ctrl was down when the stroke began.
  bool smooths() const { return run.stroke.isShift; }
  void tell(const MString& sentence);

  brushSurfaces surfaces;

 private:
  static void onUndo(void* self);
  void lookThrough(const M3dView& view);
  brushHit hitOn(const std::shared_ptr<brushSurface>& surface, double x, double y) const;
  penSample sampleNow() const;
  double stepPixels() const;
  static double unitsPerCentimetre();
  void takeDabs(bool isLast);
  void makeDab(const penSample& place);
  bool beginAt(const brushHit& hit);
  double pressedRadius(const penSample& place, double radius) const;
  void handOver();
  bool keepUpWithMesh();
  void finishStroke();
  void takeBack(brushRecord& record);
  void adjust();
  void showCursor(const brushHit& hit, double radius);
  brushCursorPlace cursorAt(const brushHit& hit, double radius) const;
  void redraw();
  static void tellWindow();

  const char* title;
  const char* help;
  brushKeys keys;
  tabletUse penUse;
  brushCursor cursor;
  strokeSampler sampler;
  M3dView view;
  std::optional<viewProjector> projector;
  brushHit startHit, lastHit, pressHit;
  std::shared_ptr<brushSurface> shownOn;  ///< that the cursor is on
  brushDab lastDab;
  std::shared_ptr<brushRecord> handedOver;
  MString queuedName;
  bool wasQueued = false;
  bool isOver = true;  ///< nothing more comes of the button that is down
  int adjusting = kBrush, adjustedNow = kBrush;
  double adjustedFrom = 0.0;
  unsigned int dabCount = 0;
  std::size_t recordBytes = 0;
};
