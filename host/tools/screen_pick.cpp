#include "host/tools/screen_pick.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>

namespace host::tools {
namespace {

using scene::Component;
using scene::ComponentType;
using viewport::PickHit;

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
    const auto path = document.dagPath(view.meshes[key.first].name);
    if (!path) return failWith(path.error());
    list.add(*path, Component(key.second, ids));
  }
  for (const std::size_t mesh : objects) {
    const auto path = document.dagPath(view.meshes[mesh].name);
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

namespace {

/// What answers for itself. @return a flag an object: whether it has
std::vector<bool> askObjects(const viewport::SceneView& view,
                             const viewport::PickQuestion& question, viewport::PickAnswer& answer) {
  std::vector<bool> answered(view.objects.size());
  for (std::size_t i = 0; i < view.objects.size(); ++i) {
    const viewport::DrawnObject& object = view.objects[i];
    if (!object.answer || !viewport::isPickable(object.state)) continue;
    const auto own = object.answer(question);
    if (!own) continue;
    answered[i] = true;
    answer.items.merge(own->items);
    answer.places.insert(answer.places.end(), own->places.begin(), own->places.end());
  }
  return answered;
}

void addDrawn(const viewport::SceneView& view, const viewport::DrawnHit& hit,
              std::map<std::size_t, std::vector<Index>>& points, scene::SelectionList& list) {
  const scene::DagPath& path = view.objects[hit.object].path;
  if (hit.isObject())
    list.add(scene::isShape(*path.node()) ? path.transform() : path);
  else
    points[hit.object].push_back(hit.point);
}

scene::SelectionList drawnItems(const viewport::SceneView& view,
                                const std::vector<viewport::DrawnHit>& hits) {
  scene::SelectionList list;
  std::map<std::size_t, std::vector<Index>> points;
  for (const viewport::DrawnHit& hit : hits) addDrawn(view, hit, points, list);
  for (auto& [object, indices] : points)
    list.add(view.objects[object].path, Component(ComponentType::Vertex, std::move(indices)));
  return list;
}

/// In component mode an object is clicked for its components: one without any is none to click.
bool isWanted(const viewport::SceneView& view, const viewport::DrawnHit& hit,
              const viewport::PickOptions& options) {
  const bool wantsComponents = options.vertices || options.edges || options.faces;
  return !hit.isObject() || !wantsComponents || view.objects[hit.object].hasComponents;
}

/// One thing among a mesh or its component, what is no mesh, and what answers for itself: a
/// component before an object, then what is nearest to the viewer.
struct Click {
  const viewport::SceneView& view;
  viewport::ViewProjection projection;
  scene::SelectionList best;
  bool isObject = true;
  double depth = 0;

  void offer(scene::SelectionList list, bool listIsObject, double at) {
    if (list.isEmpty()) return;
    const double slack = 2 * projection.worldPerPixel(std::max(at, depth));
    const bool isBetter =
        best.isEmpty() || (listIsObject != isObject ? isObject : at < depth + slack);
    if (!isBetter) return;
    best = std::move(list);
    isObject = listIsObject;
    depth = at;
  }
};

bool hasOnlyObjects(const scene::SelectionList& list) {
  return std::ranges::all_of(list.items(),
                             [](const scene::SelectionItem& item) { return item.isObject(); });
}

Result<scene::SelectionList> pickAtClick(scene::Document& document, viewport::Picker& picker,
                                         const viewport::SceneView& view, viewport::ViewPoint at,
                                         const viewport::PickOptions& options,
                                         const viewport::PickAnswer& answered) {
  Click click{view, viewport::ViewProjection(view.camera, view.port), {}};
  if (const auto hit = picker.pick(view, at, options)) {
    auto list = itemsOf(document, view, {*hit});
    if (!list) return list;
    click.offer(std::move(*list), hit->isObject(), hit->depth);
  }
  // Lines on a surface show, so they come before it.
  if (const auto hit = picker.pickDrawn(view, at, options); hit && isWanted(view, *hit, options))
    click.offer(drawnItems(view, {*hit}), hit->isObject(), hit->depth);
  const auto& items = answered.items.items();
  for (std::size_t i = 0; i < items.size(); ++i) {
    scene::SelectionList one;
    one.merge(items[i]);
    const double depth = i < answered.places.size()
                             ? click.projection.worldToView(answered.places[i]).depth
                             : click.depth;
    click.offer(std::move(one), items[i].isObject(), depth);
  }
  return click.best;
}

Result<scene::SelectionList> pickInRectangle(scene::Document& document, viewport::Picker& picker,
                                             const viewport::SceneView& view,
                                             viewport::PickRect rect,
                                             const viewport::PickOptions& options,
                                             const viewport::PickAnswer& answered) {
  scene::SelectionList components =
      answered.items.filtered([](const scene::SelectionItem& item) { return !item.isObject(); });
  if (options.vertices || options.edges || options.faces) {
    std::vector<PickHit> hits = picker.pickInside(view, rect, options);
    std::erase_if(hits, [](const PickHit& hit) { return hit.isObject(); });
    auto list = itemsOf(document, view, hits);
    if (!list) return list;
    viewport::PickOptions points = options;
    points.objects = false;
    list->merge(drawnItems(view, picker.pickDrawnInside(view, rect, points)));
    list->merge(components);
    if (!list->isEmpty() || !options.objects) return list;
  }
  if (!options.objects) return components;
  auto list = itemsOf(document, view, objectsInside(picker, view, rect));
  if (!list) return list;
  viewport::PickOptions objects;
  objects.objects = true;
  objects.answered = options.answered;
  std::vector<viewport::DrawnHit> drawn = picker.pickDrawnInside(view, rect, objects);
  std::erase_if(drawn, [&](const auto& hit) { return !isWanted(view, hit, options); });
  list->merge(drawnItems(view, drawn));
  if (hasOnlyObjects(answered.items)) list->merge(answered.items);
  return list;
}

}  // namespace

Result<scene::SelectionList> pickFromScreen(scene::Document& document, viewport::Picker& picker,
                                            const viewport::SceneView& view,
                                            viewport::PickRect rect,
                                            const viewport::PickOptions& wanted) {
  constexpr double kClick = 2;
  viewport::PickOptions options = wanted;
  const bool isClick =
      std::abs(rect.from.x - rect.to.x) < kClick && std::abs(rect.from.y - rect.to.y) < kClick;
  viewport::PickQuestion question{
      {std::min(rect.from.x, rect.to.x), std::min(rect.from.y, rect.to.y)},
      {std::max(rect.from.x, rect.to.x), std::max(rect.from.y, rect.to.y)},
      isClick,
      options.vertices,
      options.edges,
      options.faces,
      options.objects,
      options.onlyHilited};
  if (isClick)
    question.low = {rect.to.x - options.edgeTolerance, rect.to.y - options.edgeTolerance},
    question.high = {rect.to.x + options.edgeTolerance, rect.to.y + options.edgeTolerance};
  viewport::PickAnswer answered;
  options.answered = askObjects(view, question, answered);
  if (isClick) return pickAtClick(document, picker, view, rect.to, options, answered);
  return pickInRectangle(document, picker, view, rect, options, answered);
}

}  // namespace host::tools
