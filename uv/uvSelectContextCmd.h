#pragma once

#include <maya/MPxContextCommand.h>

/// `uvSelectContext`: makes a UV select tool.
class uvSelectContextCmd : public MPxContextCommand {
 public:
  static void* creator();
  MPxContext* makeObj() override;
};
