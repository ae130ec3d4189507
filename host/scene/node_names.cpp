#include "host/scene/node_names.h"

#include "host/scene/dag.h"

namespace host::scene {

std::string nodeName(const dg::Node& node, bool fullPath) {
  if (!isDagNode(node)) return node.name();
  const DagPath path = firstPath(node);
  return fullPath ? path.fullName() : path.partialName();
}

std::string attributeName(const dg::Plug& plug, bool shortNames) {
  const std::string path = plug.attributePath(shortNames);
  const std::size_t bracket = path.find('[');
  const std::size_t dot = bracket == std::string::npos ? path.rfind('.') : path.rfind('.', bracket);
  return dot == std::string::npos ? path : path.substr(dot + 1);
}

std::string plugName(const dg::Plug& plug, bool shortAttribute) {
  return nodeName(*plug.node()) + "." + attributeName(plug, shortAttribute);
}

}  // namespace host::scene
