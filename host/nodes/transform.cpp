#include "host/nodes/transform.h"

#include <array>

namespace host::nodes {

namespace {

using math::TransformComponents;
using math::Vec3;

/// The vector attributes behind a local matrix, with where their values go.
struct VectorPart {
  std::string_view name;
  Vec3 TransformComponents::*member;
};
constexpr std::array<VectorPart, 9> kVectorParts = {
    {{"translate", &TransformComponents::translate},
     {"rotate", &TransformComponents::rotate},
     {"scale", &TransformComponents::scale},
     {"shear", &TransformComponents::shear},
     {"rotatePivot", &TransformComponents::rotatePivot},
     {"rotatePivotTranslate", &TransformComponents::rotatePivotTranslate},
     {"scalePivot", &TransformComponents::scalePivot},
     {"scalePivotTranslate", &TransformComponents::scalePivotTranslate},
     {"rotateAxis", &TransformComponents::rotateAxis}}};

math::RotateOrder orderFrom(std::int64_t value) {
  return static_cast<math::RotateOrder>(value >= 0 && value < 6 ? value : 0);
}

/// A limit pair with its two switches, such as minTransLimit and minTransXLimitEnable.
void addLimits(TypeBuilder& builder, const std::string& what, const std::string& code,
               AttributeType type, double minimum, double maximum) {
  const auto add = [&](const std::string& side, const std::string& sideCode,
                       const std::string& wholeCode, double value) {
    const std::string name = side + what;
    const std::string shortName = sideCode + code;
    std::initializer_list<AttributePtr> axes = {
        dg::makeAttribute(name + "XLimit", shortName + "xl", type, value),
        dg::makeAttribute(name + "YLimit", shortName + "yl", type, value),
        dg::makeAttribute(name + "ZLimit", shortName + "zl", type, value)};
    builder.add(numbers(name + "Limit", wholeCode + code + "l", "double3", axes));
    builder.add(compound(name + "LimitEnable", shortName + "le",
                         {boolean(name + "XLimitEnable", shortName + "xe"),
                          boolean(name + "YLimitEnable", shortName + "ye"),
                          boolean(name + "ZLimitEnable", shortName + "ze")}));
  };
  add("min", "m", "mn", minimum);
  add("max", "x", "mx", maximum);
}

}  // namespace

void registerTransform(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "transform", "dagNode", typeCode("XFRM"));
  std::array<const Attribute*, kVectorParts.size()> parts{};
  parts[0] = builder.add(keyable(triple("translate", "t", AttributeType::Distance)));
  parts[1] = builder.add(keyable(triple("rotate", "r", AttributeType::Angle)));
  const Attribute* order =
      builder.add(choice("rotateOrder", "ro", {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"}));
  parts[2] = builder.add(keyable(triple("scale", "s", AttributeType::Double, {1, 1, 1})));
  parts[3] = builder.add(
      numbers("shear", "sh", "double3",
              {real("shearXY", "shxy"), real("shearXZ", "shxz"), real("shearYZ", "shyz")}));
  parts[4] = builder.add(triple("rotatePivot", "rp", AttributeType::Distance));
  parts[5] = builder.add(triple("rotatePivotTranslate", "rpt", AttributeType::Distance));
  parts[6] = builder.add(triple("scalePivot", "sp", AttributeType::Distance));
  parts[7] = builder.add(triple("scalePivotTranslate", "spt", AttributeType::Distance));
  parts[8] = builder.add(triple("rotateAxis", "ra", AttributeType::Angle));
  const Attribute* beforePivot = builder.add(
      output(triple("transMinusRotatePivot", "tmrp", AttributeType::Distance, {}, "tmr")));
  addLimits(builder, "Trans", "t", AttributeType::Distance, -1, 1);
  addLimits(builder, "Rot", "r", AttributeType::Angle, -0.78539816339744828, 0.78539816339744828);
  addLimits(builder, "Scale", "s", AttributeType::Double, -1, 1);
  const Attribute* xform = builder.add(output(matrix("xformMatrix", "xm")));
  const Attribute* inherits = builder.add(boolean("inheritsTransform", "it", true));
  builder.add(boolean("displayHandle", "dh"));
  builder.add(boolean("displayScalePivot", "dsp"));
  builder.add(boolean("displayRotatePivot", "drp"));
  builder.add(boolean("displayLocalAxis", "dla"));
  builder.add(boolean("dynamics", "dyn"));
  builder.add(choice(
      "showManipDefault", "smd",
      {"none", "Translate", "Rotate", "Scale", "Transform", "Global Default", "Smart", "Specified"},
      5));
  builder.add(triple("selectHandle", "hdl", AttributeType::Distance));
  builder.add(boolean("rotateQuaternion", "rq"));
  builder.add(choice(
      "rotationInterpolation", "roi",
      {"NoInterpolation", "Unknown", "IndependentEuler", "SynchronizedEuler", "QuaternionSlerp"},
      1));

  const Attribute* local = builder["matrix"];
  const Attribute* world = builder["worldMatrix"];
  for (const Attribute* part : parts) builder.affects({part}, {local, xform});
  builder.affects({order}, {local, xform});
  builder.affects({inherits}, {world, builder["worldInverseMatrix"]});
  builder.affects({parts[0], parts[4]}, {beforePivot});
  builder.type().compute = [parts, order, local, xform, beforePivot](
                               Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() == beforePivot || plug.attribute()->parent == beforePivot) {
      const Vec3 difference = block.vec3(parts[0]) - block.vec3(parts[4]);
      for (int axis = 0; axis < 3; ++axis)
        block.output(Plug(&node, beforePivot).child(axis), difference[axis]);
      return Computed::Done;
    }
    if (plug.attribute() != local && plug.attribute() != xform) return Computed::Unhandled;
    TransformComponents components;
    for (std::size_t i = 0; i < parts.size(); ++i)
      components.*kVectorParts[i].member = block.vec3(parts[i]);
    components.rotateOrder = orderFrom(block.integer(order));
    block.output(plug.attribute(),
                 dg::DataPtr(std::make_shared<dg::MatrixData>(math::toMatrix(components))));
    return Computed::Done;
  };
  builder.finish();
}

Result<math::TransformComponents> readTransform(Node& transform) {
  dg::Graph& graph = transform.graph();
  TransformComponents components;
  for (const VectorPart& part : kVectorParts) {
    auto value = graph.getVec3(transform.plug(part.name));
    if (!value) return failWith(value.error());
    components.*part.member = *value;
  }
  const auto order = graph.get(transform.plug("rotateOrder"));
  if (!order) return failWith(order.error());
  components.rotateOrder = orderFrom(std::get<std::int64_t>(*order));
  return components;
}

Result<void> writeTransform(Node& transform, const math::TransformComponents& components) {
  dg::Graph& graph = transform.graph();
  const auto now = readTransform(transform);
  if (!now) return failWith(now.error());
  std::vector<std::pair<Plug, dg::Value>> writes;
  for (const VectorPart& part : kVectorParts) {
    const Plug plug = transform.plug(part.name);
    for (int axis = 0; axis < 3; ++axis)
      if ((components.*part.member)[axis] != (*now.*part.member)[axis])
        writes.emplace_back(plug.child(axis), (components.*part.member)[axis]);
  }
  if (components.rotateOrder != now->rotateOrder)
    writes.emplace_back(transform.plug("rotateOrder"),
                        static_cast<std::int64_t>(components.rotateOrder));
  for (const auto& [plug, value] : writes) HOST_TRY(graph.settable(plug));
  for (const auto& [plug, value] : writes) HOST_TRY(graph.set(plug, value));
  return {};
}

Result<void> setLocalMatrix(Node& transform, const math::Matrix4& matrix) {
  const auto now = readTransform(transform);
  if (!now) return failWith(now.error());
  return writeTransform(transform, math::decompose(matrix, *now));
}

}  // namespace host::nodes
