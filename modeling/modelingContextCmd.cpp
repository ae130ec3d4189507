#include "modeling/modelingContextCmd.h"

#include "modeling/modelingContext.h"

void* modelingContextCmd::creator() {
  return new modelingContextCmd;
}

MPxContext* modelingContextCmd::makeObj() {
  return new modelingContext;
}
