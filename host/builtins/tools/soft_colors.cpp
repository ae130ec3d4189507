#include "host/builtins/tools/soft_colors.h"

#include <algorithm>

#include "host/mesh/point_moves.h"

namespace host::builtins {
namespace {

using edits::SoftSelection;
using edits::SoftWeight;
using viewport::ComponentSets;
using viewport::RenderMesh;

bool isSame(const ComponentSets& a, const ComponentSets& b) {
  return a.vertices == b.vertices && a.edges == b.edges && a.faces == b.faces;
}

template <class T>
bool isSameArray(std::span<const T> a, std::span<const T> b) {
  return a.data() == b.data() && a.size() == b.size();
}

bool hasSameFaces(const mesh::Mesh& a, const mesh::Mesh& b) {
  return a.vertexCount() == b.vertexCount() &&
         a.topology().cornerVertices.data() == b.topology().cornerVertices.data() &&
         a.topology().edges.data() == b.topology().edges.data();
}

std::vector<VertexId> verticesOf(const RenderMesh& object) {
  std::vector<VertexId> all = object.selected.vertices;
  for (const EdgeId e : object.selected.edges)
    all.insert(all.end(), {object.mesh.edge(e).a, object.mesh.edge(e).b});
  for (const FaceId f : object.selected.faces)
    for (const VertexId v : object.mesh.faceVertices(f)) all.push_back(v);
  std::ranges::sort(all);
  all.erase(std::unique(all.begin(), all.end()), all.end());
  return all;
}

std::shared_ptr<const viewport::ColoredVertices> colored(
    const std::vector<SoftWeight>& weights, const std::vector<math::RampEntry>& colors) {
  constexpr int kSteps = 255;
  std::array<std::uint32_t, kSteps + 1> table{};
  for (int i = 0; i <= kSteps; ++i) {
    const auto color = math::rampAt(colors, static_cast<double>(i) / kSteps);
    const auto channel = [&](std::size_t c) { return static_cast<float>(color[c]); };
    // Where hardly anything goes along it fades into the wire.
    constexpr double kFaded = 0.15;
    const double share = 1 - static_cast<double>(i) / kSteps;
    const auto alpha = static_cast<float>(std::clamp(share / kFaded, 0.1, 1.0));
    table[at(i)] = viewport::packColor({channel(0), channel(1), channel(2), alpha});
  }
  auto made = std::make_shared<viewport::ColoredVertices>();
  made->vertices.reserve(weights.size());
  made->colors.reserve(weights.size());
  for (const auto& [vertex, weight] : weights) {
    made->vertices.push_back(vertex);
    made->colors.push_back(table[at(static_cast<int>((1 - weight) * kSteps + 0.5))]);
  }
  return made;
}

}  // namespace

void SoftColors::showGlobal(viewport::SceneView& scene, const Settings& settings, bool isDragging) {
  std::vector<math::Vec3> places;
  for (const RenderMesh& mesh : scene.meshes)
    for (const VertexId v : verticesOf(mesh))
      places.push_back(math::transformPoint(mesh.mesh.point(v), mesh.world));
  const bool isSameChoice =
      isDragging ? places.size() == chosenPlaces_.size() : places == chosenPlaces_;
  if (!isSameChoice) chosenPlaces_ = places;
  if (chosenPlaces_.empty()) return;
  std::vector<VertexId> numbers;
  for (std::size_t i = 0; i < chosenPlaces_.size(); ++i)
    numbers.emplace_back(static_cast<Index>(i));
  for (RenderMesh& mesh : scene.meshes) {
    if (!viewport::isPickable(mesh.state)) continue;
    Entry& entry = entries_[mesh.id];
    const bool isStill =
        entry.world == mesh.world && isSameArray(entry.mesh.points(), mesh.mesh.points());
    const bool isKnown = entry.shown && isSameChoice && entry.revision == settings.revision &&
                         hasSameFaces(entry.mesh, mesh.mesh) && (isStill || isDragging);
    entry.isUsed = true;
    if (!isKnown) {
      entry.mesh = mesh.mesh;
      entry.world = mesh.world;
      entry.revision = settings.revision;
      std::vector<math::Vec3> all = chosenPlaces_;
      for (const math::Vec3f& p : mesh.mesh.points())
        all.push_back(math::transformPoint(math::Vec3(p), mesh.world));
      entry.weights.clear();
      for (const auto& [number, weight] : edits::softWeights(all, numbers, settings.soft))
        if (const Index v = number - static_cast<Index>(numbers.size()); v >= 0)
          entry.weights.push_back({VertexId(v), weight});
      entry.shown = colored(entry.weights, settings.colors);
      worked_ += at(mesh.mesh.vertexCount());
    }
    mesh.reach = entry.shown;
  }
}

void SoftColors::showEach(viewport::SceneView& scene, const Settings& settings, bool isDragging) {
  for (RenderMesh& mesh : scene.meshes) {
    if (mesh.selected.isEmpty() || !viewport::isPickable(mesh.state)) continue;
    Entry& entry = entries_[mesh.id];
    update(entry, mesh, settings, isDragging);
    entry.isUsed = true;
    mesh.reach = entry.shown;
  }
}

void SoftColors::show(viewport::SceneView& scene, const Settings& settings, bool isDragging) {
  if (settings.soft.falloff == SoftSelection::Falloff::Global)
    showGlobal(scene, settings, isDragging);
  else
    showEach(scene, settings, isDragging);
  // Views take turns: what none of them has asked for in two rounds goes.
  constexpr std::size_t kMany = 64;
  if (entries_.size() <= kMany) return;
  std::erase_if(entries_, [](const auto& item) { return !item.second.isUsed; });
  for (auto& [id, entry] : entries_) entry.isUsed = false;
}

void SoftColors::update(Entry& entry, const RenderMesh& mesh, const Settings& settings,
                        bool isDragging) {
  const bool isAsked = entry.shown && entry.revision == settings.revision &&
                       hasSameFaces(entry.mesh, mesh.mesh) && isSame(entry.selected, mesh.selected);
  const bool isStill =
      entry.world == mesh.world && isSameArray(entry.mesh.points(), mesh.mesh.points());
  if (isAsked && (isStill || isDragging)) return;
  if (isAsked && entry.world == mesh.world && mend(entry, mesh, settings)) return;
  entry.mesh = mesh.mesh;
  entry.world = mesh.world;
  entry.selected = mesh.selected;
  entry.revision = settings.revision;
  entry.chosen = verticesOf(mesh);
  entry.weights = edits::softWeights(mesh.mesh, entry.chosen, mesh.world, settings.soft);
  entry.shown = colored(entry.weights, settings.colors);
  worked_ += at(mesh.mesh.vertexCount());
}

bool SoftColors::mend(Entry& entry, const RenderMesh& mesh, const Settings& settings) {
  if (settings.soft.falloff != SoftSelection::Falloff::Volume) return false;
  auto moved = mesh::movedSince(mesh.mesh, entry.mesh);
  if (!moved) return false;
  std::ranges::sort(*moved);
  moved->erase(std::unique(moved->begin(), moved->end()), moved->end());
  const auto isChosen = [&](VertexId v) { return std::ranges::binary_search(entry.chosen, v); };
  if (std::ranges::any_of(*moved, isChosen)) return false;
  // The chosen ones first, then those that moved.
  std::vector<math::Vec3> places;
  std::vector<VertexId> chosen;
  const auto place = [&](VertexId v) {
    places.push_back(math::transformPoint(mesh.mesh.point(v), mesh.world));
  };
  for (const VertexId v : entry.chosen) {
    chosen.emplace_back(static_cast<Index>(places.size()));
    place(v);
  }
  std::ranges::for_each(*moved, place);
  std::vector<SoftWeight> added;
  std::erase_if(entry.weights, [&](const SoftWeight& each) {
    return std::ranges::binary_search(*moved, each.vertex);
  });
  for (const auto& [number, weight] : edits::softWeights(places, chosen, settings.soft)) {
    if (at(number) < entry.chosen.size()) continue;
    const VertexId v = (*moved)[at(number) - entry.chosen.size()];
    added.push_back({v, weight});
  }
  std::ranges::sort(added, {}, &SoftWeight::vertex);
  const auto middle = static_cast<std::ptrdiff_t>(entry.weights.size());
  entry.weights.insert(entry.weights.end(), added.begin(), added.end());
  std::inplace_merge(entry.weights.begin(), entry.weights.begin() + middle, entry.weights.end(),
                     [](const SoftWeight& a, const SoftWeight& b) { return a.vertex < b.vertex; });
  entry.mesh = mesh.mesh;
  entry.shown = colored(entry.weights, settings.colors);
  worked_ += moved->size();
  return true;
}

}  // namespace host::builtins
