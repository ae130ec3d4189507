#include "host/builtins/uv/uv_edits.h"

#include <algorithm>
#include <unordered_map>

#include "host/nodes/mesh_shape.h"
#include "host/ops/uv/uv_ids.h"

namespace host::builtins {

namespace {

using dg::Node;
using dg::Plug;

/// The polyTweakUV node of a set that alone drives the shape, with nothing of the shape's own
/// between; null when there is none.
Node* tweakInFront(dg::Graph& graph, Node& shape, const std::string& setName, bool isCurrent) {
  const Plug source = graph.source(shape.plug("inMesh"));
  if (!source || !source.node()->type().isA("polyTweakUV")) return nullptr;
  Node& node = *source.node();
  if (graph.outgoing(node).size() != 1 || graph.elementCount(shape.plug("pnts")) > 0)
    return nullptr;
  const auto name = graph.get(node.plug("uvSetName"));
  const std::string* text = name ? std::get_if<std::string>(&*name) : nullptr;
  if (!text || (*text != setName && !(text->empty() && isCurrent))) return nullptr;
  return &node;
}

/// Adds offsets to those that a node has.
Result<void> addOffsets(dg::Graph& graph, const Plug& tweaks, const std::vector<UvId>& uvs,
                        const std::vector<double>& offsets) {
  std::vector<Index> indices, merged;
  std::vector<double> values, sums;
  graph.getPacked(tweaks, indices, values);
  std::size_t i = 0, k = 0;
  while (i < indices.size() || k < uvs.size()) {
    const bool isOld = k == uvs.size() || (i < indices.size() && indices[i] <= uvs[k]);
    const bool isNew = i == indices.size() || (k < uvs.size() && uvs[k] <= indices[i]);
    merged.push_back(isOld ? indices[i] : Index(uvs[k]));
    for (std::size_t axis = 0; axis < 2; ++axis)
      sums.push_back((isOld ? values[2 * i + axis] : 0) + (isNew ? offsets[2 * k + axis] : 0));
    i += isOld;
    k += isNew;
  }
  return graph.setPacked(tweaks, std::move(merged), std::move(sums));
}

}  // namespace

Result<std::vector<UvItem>> uvItems(Context& context, const ParsedArgs& args,
                                    std::string_view command) {
  auto list = args.resolveObjects(context.document);
  if (!list) return failWith(std::move(list.error()));
  auto items = meshItems(*list);
  if (!items) return failWith(std::move(items.error()));
  std::vector<UvItem> found;
  std::unordered_map<const Node*, std::size_t> known;
  for (MeshItem& item : *items) {
    const auto set = ops::findUvSet(item.mesh, args.text("uvSetName"));
    if (!set)
      return fail(ErrorKind::NotFound, "{}: '{}' has no UV set '{}'.", command,
                  item.path.transform().partialName(), args.text("uvSetName"));
    // Components are those of the current set; faces and edges are asked for the set named.
    mesh::Mesh seen = item.mesh;
    seen.setCurrentUvSet(*set);
    MeshItem asked{item.path, seen, item.components};
    std::vector<UvId> uvs = asked.idsOf<UvId>();
    const auto count = static_cast<UvId>(seen.uvSet(*set).points.size());
    std::erase_if(uvs, [count](UvId uv) { return uv >= count; });
    if (uvs.empty()) continue;
    const auto [at, isNew] = known.try_emplace(item.path.node(), found.size());
    if (isNew) {
      found.push_back({std::move(item), *set, std::move(uvs)});
      continue;
    }
    std::vector<UvId>& all = found[at->second].uvs;
    all.insert(all.end(), uvs.begin(), uvs.end());
    mesh::sortUnique(all);
  }
  if (found.empty()) return fail("{}: name or select UVs.", command);
  return found;
}

Result<void> placeUvs(scene::Document& document, const UvItem& item,
                      const std::vector<math::Vec2f>& places,
                      const std::optional<std::array<double, 2>>& step) {
  Node& shape = *item.item.path.node();
  if (!nodes::hasHistory(shape)) {
    mesh::Mesh mesh = item.item.mesh;
    auto& points = mesh.editUvSet(item.set).points;
    for (std::size_t i = 0; i < item.uvs.size(); ++i) points[at(item.uvs[i])] = places[i];
    return nodes::setEvaluatedMesh(shape, std::move(mesh));
  }
  const mesh::UvSet& set = item.item.mesh.uvSet(item.set);
  std::vector<double> offsets;
  offsets.reserve(2 * item.uvs.size());
  for (std::size_t i = 0; i < item.uvs.size(); ++i) {
    const math::Vec2f& from = set.points[at(item.uvs[i])];
    offsets.push_back(step ? (*step)[0] : static_cast<double>(places[i].u) - from.u);
    offsets.push_back(step ? (*step)[1] : static_cast<double>(places[i].v) - from.v);
  }
  dg::Graph& graph = document.graph();
  const bool isCurrent = item.set == item.item.mesh.currentUvSet();
  if (Node* tweak = tweakInFront(graph, shape, set.name, isCurrent))
    return addOffsets(graph, tweak->plug("uvTweak"), item.uvs, offsets);
  auto created = document.createNode("polyTweakUV", "polyTweakUV#");
  if (!created) return failWith(std::move(created.error()));
  Node& node = **created;
  HOST_TRY(graph.set(node.plug("uvSetName"), dg::Value(set.name)));
  HOST_TRY(graph.setPacked(node.plug("uvTweak"), copyIds(item.uvs), std::move(offsets)));
  HOST_TRY(
      nodes::insertHistoryNode(document, shape, node.plug("inputPolymesh"), node.plug("output")));
  const auto evaluated = graph.evaluate(node.plug("output"));
  return evaluated ? Result<void>() : failWith(evaluated.error());
}

Result<void> placeMovedUvs(scene::Document& document, const MeshItem& item, int set,
                           const mesh::UvSet& moved) {
  UvItem changed{item, set, {}};
  std::vector<math::Vec2f> places;
  const std::vector<math::Vec2f>& before = item.mesh.uvSet(set).points;
  for (std::size_t uv = 0; uv < before.size(); ++uv)
    if (!(before[uv] == moved.points[uv])) {
      changed.uvs.push_back(static_cast<UvId>(uv));
      places.push_back(moved.points[uv]);
    }
  return places.empty() ? Result<void>() : placeUvs(document, changed, places);
}

}  // namespace host::builtins
