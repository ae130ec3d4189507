#include <maya/MPlug.h>
#include <maya/MPlugArray.h>

#include <algorithm>

#include "host/api/core/access.h"
#include "host/builtins/common/command.h"
#include "host/nodes/mesh_parts.h"
#include "host/scene/references.h"

namespace host::api {

MPlug wrap(const dg::Plug& plug) {
  if (plug.isNull()) return MPlug();
  return Access::make<MPlug>(new PlugRep(plug.node()->shared_from_this(), plug));
}

dg::Plug plugOf(const MPlug& plug) {
  const auto* rep = Access::rep<PlugRep>(plug);
  return rep && rep->node->isAlive() ? rep->plug : dg::Plug();
}

namespace {

/// The plug if it is usable; the status says so.
dg::Plug usable(const MPlug& plug, MStatus* status) {
  const dg::Plug inner = plugOf(plug);
  setStatus(status, inner.isNull() ? MStatus::kFailure : MStatus::kSuccess);
  return inner;
}

dg::Graph& graphOf(const dg::Plug& plug) {
  return plug.node()->graph();
}

MPlug refuse(MStatus* status) {
  setStatus(status, MStatus::kInvalidParameter);
  return MPlug();
}

bool hasConnection(const dg::Plug& plug) {
  return !graphOf(plug).source(plug).isNull() || !graphOf(plug).destinations(plug).empty();
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::graphOf;
using api::plugOf;
using api::refuse;
using api::setStatus;
using api::usable;
using api::wrap;

MPlug::MPlug(const MObject& node, const MObject& attribute) {
  dg::Node* owner = api::nodeOf(node);
  const dg::Attribute* description = api::attributeOf(attribute);
  if (owner && description) *this = wrap(dg::Plug(owner, description));
}

MString MPlug::name(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return plug.isNull() ? MString()
                       : api::toMString(plug.node()->name() + "." + builtins::attributeName(plug));
}

MString MPlug::partialName(bool includeNodeName, bool, bool, bool useAlias,
                           bool useFullAttributePath, bool useLongNames, MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull()) return MString();
  std::string text = useAlias ? graphOf(plug).alias(plug) : std::string();
  if (text.empty())
    text = useFullAttributePath ? plug.attributePath(!useLongNames)
                                : builtins::attributeName(plug, !useLongNames);
  return api::toMString(includeNodeName ? plug.node()->name() + "." + text : text);
}

MString MPlug::info(MStatus* status) const {
  return name(status);
}

MObject MPlug::node(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return plug.isNull() ? MObject() : wrap(plug.node());
}
MObject MPlug::attribute(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return plug.isNull() ? MObject() : wrap(plug.attribute());
}
MStatus MPlug::setAttribute(const MObject& attribute) {
  const dg::Plug plug = plugOf(*this);
  const dg::Attribute* description = api::attributeOf(attribute);
  if (plug.isNull() || !description) return MStatus::kInvalidParameter;
  *this = wrap(dg::Plug(plug.node(), description));
  return MStatus::kSuccess;
}
bool MPlug::isNull(MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return plugOf(*this).isNull();
}

bool MPlug::isArray(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && plug.isArray();
}
bool MPlug::isElement(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && plug.isElement();
}
bool MPlug::isCompound(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && plug.attribute()->isCompound();
}
bool MPlug::isChild(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && plug.attribute()->parent != nullptr;
}
bool MPlug::isIgnoredWhenRendering(MStatus* status) const {
  (void)usable(*this, status);
  return false;
}

unsigned int MPlug::logicalIndex(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || !plug.isElement()) {
    setStatus(status, MStatus::kFailure);
    return ~0u;
  }
  return static_cast<unsigned int>(plug.logicalIndex());
}

MStatus MPlug::selectAncestorLogicalIndex(unsigned int index, const MObject& attribute) {
  const dg::Plug plug = plugOf(*this);
  if (plug.isNull()) return MStatus::kFailure;
  const dg::Attribute* wanted = attribute.isNull() ? plug.attribute() : api::attributeOf(attribute);
  // Walks up from the leaf, counting array levels, to the one that is meant.
  int level = plug.levels() - 1;
  for (const dg::Attribute* step = plug.attribute(); step; step = step->parent) {
    if (step == wanted || (attribute.isNull() && step->isArray)) {
      if (!step->isArray) return MStatus::kInvalidParameter;
      *this = wrap(plug.withIndex(level, static_cast<Index>(index)));
      return MStatus::kSuccess;
    }
    if (step->isArray) --level;
  }
  return MStatus::kInvalidParameter;
}

unsigned int MPlug::getExistingArrayAttributeIndices(MIntArray& indices, MStatus* status) const {
  indices.clear();
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull()) return 0;
  if (!plug.isArray()) {
    setStatus(status, MStatus::kInvalidParameter);
    return 0;
  }
  const auto found = nodes::elementsOf(plug);
  indices = MIntArray(found.data(), static_cast<unsigned int>(found.size()));
  return indices.length();
}

unsigned int MPlug::numElements(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || !plug.isArray()) {
    setStatus(status, MStatus::kFailure);
    return 0;
  }
  if (const auto parts = nodes::meshPartCount(plug)) return static_cast<unsigned int>(*parts);
  return static_cast<unsigned int>(graphOf(plug).elementCount(plug));
}
unsigned int MPlug::evaluateNumElements(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (!plug.isNull()) (void)graphOf(plug).evaluate(plug);
  return numElements(status);
}
unsigned int MPlug::evaluateNumElements(MDGContext&, MStatus* status) const {
  return evaluateNumElements(status);
}

unsigned int MPlug::numConnectedElements(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || !plug.isArray()) {
    setStatus(status, MStatus::kFailure);
    return 0;
  }
  const auto indices = graphOf(plug).elementIndices(plug);
  return static_cast<unsigned int>(std::count_if(indices.begin(), indices.end(), [&](Index i) {
    return api::hasConnection(plug.element(i));
  }));
}
unsigned int MPlug::numChildren(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || !plug.attribute()->isCompound()) {
    setStatus(status, MStatus::kFailure);
    return 0;
  }
  return static_cast<unsigned int>(plug.attribute()->children.size());
}
unsigned int MPlug::numConnectedChildren(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || !plug.isCompound()) {
    setStatus(status, MStatus::kFailure);
    return 0;
  }
  unsigned int count = 0;
  for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
    count += api::hasConnection(plug.child(static_cast<int>(i))) ? 1 : 0;
  return count;
}
MStatus MPlug::setNumElements(unsigned int elements) {
  const dg::Plug plug = plugOf(*this);
  if (plug.isNull() || !plug.isArray()) return MStatus::kFailure;
  for (unsigned int i = 0; i < elements; ++i) {
    const auto added = graphOf(plug).addElement(plug.element(static_cast<Index>(i)));
    if (!added) return api::toStatus(added);
  }
  return MStatus::kSuccess;
}

MPlug MPlug::elementByLogicalIndex(unsigned int index, MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || !plug.isArray()) return refuse(status);
  return wrap(plug.element(static_cast<Index>(index)));
}
MPlug MPlug::elementByPhysicalIndex(unsigned int index, MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || !plug.isArray()) return refuse(status);
  if (const auto parts = nodes::meshPartCount(plug))
    return index < static_cast<unsigned int>(*parts) ? wrap(plug.element(static_cast<Index>(index)))
                                                     : refuse(status);
  const auto indices = graphOf(plug).elementIndices(plug);
  if (index >= indices.size()) return refuse(status);
  return wrap(plug.element(indices[index]));
}
MPlug MPlug::connectionByPhysicalIndex(unsigned int index, MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || !plug.isArray()) return refuse(status);
  for (const Index i : graphOf(plug).elementIndices(plug))
    if (api::hasConnection(plug.element(i)) && index-- == 0) return wrap(plug.element(i));
  return refuse(status);
}
MPlug MPlug::parent(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return plug.isNull() || !plug.attribute()->parent ? refuse(status) : wrap(plug.parent());
}
MPlug MPlug::array(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return plug.isNull() || !plug.isElement() ? refuse(status) : wrap(plug.array());
}
MPlug MPlug::child(const MObject& attribute, MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  const dg::Attribute* wanted = api::attributeOf(attribute);
  if (plug.isNull() || !wanted || wanted->parent != plug.attribute()) return refuse(status);
  return wrap(plug.child(wanted));
}
MPlug MPlug::child(unsigned int index, MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull() || index >= plug.attribute()->children.size()) return refuse(status);
  return wrap(plug.child(static_cast<int>(index)));
}

bool MPlug::isConnected(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && api::hasConnection(plug);
}
bool MPlug::connectedTo(MPlugArray& plugs, bool asDestination, bool asSource,
                        MStatus* status) const {
  plugs.clear();
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull()) return false;
  if (asDestination) {
    const dg::Plug source = graphOf(plug).source(plug);
    if (!source.isNull()) plugs.append(wrap(source));
  }
  if (asSource)
    for (const dg::Plug& destination : graphOf(plug).destinations(plug))
      plugs.append(wrap(destination));
  return plugs.length() > 0;
}
bool MPlug::isSource(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && !graphOf(plug).destinations(plug).empty();
}
bool MPlug::isDestination(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && !graphOf(plug).source(plug).isNull();
}
MPlug MPlug::source(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return plug.isNull() ? MPlug() : wrap(graphOf(plug).source(plug));
}
bool MPlug::destinations(MPlugArray& plugs, MStatus* status) const {
  return connectedTo(plugs, false, true, status);
}

#define HOST_PLUG_FLAG(Query, Set, Flag)                                              \
  bool MPlug::Query(MStatus* status) const {                                          \
    const dg::Plug plug = usable(*this, status);                                      \
    return !plug.isNull() && graphOf(plug).flag(plug, dg::Graph::PlugFlag::Flag);     \
  }                                                                                   \
  MStatus MPlug::Set(bool on) {                                                       \
    const dg::Plug plug = plugOf(*this);                                              \
    if (plug.isNull()) return MStatus::kFailure;                                      \
    return api::toStatus(graphOf(plug).setFlag(plug, dg::Graph::PlugFlag::Flag, on)); \
  }
HOST_PLUG_FLAG(isKeyable, setKeyable, Keyable)
HOST_PLUG_FLAG(isCachingFlagSet, setCaching, Caching)
HOST_PLUG_FLAG(isChannelBoxFlagSet, setChannelBox, ChannelBox)
#undef HOST_PLUG_FLAG
bool MPlug::isLocked(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && graphOf(plug).isLockedHereOrAbove(plug);
}
MStatus MPlug::setLocked(bool locked) {
  const dg::Plug plug = plugOf(*this);
  if (plug.isNull()) return MStatus::kFailure;
  return api::toStatus(graphOf(plug).setFlag(plug, dg::Graph::PlugFlag::Locked, locked));
}

bool MPlug::isProcedural(MStatus* status) const {
  (void)usable(*this, status);
  return false;
}
bool MPlug::isDynamic(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && plug.attribute()->isDynamic;
}
bool MPlug::isFromReferencedFile(MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  return !plug.isNull() && scene::referenceOf(*plug.node());
}
bool MPlug::isNetworked(MStatus* status) const {
  (void)usable(*this, status);
  return false;
}
bool MPlug::isExactlyEqual(const MPlug& other, MStatus* status) const {
  setStatus(status, MStatus::kSuccess);
  return plugOf(*this) == plugOf(other);
}
bool MPlug::isDefaultValue(bool, MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull()) return false;
  if (plug.isArray()) return graphOf(plug).elementCount(plug) == 0;
  if (plug.isCompound()) {
    for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
      if (!wrap(plug.child(static_cast<int>(i))).isDefaultValue()) return false;
    return true;
  }
  return dg::equal(graphOf(plug).stored(plug), plug.attribute()->initialValue());
}
bool MPlug::isDefaultValue(MStatus* status) const {
  return isDefaultValue(false, status);
}

MPlug::FreeToChangeState MPlug::isFreeToChange(bool checkParents, bool checkChildren,
                                               MStatus* status) const {
  const dg::Plug plug = usable(*this, status);
  if (plug.isNull()) return kNotFreeToChange;
  dg::Graph& graph = graphOf(plug);
  const bool isHeld = checkParents
                          ? graph.isDriven(plug) || graph.isLockedHereOrAbove(plug)
                          : graph.source(plug) || graph.flag(plug, dg::Graph::PlugFlag::Locked);
  if (isHeld) return kNotFreeToChange;
  if (checkChildren && plug.isCompound())
    for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
      if (wrap(plug.child(static_cast<int>(i))).isFreeToChange(false) != kFreeToChange)
        return kChildrenNotFreeToChange;
  return kFreeToChange;
}

bool MPlug::operator==(const MPlug& other) const {
  return plugOf(*this) == plugOf(other);
}
bool MPlug::operator==(const MObject& attribute) const {
  const dg::Plug plug = plugOf(*this);
  return !plug.isNull() && plug.attribute() == api::attributeOf(attribute);
}

std::ostream& operator<<(std::ostream& os, const MPlug& plug) {
  return os << plug.name().asChar();
}
