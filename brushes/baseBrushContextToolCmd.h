#pragma once

#include <maya/MPxToolCommand.h>

#include <memory>

#include "brushes/brushRecord.h"

/// The undo step of a stroke, of all brushes. The context has made the change already.
class baseBrushContextToolCmd : public MPxToolCommand {
 public:
  baseBrushContextToolCmd();
  ~baseBrushContextToolCmd() override;
  static void* creator();

  MStatus doIt(const MArgList& arguments) override;
  MStatus redoIt() override;
  MStatus undoIt() override;
  bool isUndoable() const override { return true; }
  MStatus finalize() override;

  void setRecord(const std::shared_ptr<brushRecord>& change) { record = change; }

 private:
  MStatus show(bool after);

  std::shared_ptr<brushRecord> record;
};
