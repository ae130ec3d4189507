#include <maya/MFnDependencyNode.h>
#include <maya/MPxNode.h>
#include <maya/MStringArray.h>

#include <map>

#include "host/api/core/access.h"
#include "host/api/node/px_node.h"

using namespace host;

namespace {

/// Icons of nodes, by node; kept for as long as the node is.
std::string& iconOf(dg::Node& node) {
  static std::map<std::weak_ptr<dg::Node>, std::string, std::owner_less<>> icons;
  std::erase_if(icons, [](const auto& entry) { return entry.first.expired(); });
  return icons[node.weak_from_this()];
}

void collectAliases(dg::Node& node, const dg::Plug& plug, MStringArray& pairs) {
  const std::string alias = node.graph().alias(plug);
  if (!alias.empty()) {
    pairs.append(api::toMString(alias));
    pairs.append(api::toMString(plug.attributePath()));
  }
  if (plug.isArray())
    for (const Index index : node.graph().elementIndices(plug))
      collectAliases(node, plug.element(index), pairs);
  else if (plug.isCompound())
    for (const dg::AttributePtr& child : plug.attribute()->children)
      collectAliases(node, plug.child(child.get()), pairs);
}

}  // namespace

bool MFnDependencyNode::getAliasList(MStringArray& aliases, MStatus* status) {
  aliases.clear();
  dg::Node* node = api::nodeOf(object_);
  api::setStatus(status, node ? MStatus::kSuccess : MStatus::kFailure);
  if (!node) return false;
  for (const dg::AttributePtr& attribute : node->type().attributes())
    collectAliases(*node, dg::Plug(node, attribute.get()), aliases);
  for (const dg::AttributePtr& attribute : node->dynamicAttributes())
    collectAliases(*node, dg::Plug(node, attribute.get()), aliases);
  return aliases.length() > 0;
}
MString MFnDependencyNode::icon(MStatus* status) const {
  dg::Node* node = api::nodeOf(object_);
  api::setStatus(status, node ? MStatus::kSuccess : MStatus::kFailure);
  return node ? api::toMString(iconOf(*node)) : MString();
}
MStatus MFnDependencyNode::setIcon(const MString& filename) {
  dg::Node* node = api::nodeOf(object_);
  if (!node) return MStatus::kFailure;
  iconOf(*node) = filename.asChar();
  return MStatus::kSuccess;
}
// The mark is kept by a plug-in's object; built-in nodes are always written.
MStatus MFnDependencyNode::setDoNotWrite(bool flag) {
  dg::Node* node = api::nodeOf(object_);
  MPxNode* object = node ? api::userNodeOf(*node) : nullptr;
  return object ? object->setDoNotWrite(flag) : MStatus(MStatus::kFailure);
}
