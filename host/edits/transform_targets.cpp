#include "host/edits/transform_targets.h"

#include <unordered_map>
#include <unordered_set>

#include "host/math/box.h"
#include "host/nodes/transform.h"
#include "host/scene/dag_paths.h"
#include "host/scene/display_rules.h"

namespace host::edits {

math::Vec3 TransformTargets::vertexCenter() const {
  math::Box box;
  for (const nodes::MeshItem& item : meshes) {
    const math::Matrix4 matrix = item.path.inclusiveMatrix();
    for (const VertexId v : item.vertices())
      box.add(math::transformPoint(item.mesh.point(v), matrix));
  }
  for (const scene::PointItem& item : points) {
    const math::Matrix4 matrix = item.path.inclusiveMatrix();
    const auto own = item.points();
    if (!own) continue;
    for (const scene::NumberedPoint& point : *own)
      box.add(math::transformPoint(point.place, matrix));
  }
  return box.center();
}

Result<TransformTargets> transformTargets(const scene::SelectionList& list) {
  TransformTargets targets;
  scene::SelectionList components;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag() || item.plug) return fail("'{}' has no place in space.", item.node->name());
    if (item.isObject())
      targets.objects.push_back(item.path.transform());
    else
      components.merge(item);
  }
  auto meshes = nodes::pointItems(components);
  if (!meshes) return failWith(std::move(meshes.error()));
  targets.meshes = std::move(*meshes);
  targets.points = scene::pointItems(components);
  return targets;
}

namespace {

/// The points that go along, with the share that each takes; those that are named take all.
struct PointShare {
  scene::NumberedPoint point;
  double share = 1;
};
Result<std::vector<PointShare>> sharesOf(const scene::PointItem& item, const math::Matrix4& world,
                                         const SoftSelection* soft) {
  auto named = item.points();
  if (!named) return failWith(std::move(named.error()));
  std::vector<PointShare> shares;
  if (!soft || !soft->isOn) {
    for (const scene::NumberedPoint& point : *named) shares.push_back({point, 1});
    return shares;
  }
  auto all = item.shape->points(*item.path.node(), {});
  if (!all) return failWith(std::move(all.error()));
  std::vector<math::Vec3> places;
  std::unordered_map<Index, std::size_t> byIndex;
  for (const scene::NumberedPoint& point : *all) {
    byIndex.emplace(point.index, places.size());
    places.push_back(math::transformPoint(point.place, world));
  }
  std::vector<VertexId> chosen;
  for (const scene::NumberedPoint& point : *named)
    if (const auto found = byIndex.find(point.index); found != byIndex.end())
      chosen.emplace_back(static_cast<Index>(found->second));
  for (const auto& [place, weight] : softWeights(places, chosen, *soft))
    shares.push_back({(*all)[at(place)], weight});
  return shares;
}

}  // namespace

Result<std::vector<ReachedMesh>> reachedMeshes(scene::Document& document,
                                               const TransformTargets& targets,
                                               const SoftSelection* soft) {
  std::vector<ReachedMesh> reached;
  if (!soft || !soft->isOn || soft->falloff != SoftSelection::Falloff::Global) return reached;
  std::vector<math::Vec3> chosen;
  std::unordered_map<const dg::Node*, std::unordered_set<Index>> own;
  for (const nodes::MeshItem& item : targets.meshes) {
    const math::Matrix4 world = item.path.inclusiveMatrix();
    for (const VertexId v : item.vertices()) {
      chosen.push_back(math::transformPoint(item.mesh.point(v), world));
      own[item.path.node()].insert(v);
    }
  }
  if (chosen.empty()) return reached;
  std::vector<VertexId> numbers;
  for (std::size_t i = 0; i < chosen.size(); ++i) numbers.emplace_back(static_cast<Index>(i));
  std::unordered_set<const dg::Node*> seen;
  const auto visit = [&](const scene::DagPath& path) -> Result<void> {
    if (!path.node()->type().isA("mesh") || !seen.insert(path.node()).second) return {};
    const auto mesh = nodes::evaluatedMesh(*path.node());
    if (!mesh) return {};  // what has no mesh is not reached
    const math::Matrix4 world = path.inclusiveMatrix();
    std::vector<math::Vec3> places = chosen;
    for (const math::Vec3f& p : mesh->points())
      places.push_back(math::transformPoint(math::Vec3(p), world));
    ReachedMesh each{path, {}};
    const auto mine = own.find(path.node());
    for (const auto& [number, weight] : softWeights(places, numbers, *soft)) {
      const Index v = number - static_cast<Index>(chosen.size());
      if (v >= 0 && (mine == own.end() || !mine->second.contains(v)))
        each.weights.push_back({VertexId(v), weight});
    }
    if (!each.weights.empty()) reached.push_back(std::move(each));
    return {};
  };
  for (dg::Node* top : document.worldChildren()) {
    scene::PlaceBudget budget;
    scene::PathWalk walk(scene::DagPath({top}), scene::PathWalk::Children::InOrder, &budget);
    while (!walk.isDone()) {
      dg::Node& node = walk.node();
      if (!scene::isShown(node) || scene::isIntermediate(node) || scene::isTemplate(node)) {
        walk.skipBelow();
        continue;
      }
      HOST_TRY(visit(walk.path()));
      walk.next();
    }
  }
  return reached;
}

Result<void> editPoints(const std::vector<scene::PointItem>& items, PointSpace space,
                        const PointChange& change, const SoftSelection* soft) {
  for (const scene::PointItem& item : items) {
    const math::Matrix4 world = item.path.inclusiveMatrix();
    const math::Matrix4 matrix = space == PointSpace::World ? world : math::Matrix4{};
    const auto inverse = math::inverse(matrix);
    if (!inverse)
      return fail("'{}' has a scale of zero: its points can't be set in world space.",
                  item.path.partialName());
    dg::Node& node = *item.path.node();
    if (change.matrix && !(soft && soft->isOn)) {
      HOST_TRY(item.shape->transform(node, item.components, matrix * *change.matrix * *inverse));
      continue;
    }
    const auto shares = sharesOf(item, world, soft);
    if (!shares) return failWith(shares.error());
    for (const auto& [point, share] : *shares) {
      const math::Vec3 before = math::transformPoint(point.place, matrix);
      const math::Vec3 after = before + (change.edit(before) - before) * share;
      if (after == before) continue;
      const math::Vec3 by = math::transformPoint(after, *inverse) - point.place;
      const scene::Component one(scene::ComponentType::Vertex, {point.index});
      HOST_TRY(item.shape->transform(node, {&one, 1}, math::Matrix4::translation(by)));
    }
  }
  return {};
}

std::optional<math::Vec3> middleOfPivots(const scene::SelectionList& list) {
  math::Vec3 sum;
  int count = 0;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag()) continue;
    const scene::DagPath path = item.path.transform();
    const auto place = nodes::readTransform(*path.node());
    if (!place) continue;
    sum += math::transformPoint(place->rotatePivot, path.inclusiveMatrix());
    ++count;
  }
  return count > 0 ? std::optional(sum / count) : std::nullopt;
}

}  // namespace host::edits
