#pragma once

#include <maya/MPxContext.h>
#include <maya/MTypes.h>

/// Base of the tools that first let the user select and then work on the selection.
class MPxSelectionContext : public MPxContext {
 public:
  MPxSelectionContext();
  ~MPxSelectionContext() override;

  using MPxContext::doDrag;
  using MPxContext::doHold;
  using MPxContext::doPress;
  using MPxContext::doRelease;
  MStatus doPress(MEvent& event) override;
  MStatus doRelease(MEvent& event) override;
  MStatus doDrag(MEvent& event) override;
  MStatus doHold(MEvent& event) override;
  MStatus doEnterRegion(MEvent& event) override;
  MStatus helpStateHasChanged(MEvent& event) override;
  void deleteAction() override;
  void completeAction() override;
  void abortAction() override;
  void toolOnSetup(MEvent& event) override;
  void toolOffCleanup() override;

 protected:
  MPxToolCommand* newToolCommand() override;
  /// True while the user is still picking what to work on.
  bool isSelecting();
  MStatus startPoint(short& x_pos, short& y_pos);
  MStatus lastDragPoint(short& x_pos, short& y_pos);
  bool isMarqueeBoxActive() const;
  void setAllowPreSelectHilight();
  void setAllowDoubleClickAction();
  void setAllowPaintSelect();
  void setAllowAreaSelect();
  void setAllowSoftSelect();
  void setAllowSymmetry();
};
