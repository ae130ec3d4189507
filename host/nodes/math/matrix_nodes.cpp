#include "host/dg/graph.h"
#include "host/math/quaternion.h"
#include "host/math/transform.h"
#include "host/nodes/math/math_nodes.h"

namespace host::nodes {

namespace {

using math::Matrix4;
using math::Vec3;

dg::Value valueOf(const Matrix4& matrix) {
  return dg::DataPtr(std::make_shared<dg::MatrixData>(matrix));
}

Matrix4 matrixAt(DataBlock& block, const Plug& plug) {
  const auto data = block.data<dg::MatrixData>(plug);
  return data ? data->value : Matrix4();
}

AttributePtr rotateOrder(const char* longName, const char* shortName) {
  return choice(longName, shortName, {"xyz", "yzx", "zxy", "xzy", "yxz", "zyx"});
}

/// The entries of a matrix times a number.
Matrix4 scaled(const Matrix4& matrix, double factor) {
  Matrix4 result;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) result[row][column] = matrix[row][column] * factor;
  return result;
}

Matrix4 sum(const Matrix4& a, const Matrix4& b) {
  Matrix4 result;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column)
      result[row][column] = a[row][column] + b[row][column];
  return result;
}

/// multMatrix and addMatrix: all elements of an array made one, none give the identity.
void registerGathering(dg::TypeRegistry& types, const char* name, std::uint32_t id,
                       Matrix4 (*join)(const Matrix4&, const Matrix4&)) {
  TypeBuilder builder(types, name, {}, id);
  const Attribute* in = builder.add(unordered(array(matrix("matrixIn", "i"))));
  const Attribute* out = builder.add(output(matrix("matrixSum", "o")));
  computeBy(builder, {in}, {out}, [=](Node& node, DataBlock& block) -> Result<void> {
    Matrix4 result;
    bool isFirst = true;
    const Plug all(&node, in);
    for (const Index index : block.graph().elementIndices(all)) {
      const Matrix4 each = matrixAt(block, all.element(index));
      result = std::exchange(isFirst, false) ? each : join(result, each);
    }
    block.output(out, valueOf(result));
    return {};
  });
}

void registerWeightedSum(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "wtAddMatrix", {}, typeCode("DWAM"));
  const Attribute* rows = builder.add(unordered(
      array(compound("wtMatrix", "i", {matrix("matrixIn", "m"), real("weightIn", "w")}))));
  const Attribute* out = builder.add(output(matrix("matrixSum", "o")));
  computeBy(builder, {rows}, {out}, [=](Node& node, DataBlock& block) -> Result<void> {
    Matrix4 result = scaled(Matrix4(), 0);
    const Plug all(&node, rows);
    const std::vector<Index> indices = block.graph().elementIndices(all);
    for (const Index index : indices) {
      const Plug row = all.element(index);
      const auto weight = block.input(row.child(1));
      if (!weight) return failWith(weight.error());
      const auto* number = std::get_if<double>(&*weight);
      result = sum(result, scaled(matrixAt(block, row.child(0)), number ? *number : 0));
    }
    block.output(out, valueOf(indices.empty() ? Matrix4() : result));
    return {};
  });
}

void registerTurnedAround(dg::TypeRegistry& types) {
  TypeBuilder inverse(types, "inverseMatrix", {}, typeCode("MINV"));
  const Attribute* in = inverse.add(matrix("inputMatrix", "imat"));
  const Attribute* out = inverse.add(output(matrix("outputMatrix", "omat")));
  computeBy(inverse, {in}, {out}, [=](Node& node, DataBlock& block) -> Result<void> {
    const auto result = math::inverse(block.matrix(in));
    if (!result) return fail("'{}': the matrix that comes in has no inverse", node.name());
    block.output(out, valueOf(*result));
    return {};
  });
  TypeBuilder transpose(types, "transposeMatrix", {}, typeCode("MTPS"));
  const Attribute* from = transpose.add(matrix("inputMatrix", "imat"));
  const Attribute* to = transpose.add(output(matrix("outputMatrix", "omat")));
  computeBy(transpose, {from}, {to}, [=](Node&, DataBlock& block) -> Result<void> {
    const Matrix4 own = block.matrix(from);
    Matrix4 result;
    for (int row = 0; row < 4; ++row)
      for (int column = 0; column < 4; ++column) result[row][column] = own[column][row];
    block.output(to, valueOf(result));
    return {};
  });
}

void registerFourByFour(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "fourByFourMatrix", {}, typeCode("FBFM"));
  std::vector<const Attribute*> cells;
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) {
      const std::string digits = std::to_string(row) + std::to_string(column);
      cells.push_back(
          builder.add(keyable(real("in" + digits, "i" + digits, row == column ? 1 : 0))));
    }
  const Attribute* out = builder.add(output(matrix("output", "o")));
  computeBy(builder, cells, {out}, [=](Node&, DataBlock& block) -> Result<void> {
    Matrix4 result;
    for (std::size_t i = 0; i < cells.size(); ++i)
      result[static_cast<int>(i / 4)][i % 4] = block.real(cells[i]);
    block.output(out, valueOf(result));
    return {};
  });
}

AttributePtr quaternionParts(const std::string& longName, const std::string& shortName) {
  return numbers(longName, shortName, "double4",
                 {real(longName + "X", shortName + "x"), real(longName + "Y", shortName + "y"),
                  real(longName + "Z", shortName + "z"), real(longName + "W", shortName + "w", 1)});
}

void registerCompose(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "composeMatrix", {}, typeCode("CPMX"));
  const Attribute* translate =
      builder.add(keyable(triple("inputTranslate", "it", AttributeType::Distance)));
  const Attribute* rotate = builder.add(keyable(triple("inputRotate", "ir", AttributeType::Angle)));
  const Attribute* scale =
      builder.add(keyable(triple("inputScale", "is", AttributeType::Double, {1, 1, 1})));
  const Attribute* shear = builder.add(keyable(triple("inputShear", "ish", AttributeType::Double)));
  const Attribute* quaternion = builder.add(quaternionParts("inputQuat", "iq"));
  const Attribute* order = builder.add(rotateOrder("inputRotateOrder", "iro"));
  const Attribute* usesEuler = builder.add(boolean("useEulerRotation", "uer", true));
  const Attribute* out = builder.add(output(matrix("outputMatrix", "omat")));
  computeBy(builder, {translate, rotate, scale, shear, quaternion, order, usesEuler}, {out},
            [=](Node&, DataBlock& block) -> Result<void> {
              math::TransformComponents parts;
              parts.translate = block.vec3(translate);
              parts.scale = block.vec3(scale);
              parts.shear = block.vec3(shear);
              parts.rotateOrder = static_cast<math::RotateOrder>(block.integer(order));
              if (block.boolean(usesEuler)) {
                parts.rotate = block.vec3(rotate);
              } else {
                math::Quaternion q;
                int part = 0;
                for (double* slot : {&q.x, &q.y, &q.z, &q.w})
                  *slot = block.real(quaternion->children[static_cast<std::size_t>(part++)].get());
                parts.rotate = math::quaternionToEuler(math::normalized(q), parts.rotateOrder);
              }
              block.output(out, valueOf(math::toMatrix(parts)));
              return {};
            });
}

void registerDecompose(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "decomposeMatrix", {}, typeCode("DPMX"));
  const Attribute* in = builder.add(matrix("inputMatrix", "imat"));
  const Attribute* order = builder.add(rotateOrder("inputRotateOrder", "ro"));
  const Attribute* translate =
      builder.add(output(triple("outputTranslate", "ot", AttributeType::Distance)));
  const Attribute* rotate = builder.add(output(triple("outputRotate", "or", AttributeType::Angle)));
  const Attribute* scale = builder.add(output(triple("outputScale", "os", AttributeType::Double)));
  const Attribute* shear = builder.add(output(triple("outputShear", "osh", AttributeType::Double)));
  const Attribute* quaternion = builder.add(output(quaternionParts("outputQuat", "oq")));
  computeBy(builder, {in, order}, {translate, rotate, scale, shear, quaternion},
            [=](Node& node, DataBlock& block) -> Result<void> {
              math::TransformComponents keep;
              keep.rotateOrder = static_cast<math::RotateOrder>(block.integer(order));
              const math::TransformComponents parts = math::decompose(block.matrix(in), keep);
              outputVec3(block, Plug(&node, translate), parts.translate);
              outputVec3(block, Plug(&node, rotate), parts.rotate);
              outputVec3(block, Plug(&node, scale), parts.scale);
              outputVec3(block, Plug(&node, shear), parts.shear);
              const math::Quaternion turned =
                  math::eulerToQuaternion(parts.rotate, parts.rotateOrder);
              const double cells[] = {turned.x, turned.y, turned.z, turned.w};
              for (int i = 0; i < 4; ++i) block.output(Plug(&node, quaternion).child(i), cells[i]);
              return {};
            });
}

}  // namespace

void registerMatrixNodes(dg::TypeRegistry& types) {
  registerGathering(types, "multMatrix", typeCode("DMTM"),
                    [](const Matrix4& a, const Matrix4& b) { return a * b; });
  registerGathering(types, "addMatrix", typeCode("DADM"), sum);
  registerWeightedSum(types);
  registerTurnedAround(types);
  registerFourByFour(types);
  registerCompose(types);
  registerDecompose(types);
}

}  // namespace host::nodes
