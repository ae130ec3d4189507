#pragma once

#include "host/dg/graph.h"
#include "host/scene/mesh_data.h"

namespace host::nodes {

/// Corner data (UVs, colours, normals, creases, smoothness) that was given to a shape on top of
/// what its history brings, with what the history brought at that time.
///
/// Each set and each array of the edit holds until the history brings another one: what is newer is
/// seen. So a UV set that was added or made current leaves the other sets to the history, and a
/// node that is put into the history after the edit shows.
class CornerOverride final : public dg::Data {
 public:
  CornerOverride(mesh::Mesh editedIn, mesh::Mesh arrivedIn)
      : edited(std::move(editedIn)), arrived(std::move(arrivedIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "mesh"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override {
    const auto* same = dynamic_cast<const CornerOverride*>(&other);
    return same && same->edited == edited && same->arrived == arrived;
  }
  [[nodiscard]] std::uint64_t hash() const override {
    return mesh::hashMesh(edited) * 31 + mesh::hashMesh(arrived);
  }
  const mesh::Mesh edited, arrived;
};

/// What a shape's override attribute is set to, for it to show `edited` from now on.
[[nodiscard]] Result<dg::DataPtr> makeOverride(dg::Node& shape, mesh::Mesh edited);

/// The mesh that a shape shows of what arrives, under the override that it holds; the one that
/// arrives when it holds none or the counts differ. Costs a comparison of the sets that are not
/// shared.
[[nodiscard]] mesh::Mesh withOverride(const mesh::Mesh& arriving, const dg::Value& override);

}  // namespace host::nodes
