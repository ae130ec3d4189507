#pragma once

#include <maya/MDagPathArray.h>
#include <maya/MGlobal.h>
#include <maya/MObjectHandle.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include <vector>

#include "shared/tool/toolContext.h"
#include "uv/edgeWays.h"
#include "uv/hoverLocator.h"
#include "uv/pickEdits.h"
#include "uv/uvSelectContextToolCmd.h"

/// The UV select tool: picks and paints edges and vertices of meshes that are loaded for marking,
/// follows loops, shortest ways and creases, and makes seams and anchors of them.
/// docs/tools/uv-select.md has the table of its gestures.
///
/// While it is in hand the selection arrays of loaded meshes say what of them is selected. Changes
/// of the selection are recorded by `uvSelectContextToolCmd`, marks are made by
/// `qxMarkUVInformation`.
class uvSelectContext : public selectionToolContext {
 public:
  uvSelectContext();
  ~uvSelectContext() override;

  /// Where ways of the tool that is in hand begin from now on; does nothing when none is.
  static void setLastPick(const pickedComponent& pick);

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
  // The life of the tool.
  void enterComponentMode();
  void refreshLoaded();
  void watchMesh(const MDagPath& mesh);
  void forgetWays();
  void growWays(const MDagPath& mesh);
  static void onSelectionChanged(void* self);
  static void onUndo(void* self);
  static void onTick(float elapsed, float last, void* self);
  static void onMeshChanges(MObject& node, MPlug& plug, void* self);

  // Gestures.
  enum strokeKind { kNoStroke, kPaints, kDrawsWay };
  MDagPathArray pickable() const;
  int wantedKind() const;
  pickedComponent pickAt(const M3dView& view, int x, int y, int kind) const;
  void pressLeft();
  void pressMiddle();
  void dragTo(const M3dView& view);
  void showWay(const pickedComponent& to);
  bool isDoubleClick() const;
  void selectLoop();
  void mark(bool removes);
  void record(const uvSelectContextToolCmd::state& before);
  uvSelectContextToolCmd::state stateNow() const;
  bool hasChanged() const;
  void finishStroke();
  void refresh(const M3dView& view) const;

  hoverLocator highlight;
  std::vector<MObjectHandle> loaded;
  pickedComponent lastPick;
  edgeGraph graph;   ///< of the mesh of the last pick
  edgeWays ways[2];  ///< from the last pick, by edgeWays::measure
  ownedCallbacks meshCallbacks;

  // The stroke.
  uvSelectContextToolCmd::state atPress;
  pickedComponent hit, lastHit;
  strokeKind stroke = kNoStroke;
  edgeWays::measure wayMeasure = edgeWays::kShortest;
  MGlobal::ListAdjustment adjustment = MGlobal::kReplaceList;
  pickMirror mirror;
  bool marks = false, unmarks = false;

  // What tells a double click: where the last click was and how long ago.
  pickedComponent clicked;
  double sinceClick = 0.0;
};
