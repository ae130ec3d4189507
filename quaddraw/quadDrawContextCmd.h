#pragma once

#include <maya/MPxContextCommand.h>

/// Makes quad draw contexts; it has no flags of its own.
class quadDrawContextCmd : public MPxContextCommand {
 public:
  static void* creator();
  MPxContext* makeObj() override;
};
