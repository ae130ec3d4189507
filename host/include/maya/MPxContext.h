#pragma once

#include <maya/MCursor.h>
#include <maya/MDoubleArray.h>
#include <maya/MEvent.h>
#include <maya/MFrameContext.h>
#include <maya/MIntArray.h>
#include <maya/MObject.h>
#include <maya/MStatus.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>
#include <maya/MTypes.h>
#include <maya/MUIDrawManager.h>
#include <maya/detail/Handle.h>

class MPxToolCommand;

/// Base of the interactive tools that a plug-in adds.
class MPxContext {
 public:
  enum ImageIndex { kImage1 = 0, kImage2 = 1, kImage3 = 2 };

  MPxContext();
  virtual ~MPxContext();
  MPxContext(const MPxContext&) = delete;
  MPxContext& operator=(const MPxContext&) = delete;

  // Mouse events, in a legacy view and in a Viewport 2.0 view. The latter go to the former unless
  // overridden.
  virtual MStatus doPress(MEvent& event);
  virtual MStatus doRelease(MEvent& event);
  virtual MStatus doDrag(MEvent& event);
  virtual MStatus doHold(MEvent& event);
  virtual MStatus doEnterRegion(MEvent& event);
  virtual MStatus doPress(MEvent& event, MHWRender::MUIDrawManager& drawMgr,
                          const MHWRender::MFrameContext& context);
  virtual MStatus doRelease(MEvent& event, MHWRender::MUIDrawManager& drawMgr,
                            const MHWRender::MFrameContext& context);
  virtual MStatus doDrag(MEvent& event, MHWRender::MUIDrawManager& drawMgr,
                         const MHWRender::MFrameContext& context);
  virtual MStatus doHold(MEvent& event, MHWRender::MUIDrawManager& drawMgr,
                         const MHWRender::MFrameContext& context);
  virtual MStatus doPtrMoved(MEvent& event, MHWRender::MUIDrawManager& drawMgr,
                             const MHWRender::MFrameContext& context);
  virtual MStatus drawFeedback(MHWRender::MUIDrawManager& drawMgr,
                               const MHWRender::MFrameContext& context);

  virtual void toolOnSetup(MEvent& event);
  virtual void toolOffCleanup();
  virtual MStatus helpStateHasChanged(MEvent& event);
  virtual void deleteAction();
  virtual void completeAction();
  virtual void abortAction();
  virtual MStatus addManipulator(const MObject& manipulator);
  virtual MStatus deleteManipulators();
  virtual bool processNumericalInput(const MDoubleArray& values, const MIntArray& flags,
                                     bool isAbsolute);
  virtual bool feedbackNumericalInput() const;
  virtual MSyntax::MArgType argTypeNumericalInput(unsigned int index) const;
  bool ignoreEntry(const MIntArray& flags, unsigned int index);
  virtual void stringClassName(MString& name) const;
  /// Names the class of tool, as the context command is called.
  virtual void getClassName(MString& name) const;

  MStatus setTitleString(const MString& text);
  MStatus setHelpString(const MString& text);
  MString titleString() const;
  MStatus setCursor(const MCursor& cursor);
  MStatus setImage(const MString& image, ImageIndex index);
  MString image(ImageIndex index, MStatus* status = nullptr) const;
  MStatus beginMarquee(MEvent& event);
  MStatus dragMarquee(MEvent& event);
  MStatus releaseMarquee(MEvent& event, short& top, short& left, short& bottom, short& right);

 protected:
  /// Makes the tool command that the context command was registered with.
  virtual MPxToolCommand* newToolCommand();

 private:
  friend struct host::api::Access;
  host::api::Handle handle_;
};
