#include "uv/uvSelectContextCmd.h"

#include "uv/uvSelectContext.h"

void* uvSelectContextCmd::creator() {
  return new uvSelectContextCmd;
}

MPxContext* uvSelectContextCmd::makeObj() {
  return new uvSelectContext;
}
