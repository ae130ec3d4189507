#include "quaddraw/quadDrawContextCmd.h"

#include "quaddraw/quadDrawContext.h"

void* quadDrawContextCmd::creator() {
  return new quadDrawContextCmd;
}

MPxContext* quadDrawContextCmd::makeObj() {
  return new quadDrawContext;
}
