#include "host/nodes/dag_node.h"

#include <algorithm>
#include <unordered_map>
#include <utility>
#include <vector>

#include "host/nodes/curve/surface_nodes.h"
#include "host/scene/dag_paths.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using scene::DagPath;

dg::Value matrixValue(const Matrix4& matrix) {
  return dg::DataPtr(std::make_shared<dg::MatrixData>(matrix));
}

/// Zero scales leave no inverse; what depends on one then sees the identity.
Matrix4 inverseOrIdentity(const Matrix4& matrix) {
  return math::inverse(matrix).value_or(Matrix4{});
}

Result<Matrix4> pullMatrix(dg::Graph& graph, const Plug& plug) {
  auto value = graph.get(plug);
  if (!value) return failWith(value.error());
  const auto* data = dg::dataAs<dg::MatrixData>(*value);
  return data ? data->value : Matrix4{};
}

AttributePtr boxCorner(const std::string& longName, const std::string& shortName,
                       const std::string& childShortName) {
  return triple(longName, shortName, AttributeType::Distance, {}, childShortName);
}

AttributePtr drawOverrides() {
  return compound(
      "drawOverride", "do",
      {choice("overrideDisplayType", "ovdt", {"Normal", "Template", "Reference"}),
       choice("overrideLevelOfDetail", "ovlod", {"Full", "Bounding Box"}),
       boolean("overrideShading", "ovs", true), boolean("overrideTexturing", "ovt", true),
       boolean("overridePlayback", "ovp", true), boolean("overrideEnabled", "ove"),
       boolean("overrideVisibility", "ovv", true), boolean("hideOnPlayback", "hpb"),
       boolean("overrideRGBColors", "ovrgbf"),
       limited(dg::makeAttribute("overrideColor", "ovc", AttributeType::Byte), 0, 31),
       color("overrideColorRGB", "ovrgb"), single("overrideColorA", "ova", 1)});
}

AttributePtr instanceGroups() {
  return array(compound("instObjGroups", "iog",
                        {array(compound("objectGroups", "og",
                                        {dg::makeTyped("objectGrpCompList", "gcl", "componentList"),
                                         integer("objectGroupId", "gid", -1),
                                         shortInteger("objectGrpColor", "gco", -1)}))}));
}

/// Attributes of a node that holds matrices, as one bundle for the functions below.
struct DagAttributes {
  const Attribute *matrix, *inverseMatrix, *world, *worldInverse, *parent, *parentInverse;
  const Attribute *boxMin, *boxMax, *boxSize, *center;
};

/// Brings the matrices above up to date from the top down: a hierarchy may be deeper than what can
/// be evaluated one inside the other.
void refreshAbove(const DagAttributes& attributes, dg::Graph& graph, scene::PathAbove above) {
  std::vector<Plug> dirty;
  while (above.parent) {
    const Plug world =
        Plug(above.parent, attributes.world).element(static_cast<Index>(above.number));
    if (!graph.isDirty(world)) break;
    dirty.push_back(world);
    above = scene::pathAbove(*above.parent, above.number);
  }
  for (std::size_t i = dirty.size(); i-- > 1;) (void)graph.evaluate(dirty[i]);
}

Result<Computed> computeInstanceMatrix(const DagAttributes& attributes, Node& node,
                                       const Plug& plug, Index instance, DataBlock& block) {
  const Attribute* wanted = plug.attribute();
  const auto element = [&](const Attribute* attribute) {
    return Plug(&node, attribute).element(instance);
  };
  const auto store = [&](const Matrix4& value) {
    block.output(element(wanted), matrixValue(value));
  };
  const auto pull = [&](const Attribute* attribute) {
    return pullMatrix(block.graph(), element(attribute));
  };
  if (wanted == attributes.worldInverse || wanted == attributes.parentInverse) {
    const auto forward =
        pull(wanted == attributes.worldInverse ? attributes.world : attributes.parent);
    if (!forward) return failWith(forward.error());
    store(inverseOrIdentity(*forward));
    return Computed::Done;
  }
  scene::PathAbove above = scene::pathAbove(node, static_cast<std::uint64_t>(instance));
  if (wanted == attributes.parent) {
    // Under a node that is between two places there is no path to the top. Who asks then has to
    // hang on that node all the same, to hear when it has its place.
    const std::vector<Node*>& parents = scene::dagLinks(node).parents;
    if (!above.isThere && instance == 0 && !parents.empty()) above = {parents.front(), 0};
    if (!above.parent) {
      store({});
      return Computed::Done;
    }
    refreshAbove(attributes, block.graph(), above);
    // Pulled through the parent's plug, so that a later change up there finds its way down here.
    const Plug parentWorld(above.parent, attributes.world);
    const auto matrix =
        pullMatrix(block.graph(), parentWorld.element(static_cast<Index>(above.number)));
    if (!matrix) return failWith(matrix.error());
    store(*matrix);
    return Computed::Done;
  }
  const auto parent = pull(attributes.parent);
  if (!parent) return failWith(parent.error());
  if (!scene::isTransform(node)) {
    store(*parent);
    return Computed::Done;
  }
  const Matrix4 local = block.matrix(attributes.matrix);
  const Attribute* inherits = node.type().find("inheritsTransform");
  const bool standsAlone = !above.parent || (inherits && !block.boolean(inherits));
  store(standsAlone ? local : local * *parent);
  return Computed::Done;
}

Result<Computed> computeDag(const DagAttributes& attributes, Node& node, const Plug& plug,
                            DataBlock& block) {
  const Attribute* wanted = plug.attribute();
  if (wanted == attributes.inverseMatrix) {
    block.output(wanted, matrixValue(inverseOrIdentity(block.matrix(attributes.matrix))));
    return Computed::Done;
  }
  if (wanted == attributes.matrix) {
    block.output(wanted, matrixValue({}));
    return Computed::Done;
  }
  if (wanted != attributes.world && wanted != attributes.worldInverse &&
      wanted != attributes.parent && wanted != attributes.parentInverse)
    return Computed::Unhandled;
  if (plug.isElement())
    return computeInstanceMatrix(attributes, node, plug, plug.logicalIndex(), block);
  const auto instances = static_cast<Index>(std::min(scene::pathCount(node), scene::kMostPaths));
  for (Index i = 0; i < instances; ++i) {
    auto done = computeInstanceMatrix(attributes, node, plug, i, block);
    if (!done) return done;
  }
  return Computed::Done;
}

/// A place at which the node does not stand has no matrix and leaves no element behind.
bool readNoPlace(const DagAttributes& attributes, const Node& node, const Plug& plug,
                 dg::Value& value) {
  const Attribute* wanted = plug.attribute();
  if (wanted != attributes.world && wanted != attributes.worldInverse &&
      wanted != attributes.parent && wanted != attributes.parentInverse)
    return false;
  const Index place = plug.isElement() ? plug.logicalIndex() : 0;
  if (place <= 0 || static_cast<std::uint64_t>(place) < scene::pathCount(node)) return false;
  value = matrixValue({});
  return true;
}

bool readBox(const DagAttributes& attributes, const Node& node, const Plug& plug,
             dg::Value& value) {
  const Attribute* triple = plug.attribute()->parent;
  if (!triple || (triple != attributes.boxMin && triple != attributes.boxMax &&
                  triple != attributes.boxSize && triple != attributes.center))
    return false;
  const math::Box box = boundingBoxOf(const_cast<Node&>(node));
  const math::Vec3 chosen = box.isEmpty()                  ? math::Vec3{}
                            : triple == attributes.boxMin  ? box.min
                            : triple == attributes.boxMax  ? box.max
                            : triple == attributes.boxSize ? box.size()
                                                           : box.center();
  value = chosen[plug.attribute()->childIndex];
  return true;
}

void registerDagNode(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "dagNode", "entity");
  builder.setAbstract();
  DagAttributes a{};
  const Attribute* box = builder.add(internal(output(compound(
      "boundingBox", "bb",
      {boxCorner("boundingBoxMin", "bbmn", "bbn"), boxCorner("boundingBoxMax", "bbmx", "bbx"),
       boxCorner("boundingBoxSize", "bbsi", "bbs")}))));
  a.boxMin = box->children[0].get();
  a.boxMax = box->children[1].get();
  a.boxSize = box->children[2].get();
  AttributePtr center = boxCorner("center", "c", "bc");
  for (int axis = 0; axis < 3; ++axis)
    center->children[at(axis)]->longName = std::string("boundingBoxCenter") + "XYZ"[axis];
  a.center = builder.add(internal(output(std::move(center))));
  a.matrix = builder.add(output(matrix("matrix", "m")));
  a.inverseMatrix = builder.add(output(matrix("inverseMatrix", "im")));
  const auto addInstanced = [&](const char* longName, const char* shortName) {
    AttributePtr attribute = array(internal(output(matrix(longName, shortName))));
    attribute->worldSpace = true;
    return builder.add(std::move(attribute));
  };
  a.world = addInstanced("worldMatrix", "wm");
  a.worldInverse = addInstanced("worldInverseMatrix", "wim");
  a.parent = addInstanced("parentMatrix", "pm");
  a.parentInverse = addInstanced("parentInverseMatrix", "pim");
  builder.add(keyable(boolean("visibility", "v", true)));
  builder.add(boolean("intermediateObject", "io"));
  builder.add(boolean("template", "tmp"));
  builder.add(instanceGroups());
  builder.add(color("objectColorRGB", "obcc"));
  builder.add(color("wireColorRGB", "wfcc"));
  builder.add(choice("useObjectColor", "uoc", {"Off", "Index Color", "RGB Color"}));
  builder.add(limited(shortInteger("objectColor", "oc"), 0, 7));
  builder.add(drawOverrides());
  builder.add(boolean("lodVisibility", "lodv", true));
  builder.add(boolean("selectionChildHighlighting", "sch", true));
  builder.add(
      compound("renderInfo", "ri",
               {shortInteger("identification", "rlid"), boolean("layerRenderable", "rndr", true),
                shortInteger("layerOverrideColor", "lovc")}));
  builder.add(boolean("ghosting", "gh"));
  builder.add(boolean("hiddenInOutliner", "hio"));
  builder.add(color("outlinerColor", "oclr"));
  builder.add(boolean("useOutlinerColor", "uocol"));

  builder.type().markOutput(a.matrix);
  builder.type().markOutput(a.parent);  // follows the hierarchy, which is not an attribute
  builder.affects({a.matrix}, {a.inverseMatrix, a.world, a.worldInverse});
  builder.affects({a.parent}, {a.parentInverse, a.world, a.worldInverse});
  builder.type().compute = [a](Node& node, const Plug& plug, DataBlock& block) {
    return computeDag(a, node, plug, block);
  };
  builder.type().getInternal = [a](const Node& node, const Plug& plug, dg::Value& value) {
    return readNoPlace(a, node, plug, value) || readBox(a, node, plug, value);
  };
  builder.type().dependentsDirty = [a](Node& node, const Plug& plug, std::vector<Plug>& alsoDirty) {
    if (plug.attribute() != a.world) return;
    for (Node* child : scene::dagLinks(node).children) alsoDirty.push_back(Plug(child, a.parent));
  };
  builder.finish();
}

}  // namespace

namespace {

math::Box boxOfShape(Node& shape) {
  math::Box box;
  const Plug outMesh = shape.plug("outMesh");
  if (!outMesh) {
    if (shape.type().isA("nurbsCurve") || shape.type().isA("nurbsSurface"))
      return boundsOfCurved(shape);
    // A plug-in's shape says how large it is; a base type would ask here again.
    if (shape.type().pluginName.empty() || !shape.type().isA("surfaceShape")) return box;
    const auto low = shape.graph().getVec3(shape.plug("boundingBoxMin"));
    const auto high = shape.graph().getVec3(shape.plug("boundingBoxMax"));
    if (low) box.add(*low);
    if (high) box.add(*high);
    return box;
  }
  const auto value = shape.graph().get(outMesh);
  const auto* data = value ? dg::dataAs<scene::MeshData>(*value) : nullptr;
  if (data)
    for (const math::Vec3f& point : data->mesh.points()) box.add(math::Vec3(point));
  return box;
}

bool isIntermediate(Node& node) {
  const Plug hidden = node.plug("intermediateObject");
  const auto value = hidden ? node.graph().get(hidden) : Result<dg::Value>();
  return hidden && value && dg::equal(*value, std::int64_t{1});
}

}  // namespace

math::Box boundingBoxOf(Node& dagNode) {
  // Each node once, however many instances lead to it, and without recursion.
  std::unordered_map<Node*, math::Box> known;
  std::vector<std::pair<Node*, bool>> open{{&dagNode, false}};
  while (!open.empty()) {
    const auto [node, isExpanded] = open.back();
    if (known.contains(node)) {
      open.pop_back();
    } else if (scene::isShape(*node)) {
      known.emplace(node, boxOfShape(*node));
    } else if (!isExpanded) {
      open.back().second = true;
      for (Node* child : scene::dagLinks(*node).children)
        if (!isIntermediate(*child)) open.emplace_back(child, false);
    } else {
      math::Box box;
      for (Node* child : scene::dagLinks(*node).children)
        if (const auto below = known.find(child); below != known.end() && !below->second.isEmpty())
          box.add(below->second);
      known.emplace(node, box.isEmpty() ? box : box.transformed(scene::localMatrix(*node)));
    }
  }
  return known.at(&dagNode);
}

void registerDagBaseTypes(dg::TypeRegistry& types) {
  TypeBuilder(types, "containerBase").setAbstract().finish();
  TypeBuilder(types, "entity", "containerBase").setAbstract().finish();
  registerDagNode(types);
  TypeBuilder(types, "shape", "dagNode").setAbstract().finish();
  TypeBuilder(types, "geometryShape", "shape").setAbstract().finish();
  TypeBuilder(types, "deformableShape", "geometryShape").setAbstract().finish();
  TypeBuilder(types, "controlPoint", "deformableShape").setAbstract().finish();
  TypeBuilder(types, "surfaceShape", "controlPoint").setAbstract().finish();
}

}  // namespace host::nodes
