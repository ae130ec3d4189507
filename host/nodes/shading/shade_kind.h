#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "host/math/vec.h"
#include "host/nodes/type_builder.h"

namespace host::nodes {

/// A picture that a file texture shows: RGBA of 8 bits as in the file (sRGB), rows from the top.
struct Picture {
  int width = 0, height = 0;
  std::vector<std::uint8_t> rgba;
};
using PicturePtr = std::shared_ptr<const Picture>;

/// A colour of linear light for each of the 256 levels of a picture's channel, and back.
[[nodiscard]] double linearOfLevel(std::uint8_t level);
[[nodiscard]] std::uint8_t levelOfLinear(double light);

/// Brightness of a colour of linear light.
[[nodiscard]] double luminance(const math::Vec3& color);

/// Texture coordinates below this are outside of a texture's frame: the default colour shows.
inline constexpr double kOutsideFrame = -1e5;

/// What one shading node computes from: the numbers of its inputs in the order of the kind, and
/// of each of its arrays the elements in ascending order, their leaves one after another.
struct ShadeInputs {
  std::vector<double> values;
  std::vector<std::vector<double>> rows;
  const Picture* picture = nullptr;  ///< of a node that shows one and found it

  [[nodiscard]] math::Vec3 color(std::size_t at) const {
    return {values[at], values[at + 1], values[at + 2]};
  }
};

/// How nodes of a type turn inputs into outputs, so that the graph computes one value by it and a
/// view the colours all over a surface. Names are long ones; those of compounds stand for their
/// leaves.
struct ShadeKind {
  std::vector<std::string> inputs, arrays, outputs;
  void (*evaluate)(const ShadeInputs& in, std::span<double> out) = nullptr;
  bool showsPicture = false;
};

/// The kind of a type or of one that it derives from; null when it is no texture or utility.
[[nodiscard]] const ShadeKind* shadeKindOf(const dg::NodeType& type);

/// The leaves of an attribute, itself when it has no children.
[[nodiscard]] std::vector<const dg::Attribute*> leavesOf(const dg::Attribute* attribute);

/// Makes a type compute its outputs by a kind. The builder has all attributes by then.
void evaluateBy(TypeBuilder& builder, ShadeKind kind);

}  // namespace host::nodes
