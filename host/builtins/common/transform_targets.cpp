#include "host/builtins/common/transform_targets.h"

#include "host/math/box.h"

namespace host::builtins {

math::Vec3 TransformTargets::vertexCenter() const {
  math::Box box;
  for (const MeshItem& item : meshes) {
    const math::Matrix4 matrix = item.path.inclusiveMatrix();
    for (const VertexId v : item.vertices()) box.add(math::transformPoint(item.mesh.point(v), matrix));
  }
  return box.center();
}

Result<TransformTargets> transformTargets(const scene::SelectionList& list) {
  TransformTargets targets;
  scene::SelectionList components;
  for (const scene::SelectionItem& item : list.items()) {
    if (!item.isDag() || item.plug) return fail("'{}' has no place in space.", nodeName(*item.node));
    if (item.isObject())
      targets.objects.push_back(item.path.transform());
    else
      components.merge(item);
  }
  auto meshes = meshItems(components);
  if (!meshes) return failWith(std::move(meshes.error()));
  targets.meshes = std::move(*meshes);
  return targets;
}

NumbersAndNames splitNumbers(const ParsedArgs& args, std::size_t most) {
  NumbersAndNames split;
  bool isInNumbers = true;
  for (const mel::Value& value : args.arguments()) {
    if (isInNumbers && split.numbers.size() < most) {
      if (value.isInt() || value.isFloat()) {
        split.numbers.push_back(value.toFloat().value_or(0));
        continue;
      }
      if (value.type() == mel::Type::Vector) {
        split.numbers.insert(split.numbers.end(), {value.vector().x, value.vector().y, value.vector().z});
        continue;
      }
      if (value.type() == mel::Type::FloatArray) {
        split.numbers.insert(split.numbers.end(), value.floatArray().begin(), value.floatArray().end());
        continue;
      }
      const bool isNumberText =
          value.isString() && value.string().find_first_not_of("+-.0123456789eE") == std::string::npos;
      if (isNumberText) {
        split.numbers.push_back(mel::leadingFloat(value.string()));
        continue;
      }
    }
    isInNumbers = false;
    for (std::string& name : value.toTexts()) split.names.push_back(std::move(name));
  }
  return split;
}

}  // namespace host::builtins
