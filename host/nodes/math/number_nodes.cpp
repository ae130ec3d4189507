#include <algorithm>
#include <cmath>

#include "host/dg/graph.h"
#include "host/math/euler.h"
#include "host/math/quaternion.h"
#include "host/nodes/math/math_nodes.h"

namespace host::nodes {

namespace {

using math::Vec3;

double numberIn(const dg::Value& value) {
  if (const auto* real = std::get_if<double>(&value)) return *real;
  if (const auto* whole = std::get_if<std::int64_t>(&value)) return static_cast<double>(*whole);
  return 0;
}

/// addDoubleLinear and multDoubleLinear: of lengths, the second one of a product a plain factor.
void registerOfTwo(dg::TypeRegistry& types, const char* name, std::uint32_t id,
                   AttributePtr secondInput, double (*join)(double, double)) {
  TypeBuilder builder(types, name, {}, id);
  const Attribute* first = builder.add(keyable(distance("input1", "i1")));
  const Attribute* second = builder.add(keyable(std::move(secondInput)));
  const Attribute* out = builder.add(output(distance("output", "o")));
  computeBy(builder, {first, second}, {out}, [=](Node&, DataBlock& block) -> Result<void> {
    block.output(out, join(block.real(first), block.real(second)));
    return {};
  });
}

void registerDistance(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "distanceBetween", {}, typeCode("DDBT"));
  const Attribute* first = builder.add(keyable(triple("point1", "p1", AttributeType::Distance)));
  const Attribute* firstMatrix = builder.add(matrix("inMatrix1", "im1"));
  const Attribute* second = builder.add(keyable(triple("point2", "p2", AttributeType::Distance)));
  const Attribute* secondMatrix = builder.add(matrix("inMatrix2", "im2"));
  const Attribute* out = builder.add(output(distance("distance", "d")));
  computeBy(builder, {first, firstMatrix, second, secondMatrix}, {out},
            [=](Node&, DataBlock& block) -> Result<void> {
              const Vec3 a = math::transformPoint(block.vec3(first), block.matrix(firstMatrix)),
                         b = math::transformPoint(block.vec3(second), block.matrix(secondMatrix));
              block.output(out, math::length(b - a));
              return {};
            });
}

void registerAngleBetween(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "angleBetween", {}, typeCode("DABT"));
  const Attribute* first =
      builder.add(keyable(triple("vector1", "v1", AttributeType::Double, {1, 0, 0})));
  const Attribute* second =
      builder.add(keyable(triple("vector2", "v2", AttributeType::Double, {1, 0, 0})));
  const Attribute* turn = builder.add(output(
      compound("axisAngle", "axa",
               {triple("axis", "ax", AttributeType::Double, {1, 0, 0}), angle("angle", "a")})));
  const Attribute* euler = builder.add(output(triple("euler", "eu", AttributeType::Angle)));
  computeBy(builder, {first, second}, {turn, euler},
            [=](Node& node, DataBlock& block) -> Result<void> {
              const Vec3 a = math::normalized(block.vec3(first)),
                         b = math::normalized(block.vec3(second));
              const math::Quaternion rotation = math::rotationBetween(a, b);
              const Vec3 part{rotation.x, rotation.y, rotation.z};
              const double sine = math::length(part);
              const Plug whole(&node, turn);
              const Vec3 axis = sine > 0 ? part * (1 / sine) : Vec3{1, 0, 0};
              for (int i = 0; i < 3; ++i) block.output(whole.child(0).child(i), axis[i]);
              block.output(whole.child(1), 2 * std::atan2(sine, rotation.w));
              outputVec3(block, Plug(&node, euler), math::quaternionToEuler(rotation));
              return {};
            });
}

void registerVectorProduct(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "vectorProduct", {}, typeCode("RVPR"));
  builder.type().classification = "utility/general";
  const Attribute* operation =
      builder.add(keyable(choice("operation", "op",
                                 {"No operation", "Dot Product", "Cross Product",
                                  "Vector Matrix Product", "Point Matrix Product"},
                                 1)));
  const Attribute* first = builder.add(keyable(triple("input1", "i1", AttributeType::Float)));
  const Attribute* second = builder.add(keyable(triple("input2", "i2", AttributeType::Float)));
  const Attribute* placing = builder.add(matrix("matrix", "m"));
  const Attribute* isUnit = builder.add(keyable(boolean("normalizeOutput", "no")));
  const Attribute* out = builder.add(output(triple("output", "o", AttributeType::Float)));
  computeBy(builder, {operation, first, second, placing, isUnit}, {out},
            [=](Node& node, DataBlock& block) -> Result<void> {
              const Vec3 a = block.vec3(first), b = block.vec3(second);
              Vec3 result = a;
              switch (block.integer(operation)) {
                case 1: {
                  const double product = math::dot(a, b);
                  result = {product, product, product};
                  break;
                }
                case 2:
                  result = math::cross(a, b);
                  break;
                case 3:
                  result = math::transformVector(a, block.matrix(placing));
                  break;
                case 4:
                  result = math::transformPoint(a, block.matrix(placing));
                  break;
                default:
                  break;
              }
              // Of a dot product the factors are made unit instead.
              if (block.boolean(isUnit) && block.integer(operation) == 1) {
                const double product = math::dot(math::normalized(a), math::normalized(b));
                result = {product, product, product};
              } else if (block.boolean(isUnit) && block.integer(operation) != 0) {
                result = math::normalized(result);
              }
              outputVec3(block, Plug(&node, out), result);
              return {};
            });
}

/// Passes on the element that the selector names; any kind of value.
void registerChoice(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "choice", {}, typeCode("CHCE"));
  const Attribute* selector = builder.add(keyable(integer("selector", "s")));
  const Attribute* in = builder.add(array(dg::makeAttribute("input", "i", AttributeType::Generic)));
  const Attribute* out =
      builder.add(output(dg::makeAttribute("output", "o", AttributeType::Generic)));
  computeBy(builder, {selector, in}, {out}, [=](Node& node, DataBlock& block) -> Result<void> {
    const Plug all(&node, in);
    const std::vector<Index> indices = block.graph().elementIndices(all);
    // A number past the end means the last one.
    auto wanted = static_cast<Index>(block.integer(selector));
    if (!indices.empty() && wanted > indices.back()) wanted = indices.back();
    if (std::ranges::find(indices, wanted) == indices.end()) {
      block.output(out, dg::Value());
      return {};
    }
    const auto value = block.input(all.element(wanted));
    if (!value) return failWith(value.error());
    block.output(out, *value);
    return {};
  });
}

void registerBlendWeighted(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "blendWeighted", {}, typeCode("ABLW"));
  const Attribute* in = builder.add(unordered(array(keyable(real("input", "i")))));
  const Attribute* weights = builder.add(unordered(array(keyable(real("weight", "w", 1)))));
  builder.add(message("current", "c"));
  const Attribute* out = builder.add(output(real("output", "o")));
  computeBy(builder, {in, weights}, {out}, [=](Node& node, DataBlock& block) -> Result<void> {
    double sum = 0;
    const Plug all(&node, in), factors(&node, weights);
    const std::vector<Index> weighted = block.graph().elementIndices(factors);
    for (const Index index : block.graph().elementIndices(all)) {
      const auto value = block.input(all.element(index));
      if (!value) return failWith(value.error());
      double weight = 1;
      if (std::ranges::find(weighted, index) != weighted.end()) {
        const auto own = block.input(factors.element(index));
        if (!own) return failWith(own.error());
        weight = numberIn(*own);
      }
      sum += numberIn(*value) * weight;
    }
    block.output(out, sum);
    return {};
  });
}

AttributePtr numbered(const std::string& stem, const std::string& code, AttributeType type,
                      const std::string& number) {
  const auto axis = [&](const char* longAxis, const char* shortAxis) {
    return keyable(dg::makeAttribute(stem + longAxis + number, code + shortAxis + number, type));
  };
  return numbers(stem + number, code + number, "double3",
                 {axis("X", "x"), axis("Y", "y"), axis("Z", "z")});
}

/// Blends between what two things want of an object: translations linearly, rotations axis by axis
/// or along the arc.
void registerPairBlend(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "pairBlend", {}, typeCode("APBL"));
  const Attribute* move1 = builder.add(numbered("inTranslate", "it", AttributeType::Distance, "1"));
  const Attribute* turn1 = builder.add(numbered("inRotate", "ir", AttributeType::Angle, "1"));
  const Attribute* move2 = builder.add(numbered("inTranslate", "it", AttributeType::Distance, "2"));
  const Attribute* turn2 = builder.add(numbered("inRotate", "ir", AttributeType::Angle, "2"));
  const Attribute* weight = builder.add(keyable(limited(real("weight", "w", 1), 0, 1)));
  builder.add(shortInteger("currentDriver", "c"));
  std::vector<const Attribute*> modes;
  for (const char* axis : {"X", "Y", "Z"}) {
    const std::string code(1, static_cast<char>(axis[0] - 'A' + 'a'));
    modes.push_back(builder.add(choice("translate" + std::string(axis) + "Mode", "t" + code + "m",
                                       {"Blend", "Input 1 Only", "Input 2 Only"})));
  }
  const Attribute* turnMode =
      builder.add(choice("rotateMode", "rm", {"Blend", "Input 1 Only", "Input 2 Only"}));
  const Attribute* way =
      builder.add(choice("rotInterpolation", "ri", {"Euler Angle", "Quaternion"}));
  const Attribute* moved =
      builder.add(output(triple("outTranslate", "ot", AttributeType::Distance)));
  const Attribute* turned = builder.add(output(triple("outRotate", "or", AttributeType::Angle)));
  std::vector<const Attribute*> inputs{move1, turn1, move2, turn2, weight, turnMode, way};
  inputs.insert(inputs.end(), modes.begin(), modes.end());
  computeBy(builder, inputs, {moved, turned}, [=](Node& node, DataBlock& block) -> Result<void> {
    const double share = block.real(weight);
    const auto shareOf = [&](const Attribute* mode) {
      const std::int64_t wanted = block.integer(mode);
      return wanted == 1 ? 0.0 : wanted == 2 ? 1.0 : share;
    };
    const Vec3 fromPlace = block.vec3(move1), toPlace = block.vec3(move2);
    Vec3 place;
    for (int axis = 0; axis < 3; ++axis)
      place[axis] =
          std::lerp(fromPlace[axis], toPlace[axis], shareOf(modes[static_cast<std::size_t>(axis)]));
    outputVec3(block, Plug(&node, moved), place);
    const Vec3 from = block.vec3(turn1), to = block.vec3(turn2);
    const double turn = shareOf(turnMode);
    Vec3 angles = from + (to - from) * turn;
    if (block.integer(way) == 1) {
      const math::Quaternion between =
          math::slerp(math::eulerToQuaternion(from), math::eulerToQuaternion(to), turn);
      angles = math::closestEuler(math::quaternionToEuler(between), math::RotateOrder::XYZ, angles);
    }
    outputVec3(block, Plug(&node, turned), angles);
    return {};
  });
}

}  // namespace

void registerNumberNodes(dg::TypeRegistry& types) {
  registerOfTwo(types, "addDoubleLinear", typeCode("DADL"), distance("input2", "i2"),
                [](double a, double b) { return a + b; });
  registerOfTwo(types, "multDoubleLinear", typeCode("DMDL"), real("input2", "i2"),
                [](double a, double b) { return a * b; });
  registerDistance(types);
  registerAngleBetween(types);
  registerVectorProduct(types);
  registerChoice(types);
  registerBlendWeighted(types);
  registerPairBlend(types);
}

}  // namespace host::nodes
