#pragma once

#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "host/math/placement.h"
#include "host/nodes/shading/shade_kind.h"

namespace host::nodes {

/// Finds the picture of a node that shows one; null when there is none to be had.
using FindPicture = std::function<PicturePtr(dg::Node&)>;

/// What feeds colours and numbers of a material, read out of the graph once, to be evaluated at
/// any number of places of a surface.
///
/// What doesn't depend on the place is folded into constants while reading. A node that is no
/// texture or utility counts with the value it has now; so does the link that would close a cycle.
class ShadeNetwork {
 public:
  /// One number of a network: where it comes from.
  struct Source {
    enum class Kind : std::uint8_t { Constant, U, V, Output };
    Kind kind = Kind::Constant;
    std::uint32_t entry = 0, output = 0;
    double constant = 0;
  };
  using Color = std::array<Source, 3>;

  explicit ShadeNetwork(FindPicture findPicture) : findPicture_(std::move(findPicture)) {}

  /// Adds what feeds a number, or a compound of three.
  [[nodiscard]] Source addNumber(const dg::Plug& plug);
  [[nodiscard]] Color addColor(const dg::Plug& plug);

  /// Takes the placement out of the network when all its textures lie by the same one: what is left
  /// is in the texture's own coordinates and repeats in the unit square. Call when all is added.
  std::optional<math::Placement> takePlacement(std::vector<Source*> roots);

  [[nodiscard]] static bool isConstant(const Source& source) {
    return source.kind == Source::Kind::Constant;
  }
  [[nodiscard]] static bool isConstant(const Color& color) {
    return isConstant(color[0]) && isConstant(color[1]) && isConstant(color[2]);
  }
  [[nodiscard]] static math::Vec3 constant(const Color& color) {
    return {color[0].constant, color[1].constant, color[2].constant};
  }

  /// Evaluates the whole network at a place; `value` and `color` then read it.
  void moveTo(double u, double v);
  [[nodiscard]] double value(const Source& source) const;
  [[nodiscard]] math::Vec3 color(const Color& c) const {
    return {value(c[0]), value(c[1]), value(c[2])};
  }

  /// The picture that a colour shows unchanged, in the coordinates that are left; null when
  /// something is done to it on the way.
  [[nodiscard]] const Picture* plainPicture(const Color& color) const;
  /// Whether a transparency is that of the plain picture of a colour, as it is.
  [[nodiscard]] bool isPlainTransparency(const Color& color, const Color& transparency) const;
  /// The longer side of the largest picture in it; 0 without one.
  [[nodiscard]] int pictureSide() const;
  /// A digest of all that decides on its colours.
  [[nodiscard]] std::uint64_t signature(const std::vector<Source>& roots) const;

 private:
  struct Entry {
    const ShadeKind* kind = nullptr;
    const dg::Node* node = nullptr;
    std::vector<Source> inputs;
    std::vector<std::vector<Source>> rows;
    std::vector<double> out;
    std::vector<const dg::Attribute*> outputs;
    ShadeInputs scratch;
    PicturePtr picture;
    bool isTaken = false;  ///< its placement was taken out
  };

  Source resolve(const dg::Plug& leaf);
  Source fromSource(const dg::Plug& source, const dg::Plug& leaf);
  Source readValue(const dg::Plug& leaf) const;
  std::optional<std::size_t> entryOf(dg::Node& node, const ShadeKind& kind);
  void fill(Entry& entry);
  void evaluate(Entry& entry);
  static math::Placement placementOf(const Entry& entry);

  FindPicture findPicture_;
  std::vector<Entry> entries_;  ///< what feeds an entry stands before it
  std::vector<std::pair<const dg::Node*, std::size_t>> done_;
  std::vector<const dg::Node*> open_;
  double u_ = 0, v_ = 0;
};

}  // namespace host::nodes
