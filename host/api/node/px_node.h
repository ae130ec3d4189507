#pragma once

#include <maya/MFnPlugin.h>
#include <maya/MPxNode.h>

#include <exception>
#include <memory>
#include <string>
#include <unordered_set>

#include "host/api/core/access.h"
#include "host/base/messages.h"

class MPxSurfaceShapeUI;

namespace host::api {

struct NodeClass;

/// What shapes of plug-ins derive from: it has the control points.
inline constexpr const char* kPluginShapeBase = "THsurfaceShape";

/// What the host keeps with a plug-in's node object. The node owns the object, so it doesn't keep
/// the node alive.
struct PxNodeRep final : SharedRep {
  ~PxNodeRep() override;
  dg::Node* node = nullptr;
  NodeClass* nodeClass = nullptr;
  bool isNotWritten = false, existsWithoutInputs = true;
  std::shared_ptr<MPxSurfaceShapeUI> ui;  ///< of shapes: what draws them, made on first use
};

/// A node type that a plug-in has registered.
struct NodeClass {
  std::string name;
  MCreatorFunction creator = nullptr;
  MPxNode::Type kind = MPxNode::kDependNode;
  dg::NodeType* type = nullptr;                   ///< owned by the registry
  MCreatorFunction matrixCreator = nullptr;       ///< of transforms with a matrix of their own
  MCreatorFunction uiCreator = nullptr;           ///< of shapes: of the class that draws them
  std::vector<const dg::Attribute*> validated{};  ///< of transforms: what validateAndSetValue sees
  std::unordered_set<PxNodeRep*>
      objects{};  ///< of nodes that live, in the scene or in the undo queue
};

/// The plug-in's object of a node, made on first use; null for built-in types and when the plug-in
/// made none.
[[nodiscard]] MPxNode* userNodeOf(dg::Node& node);

/// Calls into a plug-in's object; what it throws becomes a message, and `otherwise` the answer.
template <class Call>
auto fenced(const dg::Node& node, const char* what, const Call& call, decltype(call()) otherwise)
    -> decltype(call()) {
  try {
    return call();
  } catch (const std::exception& exception) {
    postMessage(MessageKind::Error, fmt::format("{} of '{}' threw an exception: {}", what,
                                                node.name(), exception.what()));
  } catch (...) {
    postMessage(MessageKind::Error,
                fmt::format("{} of '{}' threw an exception", what, node.name()));
  }
  return otherwise;
}

/// Whether a transform class looks at the attribute's values before they are stored.
[[nodiscard]] bool isValidated(const NodeClass& nodeClass, const dg::Attribute& attribute);
/// Hands a value to a transform's object.
/// @return true when it has stored it, false when the graph is to; an error when it is refused
Result<bool> validateAndSet(MPxTransform& object, const dg::Node& node, const dg::Plug& plug,
                            const dg::Value& value, bool isForMatrix = false);

/// Lets a type's behaviour be that of its nodes' objects.
void installHooks(dg::NodeType& type);

/// Registers a type whose attributes `initialize` makes.
Result<void> addNodeClass(NodeClass nodeClass, std::uint32_t id, const std::string& classification,
                          const std::string& pluginName, MInitializeFunction initialize);
/// Takes the type out whatever uses it; objects of nodes that are left go now, while their code is
/// still there.
void dropNodeClass(const std::string& name);
[[nodiscard]] NodeClass* findNodeClass(const dg::NodeType& type);

/// Gives the static attribute objects of MPxNode and its kin those of this session's types.
void refreshStaticAttributes(dg::TypeRegistry& types);

}  // namespace host::api
