#pragma once

#include <maya/MPxContextCommand.h>

class brushContext;

/// Makes one kind of brush and lets scripts edit and query its settings: every flag of the table in
/// brushFlags, `-mode` with the brush's own words, `-adjust` for keys that are held, and the
/// queries
/// `-dabs` and `-recordBytes` about the last stroke.
class brushContextCmd : public MPxContextCommand {
 public:
  MPxContext* makeObj() final;
  MStatus appendSyntax() final;
  MStatus doEditFlags() final;
  MStatus doQueryFlags() final;

 protected:
  virtual brushContext* makeBrush() = 0;

 private:
  brushContext* brush = nullptr;  ///< the host's, which ends with this command
};
