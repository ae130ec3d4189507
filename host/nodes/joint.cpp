#include "host/nodes/joint.h"

#include "host/nodes/type_builder.h"

namespace host::nodes {

void registerJoint(dg::TypeRegistry& types) {
  TypeBuilder joint(types, "joint", "transform", typeCode("JOIN"));
  joint.add(text("jointOrientType", "jot"));
  joint.add(boolean("jointTypeX", "jtx", true));
  joint.add(boolean("jointTypeY", "jty", true));
  joint.add(boolean("jointTypeZ", "jtz", true));
  const Attribute* orient = joint.add(triple("jointOrient", "jo", AttributeType::Angle));
  const Attribute* compensates = joint.add(boolean("segmentScaleCompensate", "ssc", true));
  const Attribute* inverse =
      joint.add(triple("inverseScale", "is", AttributeType::Double, {1, 1, 1}));
  joint.add(triple("stiffness", "st", AttributeType::Double));
  joint.add(triple("preferredAngle", "pa", AttributeType::Angle));
  joint.add(matrix("bindPose", "bps"));
  joint.add(choice("drawStyle", "ds", {"Bone", "Multi-child as Box", "None"}));
  joint.add(boolean("drawLabel", "dl"));
  joint.add(choice("side", "sd", {"Center", "Left", "Right", "None"}));
  joint.add(shortInteger("type", "typ"));
  joint.add(text("otherType", "otp"));
  joint.add(keyable(real("radius", "radi", 1)));
  joint.add(integer("hikNodeID", "hni", -1));
  const Attribute* local = joint["matrix"];
  std::vector<const Attribute*> parts;
  for (const char* name : {"translate", "rotate", "scale", "shear", "rotateAxis"})
    parts.push_back(joint[name]);
  const Attribute* order = joint["rotateOrder"];
  joint.affects({orient, compensates, inverse}, {local});
  // scale, shear, rotate axis, rotate, orient, the parent's scale taken back, translate: joints
  // have no pivots.
  joint.type().compute = [=](Node&, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != local) return Computed::Unhandled;
    math::TransformComponents own;
    own.rotate = block.vec3(parts[1]);
    own.scale = block.vec3(parts[2]);
    own.shear = block.vec3(parts[3]);
    own.rotateAxis = block.vec3(parts[4]);
    const auto number = block.integer(order);
    own.rotateOrder = static_cast<math::RotateOrder>(number >= 0 && number < 6 ? number : 0);
    math::Matrix4 result = math::toMatrix(own) * math::eulerToMatrix(block.vec3(orient));
    if (block.boolean(compensates)) result = result * math::Matrix4::scaling(block.vec3(inverse));
    result = result * math::Matrix4::translation(block.vec3(parts[0]));
    block.output(local, dg::DataPtr(std::make_shared<dg::MatrixData>(result)));
    return Computed::Done;
  };
  joint.finish();
}

}  // namespace host::nodes
