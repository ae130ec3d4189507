#pragma once

#include "host/base/signal.h"
#include "host/dg/node.h"

namespace host::workspace {

/// Who else is told that the deformer command has made a node. Kept by `Workspace::kept`.
struct DeformerHooks {
  Signal<dg::Node&> made;
};

}  // namespace host::workspace
