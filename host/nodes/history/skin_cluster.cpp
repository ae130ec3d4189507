#include "host/nodes/history/skin_cluster.h"

#include <algorithm>
#include <map>
#include <tuple>

#include "host/base/parallel.h"
#include "host/dg/data.h"
#include "host/dg/graph.h"
#include "host/math/quaternion.h"
#include "host/math/transform.h"
#include "host/mesh/adjacency.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"
#include "host/scene/dag_paths.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using math::Quaternion;
using math::Vec3;

/// A rotation and a translation as one number, to be mixed.
struct DualQuaternion {
  Quaternion real{0, 0, 0, 0}, dual{0, 0, 0, 0};

  static DualQuaternion of(const Matrix4& matrix) {
    const math::TransformComponents parts = math::decompose(matrix);
    DualQuaternion result;
    result.real = math::toQuaternion(math::eulerToMatrix(parts.rotate));
    const Vec3& t = parts.translate;
    // Half of translation times rotation; products follow the matrices.
    const Quaternion moved = result.real * Quaternion{t.x, t.y, t.z, 0};
    result.dual = {moved.x / 2, moved.y / 2, moved.z / 2, moved.w / 2};
    return result;
  }
  void add(const DualQuaternion& other, double weight) {
    // The same rotation has two signs: all are taken on the side of the first.
    const double sign = math::dot(real, other.real) < 0 ? -weight : weight;
    const auto mix = [sign](Quaternion& into, const Quaternion& q) {
      into = {into.x + sign * q.x, into.y + sign * q.y, into.z + sign * q.z, into.w + sign * q.w};
    };
    mix(real, other.real);
    mix(dual, other.dual);
  }
  [[nodiscard]] Matrix4 matrix() const {
    const double size = std::sqrt(math::dot(real, real));
    if (size < 1e-12) return {};
    const Quaternion r = math::normalized(real);
    const Quaternion d{dual.x / size, dual.y / size, dual.z / size, dual.w / size};
    const Quaternion t = math::conjugate(r) * d;
    Matrix4 result = math::toMatrix(r);
    result[3][0] = 2 * t.x;
    result[3][1] = 2 * t.y;
    result[3][2] = 2 * t.z;
    return result;
  }
};

void addScaled(Matrix4& sum, const Matrix4& matrix, double weight) {
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) sum[row][column] += weight * matrix[row][column];
}

enum class Method : std::uint8_t { Linear, DualQuaternions, Blended };

/// Where the vertices of a geometry go.
class Skin {
 public:
  Skin(std::map<Index, Matrix4> matrices, Method method)
      : matrices_(std::move(matrices)), method_(method) {
    if (method_ == Method::Linear) return;
    for (const auto& [index, matrix] : matrices_) rigid_[index] = DualQuaternion::of(matrix);
  }

  [[nodiscard]] Matrix4 at(const SkinWeights& weights, double blend) const {
    double sum = 0;
    Matrix4 linear = Matrix4::scaling({0, 0, 0});
    linear[3][3] = 0;
    for (std::size_t i = 0; i < weights.influences.size(); ++i) {
      const auto found = matrices_.find(weights.influences[i]);
      if (found == matrices_.end() || weights.values[i] == 0) continue;
      addScaled(linear, found->second, weights.values[i]);
      sum += weights.values[i];
    }
    addScaled(linear, {}, 1 - sum);
    const double share = method_ == Method::Linear            ? 0
                         : method_ == Method::DualQuaternions ? 1
                                                              : std::clamp(blend, 0.0, 1.0);
    if (share == 0) return linear;
    DualQuaternion mixed;
    for (std::size_t i = 0; i < weights.influences.size(); ++i)
      if (const auto found = rigid_.find(weights.influences[i]); found != rigid_.end())
        mixed.add(found->second, weights.values[i]);
    if (sum < 1) mixed.add(DualQuaternion::of({}), 1 - sum);
    Matrix4 result = Matrix4::scaling({0, 0, 0});
    result[3][3] = 0;
    addScaled(result, linear, 1 - share);
    addScaled(result, mixed.matrix(), share);
    return result;
  }

 private:
  std::map<Index, Matrix4> matrices_;
  std::map<Index, DualQuaternion> rigid_;
  Method method_;
};

Plug weightsPlug(Node& cluster, VertexId vertex) {
  const Plug lists = cluster.plug("weightList");
  return lists.element(vertex).child(lists.attribute()->find("weights"));
}

Result<Matrix4> matrixAt(dg::Graph& graph, const Plug& plug) {
  const auto value = graph.get(plug);
  if (!value) return failWith(value.error());
  const auto* data = dg::dataAs<dg::MatrixData>(*value);
  return data ? data->value : Matrix4();
}

std::int64_t integerAt(Node& node, std::string_view attribute) {
  const auto value = node.graph().get(node.plug(attribute));
  const auto* number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
  return number ? *number : 0;
}

/// What each influence does to a point of the geometry, in the geometry's own space.
Result<std::map<Index, Matrix4>> skinMatrices(Node& cluster) {
  dg::Graph& graph = cluster.graph();
  const auto there = matrixAt(graph, cluster.plug("geomMatrix"));
  if (!there) return failWith(there.error());
  const auto back = math::inverse(*there);
  if (!back) return fail("'{}' has a geomMatrix with a scale of zero", cluster.name());
  std::map<Index, Matrix4> matrices;
  const Plug now = cluster.plug("matrix"), bound = cluster.plug("bindPreMatrix");
  for (const Index index : graph.elementIndices(now)) {
    const auto at = matrixAt(graph, now.element(index));
    if (!at) return failWith(at.error());
    Matrix4 before;
    if (graph.elementExists(bound.element(index))) {
      const auto stored = matrixAt(graph, bound.element(index));
      if (!stored) return failWith(stored.error());
      before = *stored;
    }
    matrices[index] = *there * before * *at * *back;
  }
  return matrices;
}

double blendAt(Node& cluster, VertexId vertex) {
  const Plug plug = cluster.plug("blendWeights").element(vertex);
  if (!cluster.graph().elementExists(plug)) return 0;
  const auto value = cluster.graph().get(plug);
  const auto* number = value ? std::get_if<double>(&*value) : nullptr;
  return number ? *number : 0;
}

/// Moves points, and locked normals when they are to turn along.
void moveAll(mesh::Mesh& mesh, const std::vector<VertexId>& vertices,
             const std::vector<Matrix4>& places, double envelope, bool turnsNormals) {
  std::vector<std::int32_t> placeOf(at(mesh.vertexCount()), -1);
  const auto points = mesh.editPoints();
  parallelFor(vertices.size(), 4096, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) {
      const VertexId v = vertices[i];
      placeOf[at(v)] = static_cast<std::int32_t>(i);
      const Vec3 rest(points[at(v)]);
      points[at(v)] = (rest + (math::transformPoint(rest, places[i]) - rest) * envelope).toFloat();
    }
  });
  if (!turnsNormals || mesh.lockedNormals().locked.empty()) return;
  mesh::LockedNormals normals = mesh.lockedNormals();
  for (CornerId c = 0; c < mesh.cornerCount(); ++c) {
    const std::int32_t place = placeOf[at(mesh.cornerVertex(c))];
    if (normals.locked[at(c)] == 0 || place < 0) continue;
    const Vec3 rest(normals.normals[at(c)]);
    const Vec3 turned = math::normalized(math::transformNormal(rest, places[at(place)]));
    const Vec3 mixed = math::normalized(rest + (turned - rest) * envelope);
    if (length(mixed) > 0) normals.normals[at(c)] = mixed.toFloat();
  }
  mesh.setLockedNormals(std::move(normals));
}

std::vector<VertexId> deformedVertices(Node& cluster, Index geometry, const mesh::Mesh& mesh) {
  std::vector<VertexId> all(at(mesh.vertexCount()));
  for (VertexId v = 0; v < mesh.vertexCount(); ++v) all[at(v)] = v;
  const auto named = deformedComponents(cluster, geometry);
  if (!named) return all;
  std::vector<VertexId> some;
  for (const scene::Component& component : named->value)
    for (const Index v : mesh::convertComponents(
             mesh, component.type(), componentIds(mesh, component), mesh::ComponentType::Vertex))
      some.push_back(v);
  std::ranges::sort(some);
  some.erase(std::unique(some.begin(), some.end()), some.end());
  return some;
}

Result<dg::Value> skinned(Node& cluster, Index geometry, const dg::Value& arriving,
                          double envelope) {
  const auto* data = dg::dataAs<scene::MeshData>(arriving);
  constexpr std::int64_t kHasNoEffect = 1;
  if (!data || envelope == 0 || integerAt(cluster, "nodeState") == kHasNoEffect) return arriving;
  auto matrices = skinMatrices(cluster);
  if (!matrices) return failWith(matrices.error());
  if (matrices->empty()) return arriving;
  const std::int64_t number = integerAt(cluster, "skinningMethod");
  const auto method = static_cast<Method>(std::clamp<std::int64_t>(number, 0, 2));
  const Skin skin(*std::move(matrices), method);
  constexpr std::int64_t kPost = 2;
  const bool normalizes = integerAt(cluster, "normalizeWeights") == kPost;
  mesh::Mesh mesh = data->mesh;
  const std::vector<VertexId> vertices = deformedVertices(cluster, geometry, mesh);
  std::vector<Matrix4> places;
  places.reserve(vertices.size());
  for (const VertexId v : vertices) {
    SkinWeights weights = skinWeights(cluster, v);
    if (normalizes) weights.normalize(-1);
    places.push_back(skin.at(weights, method == Method::Blended ? blendAt(cluster, v) : 0));
  }
  moveAll(mesh, vertices, places, envelope, integerAt(cluster, "deformUserNormals") != 0);
  return dg::Value(dg::DataPtr(std::make_shared<scene::MeshData>(std::move(mesh), data->groups)));
}

AttributePtr numbersOf(std::string longName, std::string shortName, double value = 0) {
  return array(real(std::move(longName), std::move(shortName), value));
}

// Binding
// -------------------------------------------------------------------------------------------------

struct Bone {
  Index index = 0;
  Vec3 head;
  std::vector<Vec3> tails;
  std::vector<Node*> line;  ///< the node and those above it
};

std::vector<Bone> bonesOf(Node& cluster) {
  std::vector<Bone> bones;
  const std::vector<SkinInfluence> influences = skinInfluences(cluster);
  for (const SkinInfluence& influence : influences) {
    Bone bone{influence.index, {}, {}, {}};
    scene::DagPath path = scene::firstPath(*influence.node);
    bone.head = math::transformPoint({}, path.inclusiveMatrix());
    for (; !path.isWorld(); path = path.parent()) bone.line.push_back(path.node());
    bones.push_back(std::move(bone));
  }
  for (Bone& bone : bones)
    for (const Bone& other : bones)
      if (other.line.size() > 1 && other.line[1] == bone.line.front())
        bone.tails.push_back(other.head);
  return bones;
}

double distanceTo(const Bone& bone, const Vec3& p) {
  double nearest = length(p - bone.head);
  for (const Vec3& tail : bone.tails) {
    const Vec3 along = tail - bone.head;
    const double size = dot(along, along);
    const double t = size > 0 ? std::clamp(dot(p - bone.head, along) / size, 0.0, 1.0) : 0;
    nearest = std::min(nearest, length(p - (bone.head + along * t)));
  }
  return nearest;
}

/// How many steps up and down lead from one bone to another.
std::size_t stepsBetween(const Bone& a, const Bone& b) {
  std::size_t common = 0;
  while (common < a.line.size() && common < b.line.size() &&
         a.line[a.line.size() - 1 - common] == b.line[b.line.size() - 1 - common])
    ++common;
  return a.line.size() + b.line.size() - 2 * common;
}

SkinWeights weightsByDistance(const std::vector<Bone>& bones, const Vec3& p,
                              const SkinBinding& binding) {
  std::vector<std::pair<double, std::size_t>> order;
  for (std::size_t i = 0; i < bones.size(); ++i) order.emplace_back(distanceTo(bones[i], p), i);
  // What lies past the end of a bone is as far from the joint that stands there, and is its.
  std::ranges::sort(order, {}, [&](const auto& each) {
    return std::tuple(static_cast<float>(each.first), -std::ssize(bones[each.second].line),
                      each.second);
  });
  if (binding.byHierarchy && !order.empty()) {
    const Bone& nearest = bones[order.front().second];
    std::stable_sort(order.begin(), order.end(), [&](const auto& a, const auto& b) {
      return stepsBetween(nearest, bones[a.second]) < stepsBetween(nearest, bones[b.second]);
    });
  }
  if (order.size() > at(binding.mostInfluences)) order.resize(at(binding.mostInfluences));
  SkinWeights weights;
  double least = 1e300;
  for (const auto& [distance, i] : order) least = std::min(least, distance);
  for (const auto& [distance, i] : order)
    weights.set(bones[i].index,
                distance <= 1e-9 ? 1 : std::pow(std::max(least, 1e-9) / distance, binding.dropoff));
  weights.normalize(-1);
  return weights;
}

}  // namespace

void registerSkinCluster(dg::TypeRegistry& types) {
  TypeBuilder skin(types, "skinCluster", "geometryFilter", typeCode("FSKN"));
  skin.livesByItsOutputs();
  const Attribute* weights =
      skin.add(array(compound("weightList", "wl", {numbersOf("weights", "w")})));
  const Attribute* bound = skin.add(array(matrix("bindPreMatrix", "pm")));
  const Attribute* there = skin.add(matrix("geomMatrix", "gm"));
  const Attribute* now = skin.add(array(matrix("matrix", "ma")));
  skin.add(array(color("influenceColor", "ifcl")));
  skin.add(array(boolean("lockWeights", "lw")));
  skin.add(numbersOf("dropoff", "dpf", 4));
  skin.add(numbersOf("smoothness", "smt"));
  skin.add(boolean("maintainMaxInfluences", "mmi"));
  skin.add(integer("maxInfluences", "mi", 2));
  skin.add(choice("bindMethod", "bm", {"Closest distance", "Closest in hierarchy"}, 1));
  skin.add(dg::makeTyped("paintWeights", "ptw", "doubleArray"));
  skin.add(integer("paintTrans", "ptt"));
  skin.add(boolean("useComponents", "uc"));
  skin.add(array(integer("nurbsSamples", "ns", 10)));
  skin.add(boolean("useComponentsMatrix", "ucm"));
  const Attribute* sums =
      skin.add(choice("normalizeWeights", "nw", {"None", "Interactive", "Post"}, 1));
  const Attribute* normals = skin.add(boolean("deformUserNormals", "dun", true));
  const Attribute* method = skin.add(
      choice("skinningMethod", "skm", {"Classic Linear", "Dual Quaternion", "Weight Blended"}));
  const Attribute* blends = skin.add(numbersOf("blendWeights", "bw"));
  skin.add(message("bindPose", "bp"));
  const Attribute* inputs = skin["input"];
  const Attribute* arriving = inputs->find("inputGeometry");
  const Attribute* envelope = skin["envelope"];
  const Attribute* result = skin["outputGeometry"];
  skin.affects({weights, bound, there, now, sums, normals, method, blends}, {result});
  skin.type().compute = [=](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != result || !plug.isElement()) return Computed::Unhandled;
    const Index geometry = plug.logicalIndex();
    const auto mesh =
        arrivingGeometry(block.graph(), Plug(&node, inputs).element(geometry).child(arriving));
    if (!mesh) return failWith(mesh.error());
    auto moved = skinned(node, geometry, *mesh, block.real(envelope));
    if (!moved) return failWith(moved.error());
    block.output(plug, *std::move(moved));
    return Computed::Done;
  };
  skin.finish();
}

std::vector<SkinInfluence> skinInfluences(Node& cluster) {
  std::vector<SkinInfluence> found;
  const Plug matrices = cluster.plug("matrix");
  for (const Index index : cluster.graph().elementIndices(matrices))
    if (const Plug source = cluster.graph().source(matrices.element(index)))
      found.push_back({index, source.node()});
  return found;
}

Result<Index> addSkinInfluence(scene::Document& document, Node& cluster, Node& transform) {
  dg::Graph& graph = document.graph();
  Index index = 0;
  for (const SkinInfluence& other : skinInfluences(cluster)) {
    if (other.node == &transform)
      return fail("'{}' is an influence of '{}' already.", transform.name(), cluster.name());
    index = std::max(index, other.index + 1);
  }
  const auto back = math::inverse(scene::firstPath(transform).inclusiveMatrix());
  if (!back) return fail("'{}' has a scale of zero: nothing can follow it.", transform.name());
  HOST_TRY(graph.connect(transform.plug("worldMatrix").element(0),
                         cluster.plug("matrix").element(index)));
  HOST_TRY(graph.set(cluster.plug("bindPreMatrix").element(index),
                     dg::DataPtr(std::make_shared<dg::MatrixData>(*back))));
  return index;
}

Result<void> removeSkinInfluence(scene::Document& document, Node& cluster, Node& transform) {
  dg::Graph& graph = document.graph();
  const std::vector<SkinInfluence> influences = skinInfluences(cluster);
  const auto others =
      std::ranges::find_if(influences, [&](const auto& each) { return each.node != &transform; });
  for (const SkinInfluence& influence : influences) {
    if (influence.node != &transform) continue;
    for (const Index v : graph.elementIndices(cluster.plug("weightList"))) {
      SkinWeights weights = skinWeights(cluster, v);
      if (weights.of(influence.index) == 0) continue;
      weights.set(influence.index, 0);
      const bool isLeft = std::ranges::any_of(weights.values, [](double w) { return w != 0; });
      if (!isLeft && others != influences.end()) weights.set(others->index, 1);
      weights.normalize(-1);
      HOST_TRY(setSkinWeights(cluster, v, std::move(weights)));
    }
    const Plug element = cluster.plug("matrix").element(influence.index);
    HOST_TRY(graph.disconnect(graph.source(element), element));
    HOST_TRY(graph.removeElement(element, true));
    return {};
  }
  return fail("'{}' is no influence of '{}'.", transform.name(), cluster.name());
}

double SkinWeights::of(Index influence) const {
  const auto found = std::ranges::lower_bound(influences, influence);
  if (found == influences.end() || *found != influence) return 0;
  return values[at(static_cast<Index>(found - influences.begin()))];
}

void SkinWeights::set(Index influence, double value) {
  const auto found = std::ranges::lower_bound(influences, influence);
  const auto place = found - influences.begin();
  if (found != influences.end() && *found == influence) {
    values[static_cast<std::size_t>(place)] = value;
    return;
  }
  influences.insert(found, influence);
  values.insert(values.begin() + place, value);
}

void SkinWeights::normalize(Index kept) {
  double fixed = 0, rest = 0;
  for (std::size_t i = 0; i < values.size(); ++i)
    (influences[i] == kept ? fixed : rest) += values[i];
  if (rest == 0) return;
  const double factor = std::max(0.0, 1 - fixed) / rest;
  for (std::size_t i = 0; i < values.size(); ++i)
    if (influences[i] != kept) values[i] *= factor;
}

SkinWeights skinWeights(Node& cluster, VertexId vertex) {
  SkinWeights weights;
  const Plug own = weightsPlug(cluster, vertex);
  if (!cluster.graph().elementExists(own.parent())) return weights;
  (void)cluster.graph().getPacked(own, weights.influences, weights.values);
  return weights;
}

Result<void> setSkinWeights(Node& cluster, VertexId vertex, SkinWeights weights) {
  for (std::size_t i = weights.values.size(); i-- > 0;)
    if (weights.values[i] == 0) {
      weights.values.erase(weights.values.begin() + static_cast<std::ptrdiff_t>(i));
      weights.influences.erase(weights.influences.begin() + static_cast<std::ptrdiff_t>(i));
    }
  HOST_TRY(cluster.graph().addElement(cluster.plug("weightList").element(vertex)));
  return cluster.graph().setPacked(weightsPlug(cluster, vertex), std::move(weights.influences),
                                   std::move(weights.values));
}

bool keepsSumsAtOne(Node& cluster) {
  constexpr std::int64_t kInteractive = 1;
  return integerAt(cluster, "normalizeWeights") == kInteractive;
}

Result<void> bindSkin(Node& cluster, Node& shape, const SkinBinding& binding) {
  const auto mesh = evaluatedMesh(shape);
  if (!mesh) return failWith(mesh.error());
  const Matrix4 world = scene::firstPath(shape).inclusiveMatrix();
  const std::vector<Bone> bones = bonesOf(cluster);
  for (VertexId v = 0; v < mesh->vertexCount(); ++v)
    HOST_TRY(setSkinWeights(
        cluster, v,
        weightsByDistance(bones, math::transformPoint(mesh->point(v), world), binding)));
  return {};
}

}  // namespace host::nodes
