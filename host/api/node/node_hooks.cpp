#include <maya/MDataBlock.h>
#include <maya/MPlugArray.h>
#include <maya/MPxLocatorNode.h>
#include <maya/MPxSurfaceShape.h>

#include "host/api/data/data_handle.h"
#include "host/api/node/px_node.h"
#include "host/base/messages.h"
#include "host/dg/data_block.h"

namespace host::api {
namespace {

using dg::Computed;
using dg::Node;
using dg::Plug;

/// A type's hooks are asked along the chain of base types; the object's own virtual functions
/// settle what a derived class overrides, so only the hook of the node's own type acts.
MPxNode* objectOf(Node& node, const dg::NodeType* hooked) {
  return &node.type() == hooked ? userNodeOf(node) : nullptr;
}

Result<Computed> compute(MPxNode& object, Node& node, const Plug& plug) {
  auto* block = new BlockRep(node.shared_from_this());
  block->keepsInputs = true;
  MDataBlock data = Access::make<MDataBlock>(block);
  MStatus status = MStatus::kFailure;
  std::string thrown;
  try {
    status = object.compute(wrap(plug), data);
  } catch (const std::exception& exception) {
    thrown = exception.what();
  } catch (...) {
    thrown = "of unknown type";
  }
  block->close();
  if (!thrown.empty()) return fail("Computing '{}' threw an exception: {}", plug.name(), thrown);
  if (status == MStatus::kUnknownParameter) return Computed::Unhandled;
  if (status == MStatus::kSuccess) return Computed::Done;
  // A node that reports a fault but has marked its output clean has left a value to go on with.
  if (!node.graph().isDirty(plug)) {
    postMessage(MessageKind::Warning,
                fmt::format("Computing '{}' failed; the value that it left is used", plug.name()));
    return Computed::Done;
  }
  return fail("Computing '{}' failed: {}", plug.name(), status.errorString().asChar());
}

void addDependents(MPxNode& object, const Node& node, const Plug& plug,
                   std::vector<Plug>& alsoDirty) {
  MPlugArray plugs;
  fenced(
      node, "setDependentsDirty", [&] { return object.setDependentsDirty(wrap(plug), plugs); },
      MStatus());
  for (unsigned int i = 0; i < plugs.length(); ++i)
    if (const Plug each = plugOf(plugs[i])) alsoDirty.push_back(each);
}

/// The corner, size or centre of the box that a bounded locator or shape says it has.
template <class Shape>
bool readBox(const Shape& shape, const Node& node, const Plug& plug, dg::Value& value) {
  const dg::Attribute* triple = plug.attribute()->parent;
  if (!triple || triple->isDynamic) return false;
  const bool isMin = triple->longName == "boundingBoxMin",
             isMax = triple->longName == "boundingBoxMax";
  const bool isSize = triple->longName == "boundingBoxSize",
             isCenter = triple->longName == "center";
  if (!isMin && !isMax && !isSize && !isCenter) return false;
  const auto read = [&] { return shape.isBounded() ? shape.boundingBox() : MBoundingBox(); };
  const MBoundingBox box = fenced(node, "boundingBox", read, MBoundingBox());
  const MPoint low = box.min(), high = box.max(), middle = box.center();
  const double sizes[] = {box.width(), box.height(), box.depth()};
  const auto axis = static_cast<unsigned int>(plug.attribute()->childIndex);
  value = isMin ? low[axis] : isMax ? high[axis] : isSize ? sizes[axis] : middle[axis];
  return true;
}

bool readInternal(MPxNode& object, const Node& node, const Plug& plug, dg::Value& value) {
  if (const auto* locator = dynamic_cast<const MPxLocatorNode*>(&object);
      locator && readBox(*locator, node, plug, value))
    return true;
  if (const auto* shape = dynamic_cast<const MPxSurfaceShape*>(&object);
      shape && readBox(*shape, node, plug, value))
    return true;
  MDataHandle handle = looseHandle(plug, plug.attribute()->initialValue());
  const bool isHandled = fenced(
      node, "getInternalValue",
      [&] { return object.getInternalValueInContext(wrap(plug), handle, MDGContext::fsNormal); },
      false);
  if (isHandled) value = valueOf(handle);
  return isHandled;
}

bool writeInternal(MPxNode& object, const Node& node, const Plug& plug, const dg::Value& value) {
  const MDataHandle handle = looseHandle(plug, value);
  return fenced(
      node, "setInternalValue",
      [&] { return object.setInternalValueInContext(wrap(plug), handle, MDGContext::fsNormal); },
      false);
}

Result<void> mayConnect(MPxNode& object, const Node& node, const Plug& own, const Plug& other,
                        bool ownIsSource) {
  bool isLegal = true;
  const MStatus status = fenced(
      node, "legalConnection",
      [&] { return object.legalConnection(wrap(own), wrap(other), ownIsSource, isLegal); },
      MStatus(MStatus::kUnknownParameter));
  if (status != MStatus::kSuccess || isLegal) return {};
  return fail("'{}' does not accept a connection with '{}'", own.name(), other.name());
}

void tellConnection(MPxNode& object, const Node& node, const Plug& own, const Plug& other,
                    bool ownIsSource, bool made) {
  const auto call = [&] {
    return made ? object.connectionMade(wrap(own), wrap(other), ownIsSource)
                : object.connectionBroken(wrap(own), wrap(other), ownIsSource);
  };
  fenced(node, made ? "connectionMade" : "connectionBroken", call, MStatus());
}

}  // namespace

void installHooks(dg::NodeType& type) {
  const dg::NodeType* own = &type;
  type.compute = [own](Node& node, const Plug& plug, dg::DataBlock&) -> Result<Computed> {
    MPxNode* object = objectOf(node, own);
    return object ? compute(*object, node, plug) : Result<Computed>(Computed::Unhandled);
  };
  type.dependentsDirty = [own](Node& node, const Plug& plug, std::vector<Plug>& alsoDirty) {
    if (MPxNode* object = objectOf(node, own)) addDependents(*object, node, plug, alsoDirty);
  };
  type.getInternal = [own](const Node& node, const Plug& plug, dg::Value& value) {
    MPxNode* object = objectOf(const_cast<Node&>(node), own);
    return object && readInternal(*object, node, plug, value);
  };
  type.setInternal = [own](Node& node, const Plug& plug, const dg::Value& value) -> Result<bool> {
    MPxNode* object = objectOf(node, own);
    if (auto* transform = dynamic_cast<MPxTransform*>(object)) {
      const NodeClass* nodeClass = findNodeClass(node.type());
      if (nodeClass && isValidated(*nodeClass, *plug.attribute()))
        return validateAndSet(*transform, node, plug, value);
    }
    return object && writeInternal(*object, node, plug, value);
  };
  type.mayConnect = [own](Node& node, const Plug& plug, const Plug& other,
                          bool ownIsSource) -> Result<void> {
    MPxNode* object = objectOf(node, own);
    return object ? mayConnect(*object, node, plug, other, ownIsSource) : Result<void>();
  };
  type.connectionChanged = [own](Node& node, const Plug& plug, const Plug& other, bool ownIsSource,
                                 bool made) {
    if (MPxNode* object = objectOf(node, own))
      tellConnection(*object, node, plug, other, ownIsSource, made);
  };
  type.postConstructor = [own](Node& node) {
    MPxNode* object = objectOf(node, own);
    if (!object) return;
    const auto call = [&] {
      object->postConstructor();
      return true;
    };
    fenced(node, "postConstructor", call, false);
  };
}

}  // namespace host::api
