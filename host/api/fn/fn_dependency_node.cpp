#include <maya/MFnDependencyNode.h>
#include <maya/MObjectArray.h>
#include <maya/MPlugArray.h>
#include <maya/MTypeId.h>

#include <algorithm>
#include <functional>

#include "host/api/core/access.h"
#include "host/scene/namespaces.h"
#include "host/scene/references.h"

namespace host::api {
namespace {

dg::Node* nodeIn(const MObject& object, MStatus* status) {
  dg::Node* node = nodeOf(object);
  setStatus(status, node ? MStatus::kSuccess : MStatus::kFailure);
  return node;
}

void collect(const dg::Attribute& attribute, std::vector<const dg::Attribute*>& all) {
  all.push_back(&attribute);
  for (const dg::AttributePtr& child : attribute.children) collect(*child, all);
}

/// Every attribute of a node, compounds before their children, dynamic ones last.
std::vector<const dg::Attribute*> allAttributes(const dg::Node& node) {
  std::vector<const dg::Attribute*> all;
  for (const dg::AttributePtr& attribute : node.type().attributes()) collect(*attribute, all);
  for (const dg::AttributePtr& attribute : node.dynamicAttributes()) collect(*attribute, all);
  return all;
}

MObject createNamed(const dg::NodeType* type, const MString& name, MStatus* status) {
  if (!type) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  auto made = document().createNode(type->name, name.asChar());
  setStatus(status, toStatus(made).statusCode());
  return made ? wrap(*made) : MObject();
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::nodeIn;
using api::setStatus;
using api::wrap;

MObject MFnDependencyNode::create(const MTypeId& typeId, const MString& name, MStatus* status) {
  object_ = api::createNamed(api::document().types().find(typeId.id()), name, status);
  return object_;
}
MObject MFnDependencyNode::create(const MTypeId& typeId, MStatus* status) {
  return create(typeId, MString(), status);
}
MObject MFnDependencyNode::create(const MString& type, const MString& name, MStatus* status) {
  object_ = api::createNamed(api::document().types().find(type.asChar()), name, status);
  return object_;
}
MObject MFnDependencyNode::create(const MString& type, MStatus* status) {
  return create(type, MString(), status);
}

MTypeId MFnDependencyNode::typeId(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node ? MTypeId(node->type().id) : MTypeId();
}
MString MFnDependencyNode::typeName(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node ? api::toMString(node->type().name) : MString();
}
MString MFnDependencyNode::name(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node ? api::toMString(node->name()) : MString();
}
MString MFnDependencyNode::absoluteName(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node ? api::toMString(":" + node->name()) : MString();
}
MString MFnDependencyNode::uniqueName(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  if (!node) return MString();
  return api::toMString(scene::isDagNode(*node) ? scene::firstPath(*node).partialName()
                                                : node->name());
}
bool MFnDependencyNode::hasUniqueName(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node && api::document().nodesNamed(node->name()).size() == 1;
}
MString MFnDependencyNode::setName(const MString& name, MStatus* status) {
  dg::Node* node = nodeIn(object_, status);
  if (!node) return MString();
  const auto renamed =
      api::document().rename(*node, scene::inCurrentNamespace(api::document(), name.asChar()));
  setStatus(status, api::toStatus(renamed).statusCode());
  return api::toMString(node->name());
}
MString MFnDependencyNode::setName(const MString& name, bool, MStatus* status) {
  return setName(name, status);
}
MString MFnDependencyNode::pluginName(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node ? api::toMString(node->type().pluginName) : MString();
}
MString MFnDependencyNode::classification(const MString& nodeTypeName) {
  const dg::NodeType* type = api::document().types().find(nodeTypeName.asChar());
  return type ? api::toMString(type->classification) : MString();
}

MStatus MFnDependencyNode::getConnections(MPlugArray& plugs) const {
  plugs.clear();
  const dg::Node* node = api::nodeOf(object_);
  if (!node) return MStatus::kFailure;
  std::vector<dg::Plug> seen;
  const auto add = [&](const dg::Plug& plug) {
    if (std::find(seen.begin(), seen.end(), plug) != seen.end()) return;
    seen.push_back(plug);
    plugs.append(wrap(plug));
  };
  for (const auto& connection : node->graph().incoming(*node)) add(connection.destination);
  for (const auto& connection : node->graph().outgoing(*node)) add(connection.source);
  return MStatus::kSuccess;
}

unsigned int MFnDependencyNode::attributeCount(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node ? static_cast<unsigned int>(api::allAttributes(*node).size()) : 0;
}
MObject MFnDependencyNode::attribute(unsigned int index, MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  if (!node) return MObject();
  const auto all = api::allAttributes(*node);
  if (index >= all.size()) {
    setStatus(status, MStatus::kInvalidParameter);
    return MObject();
  }
  return wrap(all[index]);
}
MObject MFnDependencyNode::reorderedAttribute(unsigned int index, MStatus* status) const {
  return attribute(index, status);
}
MObject MFnDependencyNode::attribute(const MString& name, MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  if (!node) return MObject();
  const dg::Attribute* found = node->findAttribute(name.asChar());
  setStatus(status, found ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return wrap(found);
}
MFnDependencyNode::MAttrClass MFnDependencyNode::attributeClass(const MObject& attribute,
                                                                MStatus* status) const {
  const dg::Attribute* description = api::attributeOf(attribute);
  setStatus(status, description ? MStatus::kSuccess : MStatus::kInvalidParameter);
  if (!description) return kInvalidAttr;
  return description->isDynamic ? kLocalDynamicAttr : kNormalAttr;
}
bool MFnDependencyNode::hasAttribute(const MString& name, MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node && node->findAttribute(name.asChar()) != nullptr;
}
MStatus MFnDependencyNode::getAffectedAttributes(const MObject& attribute,
                                                 MObjectArray& affected) const {
  affected.clear();
  const dg::Attribute* description = api::attributeOf(attribute);
  const dg::Node* node = api::nodeOf(object_);
  if (!description || !node) return MStatus::kInvalidParameter;
  for (const dg::Attribute* target : node->type().affected(description))
    affected.append(wrap(target));
  return MStatus::kSuccess;
}
MStatus MFnDependencyNode::getAffectedByAttributes(const MObject& attribute,
                                                   MObjectArray& affecting) const {
  affecting.clear();
  const dg::Attribute* description = api::attributeOf(attribute);
  const dg::Node* node = api::nodeOf(object_);
  if (!description || !node) return MStatus::kInvalidParameter;
  for (const dg::Attribute* source : api::allAttributes(*node)) {
    const auto& targets = node->type().affected(source);
    if (std::find(targets.begin(), targets.end(), description) != targets.end())
      affecting.append(wrap(source));
  }
  return MStatus::kSuccess;
}

MPlug MFnDependencyNode::findPlug(const MObject& attribute, bool, MStatus* status) const {
  dg::Node* node = nodeIn(object_, status);
  const dg::Attribute* description = api::attributeOf(attribute);
  if (!node || !description) {
    setStatus(status, MStatus::kInvalidParameter);
    return MPlug();
  }
  return wrap(dg::Plug(node, description));
}
MPlug MFnDependencyNode::findPlug(const MObject& attribute, MStatus* status) const {
  return findPlug(attribute, false, status);
}
MPlug MFnDependencyNode::findPlug(const MString& name, bool, MStatus* status) const {
  dg::Node* node = nodeIn(object_, status);
  if (!node) return MPlug();
  if (const dg::Attribute* description = node->findAttribute(name.asChar()))
    return wrap(dg::Plug(node, description));
  const auto found = dg::parsePlug(*node, name.asChar());
  setStatus(status, found ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return found ? wrap(*found) : MPlug();
}
MPlug MFnDependencyNode::findPlug(const MString& name, MStatus* status) const {
  return findPlug(name, false, status);
}

MStatus MFnDependencyNode::addAttribute(const MObject& attribute, MAttrClass) {
  dg::Node* node = api::nodeOf(object_);
  const auto* rep = api::objectAs<api::AttributeRep>(attribute);
  if (!node || !rep) return MStatus::kInvalidParameter;
  const auto added = node->graph().addAttribute(*node, rep->attribute);
  return api::toStatus(added);
}
MStatus MFnDependencyNode::removeAttribute(const MObject& attribute, MAttrClass) {
  dg::Node* node = api::nodeOf(object_);
  const dg::Attribute* description = api::attributeOf(attribute);
  if (!node || !description) return MStatus::kInvalidParameter;
  return api::toStatus(node->graph().removeAttribute(*node, description));
}

bool MFnDependencyNode::setAlias(const MString& alias, const MString&, const MPlug& plug, bool add,
                                 MStatus* status) {
  const dg::Plug inner = api::plugOf(plug);
  if (inner.isNull()) {
    setStatus(status, MStatus::kInvalidParameter);
    return false;
  }
  const auto done = inner.node()->graph().setAlias(inner, add ? alias.asChar() : "");
  setStatus(status, api::toStatus(done).statusCode());
  return static_cast<bool>(done);
}
bool MFnDependencyNode::findAlias(const MString& alias, MObject& attribute, MStatus* status) const {
  dg::Node* node = nodeIn(object_, status);
  if (!node) return false;
  const dg::Plug plug = node->graph().findAlias(*node, alias.asChar());
  if (!plug.isNull()) attribute = wrap(plug.attribute());
  return !plug.isNull();
}
MString MFnDependencyNode::plugsAlias(const MPlug& plug, MStatus* status) {
  const dg::Plug inner = api::plugOf(plug);
  setStatus(status, inner.isNull() ? MStatus::kInvalidParameter : MStatus::kSuccess);
  return inner.isNull() ? MString() : api::toMString(inner.node()->graph().alias(inner));
}

bool MFnDependencyNode::isFromReferencedFile(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node && scene::referenceOf(*node);
}
bool MFnDependencyNode::isDefaultNode(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node && node->isDefault();
}
bool MFnDependencyNode::isShared(MStatus* status) const {
  return isDefaultNode(status);
}
bool MFnDependencyNode::isLocked(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node && node->isLocked();
}
MStatus MFnDependencyNode::setLocked(bool locked) {
  dg::Node* node = api::nodeOf(object_);
  if (!node) return MStatus::kFailure;
  return api::toStatus(node->graph().setNodeLocked(*node, locked));
}
bool MFnDependencyNode::isNewAttribute(const MObject& attribute, MStatus* status) const {
  return attributeClass(attribute, status) == kLocalDynamicAttr;
}
bool MFnDependencyNode::canBeWritten(MStatus* status) const {
  const dg::Node* node = nodeIn(object_, status);
  return node && !node->isDefault();
}
