#include <maya/MPxLocatorNode.h>

#include <algorithm>
#include <exception>
#include <memory>
#include <vector>

#include "host/api/node/plugin_points.h"
#include "host/api/node/px_node.h"
#include "host/base/messages.h"
#include "host/cmd/session.h"
#include "host/nodes/type_builder.h"

namespace host::api {
namespace {

std::vector<std::unique_ptr<NodeClass>>& classes() {
  static std::vector<std::unique_ptr<NodeClass>> all;
  return all;
}

NodeClass* findNodeClass(const std::string& name) {
  for (const auto& each : classes())
    if (each->name == name) return each.get();
  return nullptr;
}

/// A type while its initialize function runs: inheriting has to come first, so everything is put
/// together at the end.
struct TypeInMaking {
  const dg::NodeType* base = nullptr;
  bool hasInherited = false;
  std::vector<std::shared_ptr<dg::Attribute>> attributes;
  struct Relation {
    std::shared_ptr<dg::Attribute> from, to;
  };
  std::vector<Relation> relations;
  std::vector<const dg::Attribute*> validated;  ///< of transforms

  [[nodiscard]] bool has(const dg::Attribute& attribute) const {
    const dg::Attribute* top = &attribute.top();
    const auto isTop = [top](const dg::AttributePtr& each) { return each.get() == top; };
    return std::any_of(attributes.begin(), attributes.end(), isTop) ||
           std::any_of(base->attributes().begin(), base->attributes().end(), isTop);
  }
};

TypeInMaking*& inMaking() {
  static TypeInMaking* type = nullptr;
  return type;
}

/// The root of plug-in types that are not in the hierarchy; it only holds what every node has.
const dg::NodeType* plainBase(dg::TypeRegistry& types) {
  if (const dg::NodeType* known = types.find("dependNode")) return known;
  return nodes::TypeBuilder(types, "dependNode").setAbstract().finish();
}

/// The root of plug-in shapes.
const dg::NodeType* shapeBase(dg::TypeRegistry& types) {
  if (const dg::NodeType* known = types.find(kPluginShapeBase)) return known;
  nodes::TypeBuilder builder(types, kPluginShapeBase, "surfaceShape");
  builder.add(
      nodes::array(nodes::numbers("controlPoints", "cp", "double3",
                                  {nodes::distance("xValue", "xv"), nodes::distance("yValue", "yv"),
                                   nodes::distance("zValue", "zv")})));
  return builder.setAbstract().finish();
}

const dg::NodeType* baseOf(dg::TypeRegistry& types, MPxNode::Type kind) {
  switch (kind) {
    case MPxNode::kDependNode:
      return plainBase(types);
    case MPxNode::kLocatorNode:
      return types.find("locator");
    case MPxNode::kSurfaceShape:
      return shapeBase(types);
    case MPxNode::kTransformNode:
      return types.find("transform");
    case MPxNode::kObjectSet:
      return types.find("objectSet");
    case MPxNode::kDeformerNode:
      return types.find("weightGeometryFilter");
    case MPxNode::kGeometryFilter:
      return types.find("geometryFilter");
    default:
      return nullptr;
  }
}

Result<void> runInitialize(const std::string& name, TypeInMaking& type,
                           MInitializeFunction initialize) {
  if (!initialize) return {};
  struct Scope {
    explicit Scope(TypeInMaking* now) : before(std::exchange(inMaking(), now)) {}
    ~Scope() { inMaking() = before; }
    TypeInMaking* before;
  } scope(&type);
  MStatus status = MStatus::kFailure;
  try {
    status = initialize();
  } catch (const std::exception& exception) {
    return fail("Initializing node type '{}' threw an exception: {}", name, exception.what());
  } catch (...) {
    return fail("Initializing node type '{}' threw an exception", name);
  }
  if (status == MStatus::kSuccess) return {};
  return fail("Initializing node type '{}' failed: {}", name, status.errorString().asChar());
}

}  // namespace

NodeClass* findNodeClass(const dg::NodeType& type) {
  return type.pluginName.empty() ? nullptr : findNodeClass(type.name);
}

PxNodeRep::~PxNodeRep() {
  if (nodeClass) nodeClass->objects.erase(this);
}

MPxNode* userNodeOf(dg::Node& node) {
  if (node.userObject) return static_cast<MPxNode*>(node.userObject.get());
  NodeClass* nodeClass = findNodeClass(node.type());
  if (!nodeClass || !node.isAlive()) return nullptr;
  std::shared_ptr<MPxNode> object;
  try {
    object.reset(static_cast<MPxNode*>(nodeClass->creator()));
  } catch (...) {
    postMessage(MessageKind::Error,
                "Making a node of type '" + nodeClass->name + "' threw an exception");
  }
  if (!object) return nullptr;
  auto* rep = new PxNodeRep;
  rep->node = &node;
  rep->nodeClass = nodeClass;
  nodeClass->objects.insert(rep);
  Access::handle(*object) = Handle(rep);
  node.userObject = object;
  return object.get();
}

Result<void> addNodeClass(NodeClass nodeClass, std::uint32_t id, const std::string& classification,
                          const std::string& pluginName, MInitializeFunction initialize) {
  dg::TypeRegistry& types = cmd::currentSession().types();
  const std::string name = nodeClass.name;
  if (name.empty() || !nodeClass.creator)
    return fail("A node type needs a name and a creator function");
  if (types.find(name))
    return fail(ErrorKind::BadArgument, "A node type named '{}' is registered already", name);
  if (const dg::NodeType* other = types.find(id))
    return fail(ErrorKind::BadArgument, "The id {:#x} of node type '{}' is taken by '{}'", id, name,
                other->name);
  TypeInMaking making;
  making.base = baseOf(types, nodeClass.kind);
  if (!making.base)
    return fail("Node type '{}': nodes of this kind can't be added by plug-ins here", name);
  refreshStaticAttributes(types);
  HOST_TRY(runInitialize(name, making, initialize));

  auto type = std::make_unique<dg::NodeType>();
  type->inherit(making.base);
  type->name = name;
  type->id = id;
  type->classification = classification;
  type->pluginName = pluginName;
  type->existsWithoutOutputs = making.base->existsWithoutOutputs;
  for (const auto& attribute : making.attributes) (void)type->add(attribute);
  const dg::Attribute* nodeState = type->find("nodeState");
  for (const auto& [from, to] : making.relations) {
    type->affects(from.get(), to.get());
    // Whether a node has its effect is part of everything it computes.
    if (nodeState) type->affects(nodeState, to.get());
  }
  installHooks(*type);
  nodeClass.type = type.get();
  nodeClass.validated = making.validated;
  const auto added = types.add(std::move(type));
  if (!added) return failWith(added.error());
  if (nodeClass.kind == MPxNode::kSurfaceShape)
    scene::setPointShape(*nodeClass.type, &pluginPoints());
  classes().push_back(std::make_unique<NodeClass>(std::move(nodeClass)));
  return {};
}

void dropNodeClass(const std::string& name) {
  NodeClass* nodeClass = findNodeClass(name);
  if (!nodeClass) return;
  // Deleted nodes of the type may wait in the undo queue to come back.
  cmd::currentSession().undo().flush();
  scene::setPointShape(*nodeClass->type, nullptr);
  (void)cmd::currentSession().types().remove(name);
  while (!nodeClass->objects.empty()) {
    PxNodeRep* rep = *nodeClass->objects.begin();
    nodeClass->objects.erase(rep);
    rep->nodeClass = nullptr;
    rep->node->userObject.reset();
  }
  std::erase_if(classes(), [nodeClass](const auto& each) { return each.get() == nodeClass; });
}

}  // namespace host::api

using namespace host;

MStatus MPxNode::addAttribute(const MObject& attribute) {
  api::TypeInMaking* type = api::inMaking();
  const auto* rep = api::objectAs<api::AttributeRep>(attribute);
  if (!type || !rep) return MStatus::kInvalidParameter;
  // A child comes with its compound.
  if (rep->attribute->parent || type->has(*rep->attribute)) return MStatus::kSuccess;
  if (rep->attribute->topIndex >= 0) {
    api::rememberError(
        Error{"Attribute '" + rep->attribute->longName + "' belongs to a node type already"});
    return MStatus::kFailure;
  }
  type->attributes.push_back(rep->attribute);
  return MStatus::kSuccess;
}
MStatus MPxNode::attributeAffects(const MObject& whenChanges, const MObject& isAffected) {
  api::TypeInMaking* type = api::inMaking();
  const auto* from = api::objectAs<api::AttributeRep>(whenChanges);
  const auto* to = api::objectAs<api::AttributeRep>(isAffected);
  if (!type || !from || !to) return MStatus::kInvalidParameter;
  if (!type->has(*from->attribute) || !type->has(*to->attribute)) return MStatus::kInvalidParameter;
  type->relations.push_back({from->attribute, to->attribute});
  return MStatus::kSuccess;
}
MStatus MPxNode::inheritAttributesFrom(const MString& parentClassName) {
  api::TypeInMaking* type = api::inMaking();
  const dg::NodeType* parent = cmd::currentSession().types().find(parentClassName.asChar());
  if (!type || !parent || type->hasInherited || !parent->isA(type->base->name))
    return MStatus::kInvalidParameter;
  type->base = parent;
  type->hasInherited = true;
  return MStatus::kSuccess;
}
MStatus MPxTransform::mustCallValidateAndSet(const MObject& attribute) {
  api::TypeInMaking* type = api::inMaking();
  const auto* rep = api::objectAs<api::AttributeRep>(attribute);
  if (!type || !rep) return MStatus::kInvalidParameter;
  // The transform's own need no look: they are in the matrix before it is asked for.
  if (rep->attribute->topIndex >= 0) return MStatus::kSuccess;
  const std::function<void(dg::Attribute&)> mark = [&](dg::Attribute& each) {
    each.internalStorage = true;
    for (const auto& child : each.children) mark(*child);
  };
  mark(*rep->attribute);
  type->validated.push_back(rep->attribute.get());
  return MStatus::kSuccess;
}
