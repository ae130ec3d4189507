#include "host/tools/screen_pick.h"

#include <cmath>
#include <map>
#include <set>

namespace host::tools {
namespace {

using scene::Component;
using scene::ComponentType;
using viewport::PickHit;

/// The place that was drawn; by name where a picture was made up.
Result<scene::DagPath> pathOf(scene::Document& document, const viewport::RenderMesh& mesh) {
  if (!mesh.path.isWorld() && mesh.path.isValid()) return mesh.path;
  return document.dagPath(mesh.name);
}

/// Hits as selection items: the components of one mesh and kind together.
Result<scene::SelectionList> itemsOf(scene::Document& document, const viewport::SceneView& view,
                                     const std::vector<PickHit>& hits) {
  std::map<std::pair<std::size_t, ComponentType>, std::vector<Index>> components;
  std::set<std::size_t> objects;
  for (const PickHit& hit : hits) {
    if (hit.isObject())
      objects.insert(hit.mesh);
    else
      components[{hit.mesh, hit.type}].push_back(hit.component);
  }
  scene::SelectionList list;
  for (const auto& [key, ids] : components) {
    const auto path = pathOf(document, view.meshes[key.first]);
    if (!path) return failWith(path.error());
    list.add(*path, Component(key.second, ids));
  }
  for (const std::size_t mesh : objects) {
    const auto path = pathOf(document, view.meshes[mesh]);
    if (!path) return failWith(path.error());
    list.add(path->transform());
  }
  return list;
}

/// Every object that the rectangle touches with a face, or with an edge where it shows no faces.
std::vector<PickHit> objectsInside(viewport::Picker& picker, const viewport::SceneView& view,
                                   viewport::PickRect rect) {
  viewport::PickOptions all;
  all.faces = all.edges = true;
  std::vector<PickHit> hits = picker.pickInside(view, rect, all);
  for (PickHit& hit : hits) hit.component = kNone;
  return hits;
}

}  // namespace

Result<scene::SelectionList> pickFromScreen(scene::Document& document, viewport::Picker& picker,
                                            const viewport::SceneView& view,
                                            viewport::PickRect rect,
                                            const viewport::PickOptions& options) {
  constexpr double kClick = 2;
  const bool isClick =
      std::abs(rect.from.x - rect.to.x) < kClick && std::abs(rect.from.y - rect.to.y) < kClick;
  std::vector<PickHit> hits;
  if (isClick) {
    if (const auto hit = picker.pick(view, rect.to, options)) hits.push_back(*hit);
  } else {
    if (options.vertices || options.edges || options.faces)
      hits = picker.pickInside(view, rect, options);
    std::erase_if(hits, [](const PickHit& hit) { return hit.isObject(); });
    if (hits.empty() && options.objects) hits = objectsInside(picker, view, rect);
  }
  return itemsOf(document, view, hits);
}

}  // namespace host::tools
