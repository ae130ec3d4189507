#include <maya/MFnSkinCluster.h>
#include <maya/MSelectionList.h>

#include <algorithm>
#include <numeric>

#include "host/api/core/access.h"
#include "host/mesh/components.h"
#include "host/nodes/history/deformers.h"
#include "host/nodes/history/skin_cluster.h"
#include "host/nodes/mesh_components.h"
#include "host/nodes/mesh_shape.h"

using namespace host;
using api::setStatus;

namespace {

dg::Node* clusterIn(const MObject& object, MStatus* status = nullptr) {
  dg::Node* node = api::nodeOf(object);
  const bool isSkin = node && node->isAlive() && node->type().isA("skinCluster");
  setStatus(status, isSkin ? MStatus::kSuccess : MStatus::kFailure);
  return isSkin ? node : nullptr;
}

/// A cluster with the points of one of its geometries that a call is about.
struct Target {
  dg::Node* cluster = nullptr;
  std::vector<nodes::SkinInfluence> influences;
  std::vector<Index> points;

  Target(const MObject& object, const MDagPath& path, const MObject& components)
      : cluster(clusterIn(object)) {
    if (!cluster) return;
    influences = nodes::skinInfluences(*cluster);
    const scene::DagPath& own = api::pathOf(path);
    const scene::DagPath shape = own.toShape();
    dg::Node* node = shape.isWorld() ? own.node() : shape.node();
    const auto shapes = nodes::deformedShapes(*cluster);
    const auto mesh = node ? nodes::evaluatedMesh(*node) : Result<mesh::Mesh>(mesh::Mesh());
    if (!mesh || std::ranges::none_of(shapes, [&](const auto& s) { return s.second == node; })) {
      cluster = nullptr;
      return;
    }
    const scene::Component all = scene::Component::all(scene::ComponentType::Vertex);
    const scene::Component* wanted = api::componentOf(components);
    const scene::Component& named = wanted ? *wanted : all;
    points = mesh::convertComponents(*mesh, named.type(), nodes::componentIds(*mesh, named),
                                     mesh::ComponentType::Vertex);
  }
  /// Whether all numbers are those of influences, counted from 0.
  [[nodiscard]] bool has(const std::vector<int>& numbers) const {
    return cluster &&
           std::ranges::all_of(numbers, [&](int i) { return i >= 0 && at(i) < influences.size(); });
  }
  [[nodiscard]] std::vector<int> all() const {
    std::vector<int> numbers(influences.size());
    std::iota(numbers.begin(), numbers.end(), 0);
    return numbers;
  }
};

std::vector<int> numbersOf(const MIntArray& array) {
  return {array.begin(), array.end()};
}

template <class Array>
MStatus read(const Target& target, const std::vector<int>& influences, Array& weights) {
  weights.clear();
  if (!target.has(influences)) return MStatus::kInvalidParameter;
  weights.setLength(static_cast<unsigned int>(target.points.size() * influences.size()));
  unsigned int next = 0;
  for (const Index point : target.points) {
    const nodes::SkinWeights own = nodes::skinWeights(*target.cluster, VertexId(point));
    for (const int i : influences)
      weights[next++] =
          static_cast<std::decay_t<decltype(weights[0])>>(own.of(target.influences[at(i)].index));
  }
  return MStatus::kSuccess;
}

template <class Array>
MStatus write(const Target& target, const std::vector<int>& influences, const Array& values,
              bool normalize, Array* oldValues) {
  if (!target.has(influences)) return MStatus::kInvalidParameter;
  const bool isForEach = values.length() == influences.size() * target.points.size();
  if (!isForEach && values.length() != influences.size()) return MStatus::kInvalidParameter;
  if (oldValues) read(target, target.all(), *oldValues);
  const bool normalizes = normalize && nodes::keepsSumsAtOne(*target.cluster);
  unsigned int next = 0;
  for (const Index point : target.points) {
    nodes::SkinWeights own = nodes::skinWeights(*target.cluster, VertexId(point));
    if (!isForEach) next = 0;
    for (const int i : influences)
      own.set(target.influences[at(i)].index, static_cast<double>(values[next++]));
    if (normalizes)
      own.normalize(influences.size() == 1 ? target.influences[at(influences[0])].index : -1);
    const auto set = nodes::setSkinWeights(*target.cluster, VertexId(point), std::move(own));
    if (!set) return api::toStatus(set);
  }
  return MStatus::kSuccess;
}

template <class Array>
MStatus readAll(const Target& target, Array& weights, unsigned int& influenceCount) {
  influenceCount = static_cast<unsigned int>(target.influences.size());
  return read(target, target.all(), weights);
}

}  // namespace

unsigned int MFnSkinCluster::influenceObjects(MDagPathArray& paths, MStatus* status) const {
  paths.clear();
  dg::Node* cluster = clusterIn(object_, status);
  if (!cluster) return 0;
  for (const nodes::SkinInfluence& influence : nodes::skinInfluences(*cluster))
    paths.append(api::wrap(scene::firstPath(*influence.node)));
  return paths.length();
}
unsigned int MFnSkinCluster::indexForInfluenceObject(const MDagPath& path, MStatus* status) const {
  dg::Node* cluster = clusterIn(object_, status);
  if (!cluster) return 0;
  for (const nodes::SkinInfluence& influence : nodes::skinInfluences(*cluster))
    if (influence.node == api::pathOf(path).node())
      return static_cast<unsigned int>(influence.index);
  setStatus(status, MStatus::kInvalidParameter);
  return 0;
}
MStatus MFnSkinCluster::getPointsAffectedByInfluence(const MDagPath& path, MSelectionList& result,
                                                     MDoubleArray& weights) const {
  result.clear();
  weights.clear();
  MStatus status;
  const auto influence = static_cast<Index>(indexForInfluenceObject(path, &status));
  if (!status) return status;
  dg::Node& cluster = *clusterIn(object_);
  for (const auto& [number, shape] : nodes::deformedShapes(cluster)) {
    const auto mesh = nodes::evaluatedMesh(*shape);
    if (!mesh) return api::toStatus(mesh);
    std::vector<Index> points;
    for (VertexId v = 0; v < mesh->vertexCount(); ++v)
      if (const double weight = nodes::skinWeights(cluster, v).of(influence); weight != 0) {
        points.push_back(v);
        weights.append(weight);
      }
    if (points.empty()) continue;
    const MObject component =
        api::wrap(nodes::componentFromIds(*mesh, scene::ComponentType::Vertex, std::move(points)));
    result.add(api::wrap(scene::firstPath(*shape)), component);
  }
  return MStatus::kSuccess;
}

MStatus MFnSkinCluster::getWeights(const MDagPath& path, const MObject& components,
                                   unsigned int influenceIndex, MDoubleArray& weights) const {
  return read(Target(object_, path, components), {static_cast<int>(influenceIndex)}, weights);
}
MStatus MFnSkinCluster::getWeights(const MDagPath& path, const MObject& components,
                                   unsigned int influenceIndex, MFloatArray& weights) const {
  return read(Target(object_, path, components), {static_cast<int>(influenceIndex)}, weights);
}
MStatus MFnSkinCluster::getWeights(const MDagPath& path, const MObject& components,
                                   MDoubleArray& weights, unsigned int& influenceCount) const {
  return readAll(Target(object_, path, components), weights, influenceCount);
}
MStatus MFnSkinCluster::getWeights(const MDagPath& path, const MObject& components,
                                   MFloatArray& weights, unsigned int& influenceCount) const {
  return readAll(Target(object_, path, components), weights, influenceCount);
}
MStatus MFnSkinCluster::getWeights(const MDagPath& path, const MObject& components,
                                   const MIntArray& influenceIndices, MDoubleArray& weights) const {
  return read(Target(object_, path, components), numbersOf(influenceIndices), weights);
}
MStatus MFnSkinCluster::getWeights(const MDagPath& path, const MObject& components,
                                   const MIntArray& influenceIndices, MFloatArray& weights) const {
  return read(Target(object_, path, components), numbersOf(influenceIndices), weights);
}
MStatus MFnSkinCluster::setWeights(const MDagPath& path, const MObject& components,
                                   unsigned int influenceIndex, double weight, bool normalize,
                                   MDoubleArray* oldValues) {
  return write(Target(object_, path, components), {static_cast<int>(influenceIndex)},
               MDoubleArray(1, weight), normalize, oldValues);
}
MStatus MFnSkinCluster::setWeights(const MDagPath& path, const MObject& components,
                                   const MIntArray& influenceIndices, const MDoubleArray& values,
                                   bool normalize, MDoubleArray* oldValues) {
  return write(Target(object_, path, components), numbersOf(influenceIndices), values, normalize,
               oldValues);
}
MStatus MFnSkinCluster::setWeights(const MDagPath& path, const MObject& components,
                                   const MIntArray& influenceIndices, const MFloatArray& values,
                                   bool normalize, MFloatArray* oldValues) {
  return write(Target(object_, path, components), numbersOf(influenceIndices), values, normalize,
               oldValues);
}

MStatus MFnSkinCluster::getBlendWeights(const MDagPath& path, const MObject& components,
                                        MDoubleArray& weights) const {
  weights.clear();
  const Target target(object_, path, components);
  if (!target.cluster) return MStatus::kInvalidParameter;
  dg::Graph& graph = target.cluster->graph();
  for (const Index point : target.points) {
    const dg::Plug plug = target.cluster->plug("blendWeights").element(point);
    const auto value = graph.elementExists(plug) ? graph.get(plug) : Result<dg::Value>(0.0);
    const auto* number = value ? std::get_if<double>(&*value) : nullptr;
    weights.append(number ? *number : 0);
  }
  return MStatus::kSuccess;
}
MStatus MFnSkinCluster::setBlendWeights(const MDagPath& path, const MObject& components,
                                        const MDoubleArray& weights) {
  const Target target(object_, path, components);
  if (!target.cluster || weights.length() != target.points.size())
    return MStatus::kInvalidParameter;
  for (unsigned int i = 0; i < weights.length(); ++i) {
    const auto set = target.cluster->graph().set(
        target.cluster->plug("blendWeights").element(target.points[i]), weights[i]);
    if (!set) return api::toStatus(set);
  }
  return MStatus::kSuccess;
}
