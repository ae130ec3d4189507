#include "host/scene/node_names.h"

#include "host/scene/dag_paths.h"
#include "host/scene/document_impl.h"

namespace host::scene {

std::string nodeName(const dg::Node& node, bool fullPath) {
  if (!isDagNode(node)) return node.name();
  // Most nodes are the only one of their name: that takes no path, however deep they are.
  const Document* document = fullPath ? nullptr : documentOf(node.graph());
  if (document && hasOnePath(node) && document->nodesNamed(node.name()).size() == 1)
    return node.name();
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
