#include "host/nodes/uv_pins.h"

#include <algorithm>

#include "host/mesh/shells.h"
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
    if (static_cast<std::size_t>(indices[i]) < pins.size() && weights[i] >= 0)
      pins[static_cast<std::size_t>(indices[i])] =
          kind && *kind == 1 ? 0.0f : static_cast<float>(std::min(weights[i], 1.0));
}

std::vector<PolyComponentData::Entry> storedPins(dg::Node& shape, int uvSet) {
  const auto value = shape.graph().get(shape.plug("pinData").element(uvSet));
  const auto* data = value ? dg::dataAs<PolyComponentData>(*value) : nullptr;
  return data && data->kind == "UV" ? data->entries : std::vector<PolyComponentData::Entry>();
}

}  // namespace

std::vector<float> uvPins(dg::Node& shape, const mesh::Mesh& mesh, int uvSet) {
  std::vector<float> pins(mesh.uvSet(uvSet).points.size(), 0);
  for (dg::Node* node : pinNodes(shape)) {
    const std::string name = textOf(shape.graph(), node->plug("uvSetName"));
    if (name == mesh.uvSet(uvSet).name || (name.empty() && uvSet == mesh.currentUvSet()))
      addWeights(*node, pins);
  }
  for (const auto& [uv, weight] : storedPins(shape, uvSet))
    if (uv >= 0 && static_cast<std::size_t>(uv) < pins.size())
      pins[static_cast<std::size_t>(uv)] = weight;
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

std::vector<Index> pinnedShells(dg::Node& shape, const mesh::Mesh& mesh, int uvSet) {
  std::vector<Index> found;
  const std::vector<UvId> pinned = pinnedUvs(shape, mesh, uvSet);
  if (pinned.empty()) return found;
  const mesh::UvShells shells = mesh::findUvShells(mesh, uvSet);
  for (const UvId uv : pinned)
    if (const Index shell = shells.ofUv[static_cast<std::size_t>(uv)]; shell != kNone)
      found.push_back(shell);
  std::ranges::sort(found);
  found.erase(std::unique(found.begin(), found.end()), found.end());
  return found;
}

}  // namespace host::nodes
