#pragma once

#include <compare>
#include <span>
#include <string>
#include <vector>

#include "host/base/ids.h"
#include "host/base/result.h"
#include "host/dg/data.h"
#include "host/mesh/component_type.h"

namespace host::scene {

using mesh::ComponentType;

/// The name of a kind in scripts: "vtx", "e", "f", "map", "vtxFace".
[[nodiscard]] std::string_view componentWord(ComponentType type);
[[nodiscard]] bool parseComponentWord(std::string_view word, ComponentType& type);

/// A set of components of one type on one mesh. Indices are ascending and unique; VertexFace pairs
/// are sorted by vertex, then face. `complete` means all there are, whatever the mesh's size: the
/// indices then stay empty.
class Component {
 public:
  struct VertexFace {
    VertexId vertex = kNone;
    FaceId face = kNone;
    friend auto operator<=>(const VertexFace&, const VertexFace&) = default;
  };

  Component() = default;
  explicit Component(ComponentType type) : type_(type) {}
  /// Takes indices in any order, with repeats.
  Component(ComponentType type, std::vector<Index> indices);
  explicit Component(std::vector<VertexFace> pairs);
  [[nodiscard]] static Component all(ComponentType type);
  /// The ids' type says the kind; a vertex-face is not known by a corner here.
  template <AnyId Id>
  [[nodiscard]] static Component of(const std::vector<Id>& ids) {
    static_assert(!std::is_same_v<Id, CornerId>);
    return Component(mesh::kTypeOf<Id>, copyIds(ids));
  }

  [[nodiscard]] ComponentType type() const { return type_; }
  [[nodiscard]] bool isComplete() const { return complete_; }
  [[nodiscard]] bool isEmpty() const { return !complete_ && indices_.empty() && pairs_.empty(); }
  [[nodiscard]] std::span<const Index> indices() const { return indices_; }
  [[nodiscard]] std::span<const VertexFace> pairs() const { return pairs_; }
  /// The indices with `complete` spelled out for a mesh that has `count` components of this type.
  [[nodiscard]] std::vector<Index> expanded(Index count) const;
  [[nodiscard]] std::size_t count(Index meshCount) const;
  [[nodiscard]] bool contains(Index index) const;

  // Set algebra of two components of one type. `meshCount` resolves completeness. Linear.
  void unite(const Component& other);
  void subtract(const Component& other, Index meshCount);
  void intersect(const Component& other, Index meshCount);

  /// Script words in ascending runs: "vtx[0:3]", "vtx[7]"; "vtx[*]" when complete; "vtxFace[2][5]".
  [[nodiscard]] std::vector<std::string> words() const;

  friend bool operator==(const Component&, const Component&) = default;

 private:
  ComponentType type_ = ComponentType::Vertex;
  bool complete_ = false;
  std::vector<Index> indices_;
  std::vector<VertexFace> pairs_;
};

/// Parses "vtx[0:5]", "e[*]", "f[3]", "map[2]", "vtxFace[1][2]", also with several bracket ranges.
/// `meshCount`-free: the range is not checked. @return an error that names the word.
[[nodiscard]] Result<Component> parseComponent(std::string_view word);

/// The payload of component-list attributes: what a history node works on.
class ComponentListData final : public dg::Data {
 public:
  explicit ComponentListData(std::vector<Component> valueIn) : value(std::move(valueIn)) {}
  [[nodiscard]] std::string_view typeName() const override { return "componentList"; }
  [[nodiscard]] bool equals(const dg::Data& other) const override;
  [[nodiscard]] std::uint64_t hash() const override;
  const std::vector<Component> value;
};

}  // namespace host::scene
