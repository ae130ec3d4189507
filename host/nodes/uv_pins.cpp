#include "host/nodes/uv_pins.h"

#include <algorithm>

#include "host/mesh/shells.h"
#include "host/scene/mesh_data.h"
#include "host/scene/poly_component_data.h"

namespace host::nodes {

namespace {

using scene::PolyComponentData;

std::string textOf(dg::Graph& graph, const dg::Plug& plug) {
  const auto value = graph.get(plug);
  const auto* text = value ? std::get_if<std::string>(&*value) : nullptr;
  return text ? *text : std::string();
}

/// The polyPinUV nodes that the shape's mesh comes through, the first one first.
std::vector<dg::Node*> pinNodes(dg::Node& shape) {
  dg::Graph& graph = shape.graph();
  std::vector<dg::Node*> found, seen{&shape};
  dg::Plug source = graph.source(shape.plug("inMesh"));
  while (source) {
    dg::Node& node = *source.node();
    if (std::find(seen.begin(), seen.end(), &node) != seen.end()) break;
    seen.push_back(&node);
    if (node.type().isA("polyPinUV")) found.push_back(&node);
    const dg::Plug input = node.plug("inputPolymesh")   ? node.plug("inputPolymesh")
                           : node.plug("inputGeometry") ? node.plug("inputGeometry")
                                                        : node.plug("inMesh");
    source = input ? graph.source(input) : dg::Plug();
  }
  std::reverse(found.begin(), found.end());
  return found;
}

void addWeights(dg::Node& node, std::vector<float>& pins) {
  dg::Graph& graph = node.graph();
  const auto state = graph.get(node.plug("nodeState"));
  const auto* off = state ? std::get_if<std::int64_t>(&*state) : nullptr;
  if (off && *off == 1) return;
  const auto operation = graph.get(node.plug("operation"));
  const auto* kind = operation ? std::get_if<std::int64_t>(&*operation) : nullptr;
  if (kind && *kind == 2) return pins.assign(pins.size(), 0);
  std::vector<Index> indices;
  std::vector<double> weights;
  graph.getPacked(node.plug("pin"), indices, weights);
  for (std::size_t i = 0; i < indices.size(); ++i)
    if (at(indices[i]) < pins.size() && weights[i] >= 0)
      pins[at(indices[i])] =
          kind && *kind == 1 ? 0.0f : static_cast<float>(std::min(weights[i], 1.0));
}

/// The UV set of a name in another mesh.
const mesh::UvSet* sameSet(const mesh::Mesh& mesh, const std::string& name) {
  const int set = mesh.findUvSet(name);
  return set < 0 ? nullptr : &mesh.uvSet(set);
}

/// For each corner of a mesh the one that it comes of in another; none where it comes of nothing.
std::vector<CornerId> cornerOrigins(const mesh::Mesh& from, const mesh::Mesh& to,
                                    const mesh::Provenance& origin) {
  PerElement<CornerId, CornerId> origins(to.cornerCount(), kNone);
  for (FaceId f = 0; f < to.faceCount(); ++f) {
    const FaceId old = origin.faces.at(f);
    if (old == kNone || old >= from.faceCount()) continue;
    for (CornerId c = to.firstCorner(f); c < to.firstCorner(f + 1); ++c) {
      const VertexId vertex = origin.vertices.at(to.cornerVertex(c));
      for (CornerId k = from.firstCorner(old); k < from.firstCorner(old + 1); ++k)
        if (vertex != kNone && from.cornerVertex(k) == vertex) origins[c] = k;
    }
  }
  return origins;
}

/// Weights by the UVs of one set, brought to those of another: each UV gets the greatest of its
/// corners'. `origins` gives a corner's old one; empty: the same.
std::vector<float> carriedWeights(const std::vector<float>& weights, const mesh::UvSet& from,
                                  const mesh::UvSet& to, const std::vector<CornerId>& origins) {
  std::vector<float> carried(to.points.size(), 0);
  for (std::size_t c = 0; c < to.cornerIds.size(); ++c) {
    const CornerId corner = origins.empty() ? static_cast<CornerId>(c) : origins[c];
    if (to.cornerIds[c] == kNone || corner == kNone || at(corner) >= from.cornerIds.size())
      continue;
    const UvId old = from.cornerIds[corner];
    if (old == kNone || at(old) >= weights.size()) continue;
    float& weight = carried[at(to.cornerIds[c])];
    weight = std::max(weight, weights[at(old)]);
  }
  return carried;
}

/// The mesh that leaves a pin node, to see how it numbers UVs.
std::optional<mesh::Mesh> meshBehind(dg::Node& node) {
  const auto value = node.graph().get(node.plug("output"));
  const auto* data = value ? dg::dataAs<scene::MeshData>(*value) : nullptr;
  return data ? std::optional(data->mesh) : std::nullopt;
}

std::vector<PolyComponentData::Entry> storedPins(dg::Node& shape, int uvSet) {
  const auto value = shape.graph().get(shape.plug("pinData").element(uvSet));
  const auto* data = value ? dg::dataAs<PolyComponentData>(*value) : nullptr;
  return data && data->kind == "UV" ? data->entries : std::vector<PolyComponentData::Entry>();
}

}  // namespace

std::vector<float> uvPins(dg::Node& shape, const mesh::Mesh& mesh, int uvSet) {
  const std::string& setName = mesh.uvSet(uvSet).name;
  std::vector<float> pins(mesh.uvSet(uvSet).points.size(), 0);
  // Each node's pins go by the UVs that it sees; what lies between two may have cut or sewn.
  std::optional<mesh::Mesh> numbering;
  const auto renumber = [&](const mesh::Mesh& to) {
    const mesh::UvSet* from = numbering ? sameSet(*numbering, setName) : nullptr;
    const mesh::UvSet* made = sameSet(to, setName);
    if (!made) return;
    if (from && from->cornerIds != made->cornerIds &&
        numbering->topology().faceOffsets == to.topology().faceOffsets)
      pins = carriedWeights(pins, *from, *made, {});
    pins.resize(made->points.size(), 0);
    numbering = to;
  };
  for (dg::Node* node : pinNodes(shape)) {
    const std::string name = textOf(shape.graph(), node->plug("uvSetName"));
    if (name != setName && !(name.empty() && uvSet == mesh.currentUvSet())) continue;
    if (const auto seen = meshBehind(*node)) renumber(*seen);
    addWeights(*node, pins);
  }
  renumber(mesh);
  for (const auto& [uv, weight] : storedPins(shape, uvSet))
    if (uv >= 0 && at(uv) < pins.size()) pins[at(uv)] = weight;
  if (std::ranges::all_of(pins, [](float weight) { return !(weight > 0); })) pins.clear();
  return pins;
}

std::vector<UvId> pinnedUvs(dg::Node& shape, const mesh::Mesh& mesh, int uvSet) {
  const std::vector<float> pins = uvPins(shape, mesh, uvSet);
  std::vector<UvId> uvs;
  for (std::size_t uv = 0; uv < pins.size(); ++uv)
    if (pins[uv] > 0) uvs.push_back(static_cast<UvId>(uv));
  return uvs;
}

Result<void> setUvPins(scene::Document& document, dg::Node& shape, int uvSet,
                       const std::vector<UvId>& uvs, const std::vector<double>& weights) {
  const std::vector<PolyComponentData::Entry> before = storedPins(shape, uvSet);
  std::vector<PolyComponentData::Entry> merged;
  std::size_t i = 0;
  for (std::size_t k = 0; k < uvs.size(); ++k) {
    while (i < before.size() && before[i].first < uvs[k]) merged.push_back(before[i++]);
    if (i < before.size() && before[i].first == uvs[k]) ++i;
    merged.emplace_back(uvs[k], static_cast<float>(weights[k]));
  }
  merged.insert(merged.end(), before.begin() + static_cast<std::ptrdiff_t>(i), before.end());
  // An explicit zero is needed only where a node below pins the UV.
  if (pinNodes(shape).empty()) std::erase_if(merged, [](const auto& e) { return e.second == 0; });
  return document.graph().set(
      shape.plug("pinData").element(uvSet),
      dg::Value(dg::DataPtr(std::make_shared<PolyComponentData>("UV", std::move(merged)))));
}

PinCarrier::PinCarrier(scene::Document& document, dg::Node& shape, const mesh::Mesh& before)
    : document_(document), shape_(shape) {
  for (int set = 0; set < before.uvSetCount() && !before_; ++set)
    if (!storedPins(shape, set).empty()) before_ = before;
  if (before_) trail_.emplace(*before_);
}

Result<void> PinCarrier::finish(const mesh::Mesh& after) {
  if (!before_) return {};
  const auto origin = trail_->to(after);
  trail_.reset();
  const bool isSame = before_->topology().faceOffsets == after.topology().faceOffsets;
  if (!origin && !isSame) return {};
  std::vector<CornerId> origins;
  if (!isSame) origins = cornerOrigins(*before_, after, *origin);
  for (int set = 0; set < before_->uvSetCount(); ++set) {
    const mesh::UvSet& old = before_->uvSet(set);
    const mesh::UvSet* made = sameSet(after, old.name);
    const auto entries = storedPins(shape_, set);
    if (!made || entries.empty() || (isSame && made->cornerIds == old.cornerIds)) continue;
    std::vector<float> weights(old.points.size(), 0);
    for (const auto& [uv, weight] : entries)
      if (uv >= 0 && at(uv) < weights.size()) weights[at(uv)] = weight;
    const std::vector<float> carried = carriedWeights(weights, old, *made, origins);
    std::vector<PolyComponentData::Entry> kept;
    for (std::size_t uv = 0; uv < carried.size(); ++uv)
      if (carried[uv] > 0) kept.emplace_back(static_cast<Index>(uv), carried[uv]);
    HOST_TRY(document_.graph().set(
        shape_.plug("pinData").element(set),
        dg::Value(dg::DataPtr(std::make_shared<PolyComponentData>("UV", std::move(kept))))));
  }
  return {};
}

std::vector<Index> pinnedShells(dg::Node& shape, const mesh::Mesh& mesh, int uvSet) {
  const std::vector<UvId> pinned = pinnedUvs(shape, mesh, uvSet);
  if (pinned.empty()) return {};
  return mesh::shellsOfUvs(mesh::findUvShells(mesh, uvSet), pinned);
}

}  // namespace host::nodes
