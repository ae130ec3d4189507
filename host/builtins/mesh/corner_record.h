#pragma once

#include <functional>
#include <string_view>

#include "host/base/result.h"
#include "host/nodes/mesh_components.h"
#include "host/scene/document.h"

namespace host::builtins {

/// How commands that set colours and normals of corners keep them in the history.

/// The most corners that a command keeps in a node: each is some attributes with names of their
/// own. What sets more leaves them with the shape, beside its history.
inline constexpr Index kMostRecordedCorners = 50'000;

/// The node of a type that alone drives the shape, with nothing of the shape's own between; null
/// when there is none. It can take more of what it holds.
[[nodiscard]] dg::Node* cornerNodeInFront(dg::Graph& graph, dg::Node& shape, std::string_view type);

/// Makes a history node, has it filled and puts it in front of the shape.
Result<void> insertCornerNode(scene::Document& document, dg::Node& shape, const char* type,
                              const std::function<Result<void>(dg::Node&)>& fill);

/// Corners in the order of their vertices, each vertex' own together.
struct VertexCorners {
  VertexId vertex;
  std::vector<std::pair<FaceId, CornerId>> corners;
  bool isWhole = false;  ///< all that the vertex has
};
[[nodiscard]] std::vector<VertexCorners> byVertex(const mesh::Mesh& mesh,
                                                  const std::vector<CornerId>& corners);

/// Sets the children of a compound in order.
Result<void> setNumbers(dg::Graph& graph, const dg::Plug& compound,
                        std::initializer_list<double> numbers);

}  // namespace host::builtins
