#pragma once

#include <maya/MDagPath.h>
#include <maya/MMessage.h>
#include <maya/MString.h>

#include "modeling/interactiveNode.h"
#include "modeling/meshOperations.h"
#include "modeling/pointEdit.h"
#include "modeling/selectionEdits.h"
#include "modeling/toolLocator.h"
#include "modeling/toolState.h"
#include "modeling/vertexPush.h"
#include "modeling/vertexSlide.h"
#include "shared/selection/componentPick.h"
#include "shared/tool/toolContext.h"

/// The all-purpose modelling tool. It shows the component under the cursor; the left button
/// selects, follows rings and loops, pushes and slides; the middle button deletes, connects,
/// merges, bevels and extrudes what is selected. docs/tools/modelling.md has the table of its
/// gestures.
///
/// Edits of topology are the host's own commands and steps of undo; changes of the selection and of
/// points are recorded by `modelingContextToolCmd`.
class modelingContext : public selectionToolContext {
 public:
  modelingContext();
  ~modelingContext() override;

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
  void switchLocalTumble(bool on);
  void watchCamera(const M3dView& view);
  static void onCameraMoves(MObject&, MPlug&, void* self);
  static void onSelectTypeChanged(void* self);
  static void onUndo(void* self);

  // Gestures.
  void beginGesture(const M3dView& view);
  void pressLeft(const M3dView& view);
  void pressMiddle(const M3dView& view);
  void dragLeft(const M3dView& view);
  void dragMiddle(const M3dView& view);
  void dragPoints(const M3dView& view);
  void dragRun(const M3dView& view);
  void dragPaint(const M3dView& view);
  void releaseLeft();
  void releaseMiddle();
  void endGesture();
  void notePicks();
  void takeBackPicks();
  void recordSelection(const MSelectionList& after);
  void recordPoints();
  void showMoved();
  void showDistance(const M3dView& view);
  int wantedKind() const;
  pickedComponent pickAt(const M3dView& view, int kind) const;
  void moveCentreOfInterest(const M3dView& view) const;
  void tell(const MString& sentence);
  void refresh(const M3dView& view) const;
  void freeAccelerator(const MDagPath& mesh) const;

  enum pointGesture { kNoPoints, kPushing, kSliding };

  gestureState gesture;
  toolLocator locator;
  interactiveNode created;  ///< a bevel or an extrusion that is dragged out
  pointEdit edit;
  pointGesture moving = kNoPoints;
  vertexPush push;
  vertexSlide slide;
  edgeRunPart shownRun;

  int hoverType = kNoComponent;
  int componentType = kNoComponent;  ///< of the selection mode
  pickedComponent hovered;
  MDagPath hoveredMesh, editedMesh;
  ownedCallbacks cameraCallback;
  MDagPath watchedCamera;
  bool restoreLocalTumble = false;
  bool needsRedraw = false;
};
