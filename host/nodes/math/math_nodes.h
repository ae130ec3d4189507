#pragma once

#include "host/nodes/type_builder.h"

namespace host::nodes {

/// multMatrix, addMatrix, wtAddMatrix, inverseMatrix, transposeMatrix, fourByFourMatrix,
/// composeMatrix and decomposeMatrix.
void registerMatrixNodes(dg::TypeRegistry& types);
/// addDoubleLinear, multDoubleLinear, distanceBetween, angleBetween, vectorProduct, choice,
/// blendWeighted and pairBlend.
void registerNumberNodes(dg::TypeRegistry& types);

/// Makes a type compute all its outputs at once from all its inputs.
/// @param work writes every output of the block's node
void computeBy(TypeBuilder& builder, std::vector<const Attribute*> inputs,
               std::vector<const Attribute*> outputs,
               std::function<Result<void>(Node& node, DataBlock& block)> work);

/// Writes the three children of an output.
void outputVec3(DataBlock& block, const Plug& triple, const math::Vec3& value);

}  // namespace host::nodes
