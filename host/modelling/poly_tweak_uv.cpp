#include "host/modelling/poly_tweak_uv.h"

#include <algorithm>

#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"

namespace host::modelling {

namespace {

Result<void> tweak(HistoryContext& context) {
  const std::string name = context.text("uvSetName");
  const int set = name.empty() ? context.mesh.currentUvSet() : context.mesh.findUvSet(name);
  if (set < 0) return fail(ErrorKind::NotFound, "the mesh has no UV set '{}'", name);
  std::vector<Index> indices;
  std::vector<double> offsets;
  context.packed("uvTweak", indices, offsets);
  if (indices.empty()) return {};
  std::vector<math::Vec2f>& uvs = context.mesh.editUvSet(set).points;
  for (std::size_t i = 0; i < indices.size(); ++i) {
    if (at(indices[i]) >= uvs.size()) continue;
    math::Vec2f& uv = uvs[at(indices[i])];
    if (offsets[i * 2] != 0) uv.u = static_cast<float>(uv.u + offsets[i * 2]);
    if (offsets[i * 2 + 1] != 0) uv.v = static_cast<float>(uv.v + offsets[i * 2 + 1]);
  }
  return {};
}

}  // namespace

Result<UvTweak> UvTweak::make(const nodes::MeshItem& item, std::span<const UvId> uvs,
                              std::span<const float> u, std::span<const float> v) {
  const std::string name = item.path.node()->name();
  if (u.size() != uvs.size() || v.size() != uvs.size())
    return fail("{}: {} UVs came with {} and {} places", name, uvs.size(), u.size(), v.size());
  UvTweak tweak{item.path.node()->shared_from_this(), {}, {}, {}};
  if (uvs.empty()) return tweak;
  const int set = item.mesh.currentUvSet();
  if (set < 0) return fail("{} has no UVs", name);
  const auto& points = item.mesh.uvSet(set).points;
  tweak.uvSet = item.mesh.uvSet(set).name;
  std::vector<std::size_t> order(uvs.size());
  for (std::size_t i = 0; i < uvs.size(); ++i) {
    if (uvs[i] < 0 || at(uvs[i]) >= points.size())
      return fail(ErrorKind::NotFound, "{} has no UV {}", name, uvs[i]);
    order[i] = i;
  }
  if (!std::ranges::is_sorted(uvs))
    std::ranges::stable_sort(order, {}, [&](std::size_t at) { return uvs[at]; });
  tweak.uvs.reserve(uvs.size());
  tweak.offsets.reserve(2 * uvs.size());
  for (std::size_t i = 0; i < order.size(); ++i) {
    const std::size_t at = order[i];
    const UvId id = uvs[at];
    if (i + 1 < order.size() && uvs[order[i + 1]] == id) continue;  // the last of them counts
    const math::Vec2f& from = points[static_cast<std::size_t>(id)];
    tweak.uvs.push_back(id);
    tweak.offsets.push_back(static_cast<double>(u[at]) - from.u);
    tweak.offsets.push_back(static_cast<double>(v[at]) - from.v);
  }
  return tweak;
}

Result<void> applyUvTweak(scene::Document& document, const UvTweak& tweak,
                          const std::string& wantedName, bool keepsHistory) {
  dg::Graph& graph = document.graph();
  const bool hadHistory = nodes::hasHistory(*tweak.shape);
  auto created = document.createNode("polyTweakUV", wantedName);
  if (!created) return failWith(std::move(created.error()));
  Node& node = **created;
  HOST_TRY(graph.set(node.plug("uvSetName"), dg::Value(tweak.uvSet)));
  HOST_TRY(graph.setPacked(node.plug("uvTweak"), tweak.uvs, tweak.offsets));
  HOST_TRY(nodes::insertHistoryNode(document, *tweak.shape, node.plug("inputPolymesh"),
                                    node.plug("output")));
  HOST_TRY(graph.evaluate(node.plug("output")));
  if (!keepsHistory && !hadHistory) HOST_TRY(nodes::deleteHistory(document, *tweak.shape));
  return {};
}

/// A node without a command: plug-ins make it through their own.
void polyTweakUv(Declarations& add) {
  add("", "Adds offsets to UVs of a set.")
      .node("polyTweakUV", typeCode("PTUV"))
      .parameter(array(numbers("uvTweak", "uvtk", "float2",
                               {real("uvTweakU", "tu"), real("uvTweakV", "tv")})),
                 "the offsets by UV")
      .parameter(text("uvSetName", "uvs"), "the set; empty: the current one")
      .parameter(array(compound("newUV", "nuv",
                                {integer("faceId", "fid", -1), integer("vertexId", "vid"),
                                 single("newUValue", "nu"), single("newVValue", "nv")})),
                 "UVs for corners that had none, as older versions stored them")
      .recordedOnly()
      .operation(tweak);
}

}  // namespace host::modelling
