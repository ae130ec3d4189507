#include "host/io/ma/ma_kept.h"

namespace host::io {

MaKept::Node& MaKept::of(dg::Node& node) {
  Node& kept = nodes_[&node];
  // The place of a node that is gone may have become another's.
  if (kept.node.lock().get() != &node) kept = {node.weak_from_this(), {}, {}};
  return kept;
}

const MaKept::Node* MaKept::find(const dg::Node& node) const {
  const auto found = nodes_.find(&node);
  return found == nodes_.end() || found->second.node.lock().get() != &node ? nullptr
                                                                           : &found->second;
}

}  // namespace host::io
