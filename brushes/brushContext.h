#pragma once

#include <maya/M3dView.h>
#include <maya/MDagPath.h>
#include <maya/MPoint.h>
#include <maya/MString.h>
#include <maya/MVector.h>

#include <memory>

#include "brushes/brushCursor.h"
#include "brushes/brushRecord.h"
#include "brushes/brushSettings.h"
#include "brushes/brushSurface.h"
#include "brushes/brushSurfaces.h"
#include "brushes/strokeSampler.h"
#include "shared/tool/toolContext.h"
#include "shared/view/viewProjector.h"

/// A place of the surface under the pointer.
struct brushHit {
  std::shared_ptr<brushSurface> surface;  ///< of the mesh that is hit; null: nothing is
  int face = -1;
  MPoint point;            ///< world
  MVector normal;          ///< world, unit, of the face, towards the viewer
  MVector towardsViewer;   ///< world, unit
  double radius = 0.0;     ///< cm, of a dab here with full pressure
  double pixelSize = 0.0;  ///< cm that a pixel shows here
  bool isHit() const { return surface != nullptr; }
};

/// One dab of a stroke.
struct brushDab {
  brushHit hit;           ///< where it is; without a surface the pointer is beside the mesh
  penSample place;        ///< pixels, and the pen
  double radius = 0.0;    ///< cm, pressure in
  double strength = 0.0;  ///< 0 to 1, pressure in
  bool invert = false;    ///< the setting, turned over by Ctrl
  bool smooth = false;    ///< Shift: the brush evens out instead of what it does
  MPoint held;    ///< world: the pointer in the plane across the view through the stroke's start
  MVector moved;  ///< world: how far `held` went since the dab before
  double turn = 0.0;       ///< radians: the stroke's direction on screen, 0 to the right
  double stepShare = 0.0;  ///< way since the dab before, in radii: what builds up is measured by it
  unsigned int count = 0;  ///< 0 for the first
};

/// Base of all brushes: what a stroke is, where its dabs lie, how it is undone and what the cursor
/// shows. A brush says what a dab does.
///
/// The left button brushes; the middle one too. Shift smooths, Ctrl inverts. With B held a drag
/// sets the radius, with M the strength. A stroke is one undo step; Escape takes it back.
class brushContext : public plainToolContext {
 public:
  brushContext(const char* title, const char* help);
  ~brushContext() override;

  brushSettings settings;
  /// The modes that `-mode` takes, ended by null; settings.mode is a place in it.
  virtual const char* const* modeNames() const = 0;
  /// A setting was changed by its flag.
  virtual void settingsChanged();
  /// What drags do instead of brushing; set by keys that are held.
  enum adjustments { kBrush = 0, kAdjustRadius = 1, kAdjustStrength = 2 };
  void setAdjustment(int what) { adjusting = what; }
  int adjustment() const { return adjusting; }
  /// How many dabs the last stroke made, and the bytes that its record holds.
  unsigned int dabsOfStroke() const { return dabCount; }
  std::size_t bytesOfStroke() const { return lastBytes; }

 protected:
  // What a brush implements.
  /// Whether a mesh can be brushed; asked for those that are selected, or under the pointer.
  virtual bool canBrush(const MDagPath& mesh) const;
  /// A stroke begins here. @return false when there is nothing to brush
  virtual bool beginStroke(const brushHit& hit) = 0;
  /// A dab; `hit` may be beside the mesh for brushes that go on there.
  virtual void dab(const brushDab& dab) = 0;
  /// Whether dabs come beside the mesh too.
  virtual bool goesOnBesideMesh() const { return false; }
  /// Whether one dab comes for each event, at the pointer, instead of dabs at even steps.
  virtual bool followsPointer() const { return false; }
  /// The dabs of an event are done: shows what they have changed, in one write to the host.
  virtual void showDabs() = 0;
  /// What the stroke has changed so far, the same object from first to last; null while nothing.
  virtual std::shared_ptr<brushRecord> strokeRecord() = 0;
  /// The stroke is over, released or taken back: forgets it.
  virtual void endStroke() = 0;
  /// Somebody else has moved points of the mesh in mid-stroke, or changed its topology (then
  /// the stroke ends). What was recorded so far is closed; what follows is a new record.
  virtual void meshChangedInStroke() {}

  // The tool's life, for all brushes alike.
  void enter(MEvent& event) override;
  void leave() override;
  MStatus press(MEvent& event) final;
  MStatus drag(MEvent& event) final;
  MStatus release(MEvent& event) final;
  void hover(const M3dView& view, int x, int y) override;
  void cancelStroke() final;
  void meshGone() override;
  void sceneEnds() override;

  /// The place of the surface under a pixel, in a view that was read by `lookThrough`.
  brushHit hitAt(double x, double y);
  void lookThrough(const M3dView& view);
  const brushHit& strokeStart() const { return startHit; }
  void tell(const MString& sentence) const;

 private:
  void takeDabs(bool isLast);
  void makeDab(const penSample& place);
  double stepPixels(const penSample& place) const;
  double pressedRadius(const penSample& place, const brushHit& hit) const;
  void finishStroke();
  void handOver();
  bool keepUpWithMesh();
  void showCursor(const brushHit& hit);
  void adjust();
  void bindKeys(bool on);
  static void onUndo(void* self);

  const char* title;
  const char* help;
  brushSurfaces surfaces;
  brushCursor cursor;
  strokeSampler sampler;
  M3dView strokeView;
  std::unique_ptr<viewProjector> projector;
  brushHit startHit, lastHit;
  brushDab lastDab;
  std::shared_ptr<brushRecord> handedOver;
  bool isStroke = false, smooths = false, inverts = false;
  int adjusting = kBrush;
  double adjustedFrom = 0.0;
  unsigned int dabCount = 0;
  std::size_t lastBytes = 0;
};
