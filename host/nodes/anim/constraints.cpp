#include "host/nodes/anim/constraints.h"

#include <cmath>

#include "host/dg/graph.h"
#include "host/math/quaternion.h"
#include "host/math/transform.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using math::Quaternion;
using math::Vec3;

/// Reads a constraint's numbers by name, for one computation.
class Reader {
 public:
  Reader(Node& node, dg::Graph& graph)
      : node_(node), graph_(graph), targets_(node.plug("target")) {}

  [[nodiscard]] std::vector<Index> targets() const { return graph_.elementIndices(targets_); }
  [[nodiscard]] Vec3 vec(std::string_view name) const { return vecAt(node_.plug(name)); }
  [[nodiscard]] Vec3 vec(Index target, std::string_view name) const {
    return vecAt(below(target, name));
  }
  [[nodiscard]] double number(std::string_view name) const { return numberAt(node_.plug(name)); }
  [[nodiscard]] double weight(Index target) const {
    return std::max(0.0, numberAt(below(target, "targetWeight")));
  }
  [[nodiscard]] math::RotateOrder order(Index target) const {
    return orderFrom(numberAt(below(target, "targetRotateOrder")));
  }
  [[nodiscard]] math::RotateOrder order(std::string_view name) const {
    return orderFrom(number(name));
  }
  [[nodiscard]] Matrix4 matrix(std::string_view name) const { return matrixAt(node_.plug(name)); }
  [[nodiscard]] Matrix4 parentMatrix(Index target) const {
    return matrixAt(below(target, "targetParentMatrix"));
  }

 private:
  [[nodiscard]] Plug below(Index target, std::string_view name) const {
    return targets_.element(target).child(targets_.attribute()->find(name));
  }
  [[nodiscard]] Vec3 vecAt(const Plug& plug) const {
    return plug ? graph_.getVec3(plug).value_or(Vec3()) : Vec3();
  }
  [[nodiscard]] double numberAt(const Plug& plug) const {
    const auto value = graph_.get(plug);
    if (!value) return 0;
    if (const auto* real = std::get_if<double>(&*value)) return *real;
    const auto* whole = std::get_if<std::int64_t>(&*value);
    return whole ? static_cast<double>(*whole) : 0;
  }
  [[nodiscard]] Matrix4 matrixAt(const Plug& plug) const {
    const auto value = graph_.get(plug);
    const auto* data = value ? dg::dataAs<dg::MatrixData>(*value) : nullptr;
    return data ? data->value : Matrix4();
  }
  static math::RotateOrder orderFrom(double number) {
    return static_cast<math::RotateOrder>(number >= 0 && number < 6 ? static_cast<int>(number) : 0);
  }

  Node& node_;
  dg::Graph& graph_;
  Plug targets_;
};

Matrix4 eulerMatrix(const Vec3& angles, math::RotateOrder order) {
  return math::eulerToMatrix(angles, order);
}

/// The rotation in a matrix, without its scale and shear.
Matrix4 rotationOf(const Matrix4& matrix) {
  const math::TransformComponents parts = math::decompose(matrix);
  return eulerMatrix(parts.rotate, parts.rotateOrder);
}

Vec3 anglesOf(const Matrix4& rotation, math::RotateOrder order) {
  return math::matrixToEuler(rotation, order);
}

Vec3 lengthsOf(const Matrix4& matrix) {
  const auto row = [&](int i) {
    return math::length(Vec3{matrix[i][0], matrix[i][1], matrix[i][2]});
  };
  return {row(0), row(1), row(2)};
}

/// Rotations mixed along shortest arcs.
class RotationMean {
 public:
  void add(const Matrix4& rotation, double weight) {
    if (weight <= 0) return;
    total_ += weight;
    mean_ = math::slerp(mean_, math::toQuaternion(rotation), weight / total_);
  }
  [[nodiscard]] bool isEmpty() const { return total_ <= 0; }
  [[nodiscard]] Matrix4 matrix() const { return math::toMatrix(math::normalized(mean_)); }

 private:
  Quaternion mean_;
  double total_ = 0;
};

/// Where the targets' pivots are in the world, in the mean; nothing without weight.
std::optional<Vec3> targetPlace(const Reader& in, bool withOffsets) {
  Vec3 sum;
  double total = 0;
  for (const Index target : in.targets()) {
    const double weight = in.weight(target);
    const Vec3 pivot = in.vec(target, "targetTranslate") + in.vec(target, "targetRotatePivot") +
                       in.vec(target, "targetRotateTranslate");
    const Matrix4 parent = in.parentMatrix(target);
    Vec3 place = math::transformPoint(pivot, parent);
    if (withOffsets) {
      const Matrix4 own = Matrix4::scaling(in.vec(target, "targetScale")) *
                          eulerMatrix(in.vec(target, "targetRotate"), in.order(target)) * parent;
      place = place + math::transformVector(in.vec(target, "targetOffsetTranslate"), own);
    }
    sum = sum + place * weight;
    total += weight;
  }
  if (total <= 0) return std::nullopt;
  return sum * (1 / total);
}

std::optional<Matrix4> targetRotation(const Reader& in, bool withOffsets) {
  RotationMean mean;
  for (const Index target : in.targets()) {
    Matrix4 rotation = eulerMatrix(in.vec(target, "targetRotate"), in.order(target)) *
                       rotationOf(in.parentMatrix(target));
    if (withOffsets)
      rotation =
          eulerMatrix(in.vec(target, "targetOffsetRotate"), math::RotateOrder::XYZ) * rotation;
    mean.add(rotation, in.weight(target));
  }
  if (mean.isEmpty()) return std::nullopt;
  return mean.matrix();
}

/// The value of a translate that brings the object's pivot to a place in the world.
Vec3 translateFor(const Reader& in, const Vec3& place) {
  return math::transformPoint(place, in.matrix("constraintParentInverseMatrix")) -
         in.vec("constraintRotatePivot") - in.vec("constraintRotateTranslate");
}

Vec3 rotateFor(const Reader& in, const Matrix4& rotation) {
  const Matrix4 local = rotation * rotationOf(in.matrix("constraintParentInverseMatrix"));
  return anglesOf(local, in.order("constraintRotateOrder"));
}

Vec3 pointTranslate(const Reader& in) {
  const auto place = targetPlace(in, false);
  return place ? translateFor(in, *place) + in.vec("offset") : in.vec("restTranslate");
}

Vec3 orientRotate(const Reader& in) {
  const auto rotation = targetRotation(in, false);
  if (!rotation) return in.vec("restRotate");
  return rotateFor(in, eulerMatrix(in.vec("offset"), math::RotateOrder::XYZ) * *rotation);
}

Vec3 parentTranslate(const Reader& in) {
  const auto place = targetPlace(in, true);
  return place ? translateFor(in, *place) : in.vec("restTranslate");
}

Vec3 parentRotate(const Reader& in) {
  const auto rotation = targetRotation(in, true);
  return rotation ? rotateFor(in, *rotation) : in.vec("restRotate");
}

Vec3 scaleScale(const Reader& in) {
  Vec3 logs;
  double total = 0;
  for (const Index target : in.targets()) {
    const double weight = in.weight(target);
    const Matrix4 world = Matrix4::scaling(in.vec(target, "targetScale")) * in.parentMatrix(target);
    const Vec3 lengths = lengthsOf(world);
    for (int axis = 0; axis < 3; ++axis)
      logs[axis] += weight * std::log(std::max(lengths[axis], 1e-300));
    total += weight;
  }
  if (total <= 0) return in.vec("restScale");
  const Vec3 parent = lengthsOf(in.matrix("constraintParentInverseMatrix"));
  const Vec3 offset = in.vec("offset");
  Vec3 scale;
  for (int axis = 0; axis < 3; ++axis)
    scale[axis] = std::exp(logs[axis] / total) * parent[axis] * offset[axis];
  return scale;
}

/// An orthonormal frame as a matrix: rows along `first`, near `second`, across both.
std::optional<Matrix4> frameOf(const Vec3& first, Vec3 second) {
  if (math::length(first) < 1e-12) return std::nullopt;
  const Vec3 x = math::normalized(first);
  second = second - x * math::dot(x, second);
  if (math::length(second) < 1e-9) {  // up and aim are one line: any direction across
    const Vec3 other = std::abs(x.x) < 0.9 ? Vec3{1, 0, 0} : Vec3{0, 1, 0};
    second = other - x * math::dot(x, other);
  }
  const Vec3 y = math::normalized(second), z = math::cross(x, y);
  Matrix4 frame;
  for (int i = 0; i < 3; ++i) {
    frame[0][i] = x[i];
    frame[1][i] = y[i];
    frame[2][i] = z[i];
  }
  return frame;
}

enum UpType { kSceneUp, kObjectUp, kObjectRotationUp, kVectorUp, kNoUp };

Vec3 aimRotate(const Reader& in) {
  const auto place = targetPlace(in, false);
  if (!place) return in.vec("restRotate");
  const Matrix4 toParent = in.matrix("constraintParentInverseMatrix");
  const Vec3 own = in.vec("constraintTranslate") + in.vec("constraintRotatePivot") +
                   in.vec("constraintRotateTranslate");
  const Vec3 aim = math::transformPoint(*place, toParent) - own;
  const auto upType = static_cast<int>(in.number("worldUpType"));
  const Matrix4 upMatrix = in.matrix("worldUpMatrix");
  Vec3 up = in.vec("worldUpVector");
  if (upType == kSceneUp) up = {0, 1, 0};
  if (upType == kObjectRotationUp) up = math::transformVector(up, upMatrix);
  if (upType == kObjectUp)
    up = math::transformPoint(math::transformPoint({}, upMatrix), toParent) - own;
  else
    up = math::transformVector(up, toParent);
  const Vec3 aimVector = in.vec("aimVector");
  Matrix4 rotation;
  const auto held = frameOf(aimVector, in.vec("upVector")), wanted = frameOf(aim, up);
  if (!held || !wanted) return in.vec("restRotate");
  if (upType == kNoUp)
    rotation = math::toMatrix(math::rotationBetween(aimVector, aim));
  else
    rotation = math::transpose(*held) * *wanted;
  return anglesOf(eulerMatrix(in.vec("offset"), math::RotateOrder::XYZ) * rotation,
                  in.order("constraintRotateOrder"));
}

using Compute = Vec3 (*)(const Reader&);
struct Result3 {
  const char *longName, *shortName;
  AttributeType type;
  Compute compute;
};

AttributePtr places(const char* longName, const char* shortName, const char* childShortName = "") {
  return triple(longName, shortName, AttributeType::Distance, {}, childShortName);
}
AttributePtr angles(const char* longName, const char* shortName, const char* childShortName = "") {
  return triple(longName, shortName, AttributeType::Angle, {}, childShortName);
}
AttributePtr orders(const char* longName, const char* shortName) {
  return choice(longName, shortName, {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"});
}

/// What most targets give; each type wires what it needs.
AttributePtr targetCompound(bool turns, bool scales) {
  AttributePtr weight = real("targetWeight", "tw", 1);
  if (scales)
    return array(compound("target", "tg",
                          {triple("targetScale", "ts", AttributeType::Double, {1, 1, 1}),
                           matrix("targetParentMatrix", "tpm"), weight}));
  if (!turns)
    return array(compound(
        "target", "tg",
        {places("targetTranslate", "tt"), places("targetRotatePivot", "trp"),
         places("targetRotateTranslate", "trt"), matrix("targetParentMatrix", "tpm"), weight}));
  return array(
      compound("target", "tg",
               {places("targetTranslate", "tt"), places("targetRotatePivot", "trp"),
                places("targetRotateTranslate", "trt"), angles("targetRotate", "tr"),
                orders("targetRotateOrder", "tro"),
                triple("targetScale", "ts", AttributeType::Double, {1, 1, 1}),
                matrix("targetParentMatrix", "tpm"), weight, places("targetOffsetTranslate", "tot"),
                angles("targetOffsetRotate", "tor")}));
}

void finishConstraint(TypeBuilder& builder, std::initializer_list<Result3> results,
                      std::initializer_list<AttributePtr> inputs) {
  std::vector<const Attribute*> from;
  for (const AttributePtr& attribute : inputs) from.push_back(builder.add(attribute));
  std::vector<std::pair<const Attribute*, Compute>> computed;
  for (const Result3& result : results) {
    const Attribute* attribute =
        builder.add(output(triple(result.longName, result.shortName, result.type)));
    for (const Attribute* input : from) builder.affects({input}, {attribute});
    computed.emplace_back(attribute, result.compute);
  }
  builder.type().compute = [computed](Node& node, const Plug& plug,
                                      DataBlock& block) -> Result<Computed> {
    for (const auto& [attribute, compute] : computed) {
      if (plug.attribute() != attribute && plug.attribute()->parent != attribute) continue;
      const Vec3 value = compute(Reader(node, block.graph()));
      if (!math::isFinite(value)) return fail("'{}' comes to no finite value", node.name());
      for (int axis = 0; axis < 3; ++axis)
        block.output(Plug(&node, attribute).child(axis), value[axis]);
      return Computed::Done;
    }
    return Computed::Unhandled;
  };
  builder.finish();
}

AttributePtr parentInverse() {
  return matrix("constraintParentInverseMatrix", "cpim");
}

}  // namespace

void registerConstraints(dg::TypeRegistry& types) {
  TypeBuilder base(types, "constraint", "transform", typeCode("CNST"));
  base.setAbstract();
  base.finish();
  TypeBuilder point(types, "pointConstraint", "constraint", typeCode("PTCN"));
  finishConstraint(
      point, {{"constraintTranslate", "ct", AttributeType::Distance, pointTranslate}},
      {targetCompound(false, false), parentInverse(), places("constraintRotatePivot", "crp"),
       places("constraintRotateTranslate", "crt"), places("offset", "o"),
       places("restTranslate", "rst", "rt")});
  TypeBuilder orient(types, "orientConstraint", "constraint", typeCode("ORCN"));
  finishConstraint(
      orient, {{"constraintRotate", "cr", AttributeType::Angle, orientRotate}},
      {targetCompound(true, false), parentInverse(), orders("constraintRotateOrder", "cro"),
       angles("offset", "o"), angles("restRotate", "rsrr", "rr")});
  TypeBuilder parent(types, "parentConstraint", "constraint", typeCode("PRCN"));
  finishConstraint(
      parent,
      {{"constraintTranslate", "ct", AttributeType::Distance, parentTranslate},
       {"constraintRotate", "cr", AttributeType::Angle, parentRotate}},
      {targetCompound(true, false), parentInverse(), places("constraintRotatePivot", "crp"),
       places("constraintRotateTranslate", "crt"), orders("constraintRotateOrder", "cro"),
       places("restTranslate", "rst", "rt"), angles("restRotate", "rsrr", "rr")});
  TypeBuilder scale(types, "scaleConstraint", "constraint", typeCode("SLCN"));
  finishConstraint(scale, {{"constraintScale", "cs", AttributeType::Double, scaleScale}},
                   {targetCompound(false, true), parentInverse(),
                    triple("offset", "o", AttributeType::Double, {1, 1, 1}),
                    triple("restScale", "rs", AttributeType::Double, {1, 1, 1})});
  TypeBuilder aim(types, "aimConstraint", "constraint", typeCode("AICN"));
  finishConstraint(
      aim, {{"constraintRotate", "cr", AttributeType::Angle, aimRotate}},
      {targetCompound(false, false), parentInverse(),
       triple("aimVector", "a", AttributeType::Double, {1, 0, 0}),
       triple("upVector", "u", AttributeType::Double, {0, 1, 0}),
       triple("worldUpVector", "wu", AttributeType::Double, {0, 1, 0}),
       choice("worldUpType", "wut", {"scene", "object", "objectrotation", "vector", "none"}, 3),
       matrix("worldUpMatrix", "wum"), places("constraintTranslate", "ct"),
       places("constraintRotatePivot", "crp"), places("constraintRotateTranslate", "crt"),
       orders("constraintRotateOrder", "cro"), angles("offset", "o"),
       angles("restRotate", "rsrr", "rr")});
}

const std::vector<ConstraintWiring>& constraintWirings() {
  static const std::vector<ConstraintWiring> wirings = [] {
    const std::pair<std::string_view, std::string_view> place{"translate", "targetTranslate"},
        pivot{"rotatePivot", "targetRotatePivot"},
        shift{"rotatePivotTranslate", "targetRotateTranslate"}, turn{"rotate", "targetRotate"},
        order{"rotateOrder", "targetRotateOrder"}, size{"scale", "targetScale"},
        ownPivot{"rotatePivot", "constraintRotatePivot"},
        ownShift{"rotatePivotTranslate", "constraintRotateTranslate"},
        ownOrder{"rotateOrder", "constraintRotateOrder"},
        ownPlace{"translate", "constraintTranslate"}, toPlace{"constraintTranslate", "translate"},
        toTurn{"constraintRotate", "rotate"}, toSize{"constraintScale", "scale"};
    return std::vector<ConstraintWiring>{
        {"pointConstraint",
         "pointConstraint",
         {place, pivot, shift},
         {ownPivot, ownShift},
         {toPlace}},
        {"orientConstraint", "orientConstraint", {turn, order}, {ownOrder}, {toTurn}},
        {"parentConstraint",
         "parentConstraint",
         {place, pivot, shift, turn, order, size},
         {ownPivot, ownShift, ownOrder},
         {toPlace, toTurn}},
        {"scaleConstraint", "scaleConstraint", {size}, {}, {toSize}},
        {"aimConstraint",
         "aimConstraint",
         {place, pivot, shift},
         {ownPlace, ownPivot, ownShift, ownOrder},
         {toTurn}}};
  }();
  return wirings;
}

}  // namespace host::nodes
