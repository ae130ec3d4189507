#pragma once

#include <maya/MPxContextCommand.h>

/// Makes modeling contexts; it has no flags of its own.
class modelingContextCmd : public MPxContextCommand {
 public:
  static void* creator();
  MPxContext* makeObj() override;
};
