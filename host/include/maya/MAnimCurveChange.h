#pragma once

#include <maya/MStatus.h>
#include <maya/MTypes.h>

#include <memory>

/// Remembers what edits did to animation curves, for a command's undoIt and redoIt: one object may
/// go with any number of edits of any number of curves.
class MAnimCurveChange {
 public:
  explicit MAnimCurveChange(MStatus* status = nullptr);
  ~MAnimCurveChange();
  MAnimCurveChange(const MAnimCurveChange&) = delete;
  MAnimCurveChange& operator=(const MAnimCurveChange&) = delete;

  MStatus undoIt();
  MStatus redoIt();
  /// Whether the edits of a drag are put together. Here they always are.
  bool isInteractive() const;
  void setInteractive(bool isInteractive);

  struct Steps;
  /// For the function set.
  Steps& steps() { return *steps_; }

 private:
  std::unique_ptr<Steps> steps_;
  bool isInteractive_ = false;
};
