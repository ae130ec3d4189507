#include "host/ops/query/normal_ids.h"

namespace host::ops {

NormalIds numberNormals(const mesh::Mesh& mesh) {
  const auto normals = mesh.cornerNormals();
  NormalIds result;
  result.ofCorner.resize(normals.size());
  // The normals met at a vertex hang in a chain, newest first.
  PerElement<VertexId, Index> newest(mesh.vertexCount(), kNone);
  std::vector<Index> older;
  for (std::size_t c = 0; c < normals.size(); ++c) {
    const auto corner = static_cast<CornerId>(c);
    Index& head = newest[mesh.cornerVertex(corner)];
    Index id = head;
    while (id != kNone) {
      const CornerId known = result.corners[at(id)];
      if (normals[at(known)] == normals[c] &&
          mesh.isNormalLocked(known) == mesh.isNormalLocked(corner))
        break;
      id = older[at(id)];
    }
    if (id == kNone) {
      id = result.count();
      result.corners.push_back(corner);
      older.push_back(head);
      head = id;
    }
    result.ofCorner[c] = id;
  }
  return result;
}

}  // namespace host::ops
