#include <maya/MFloatArray.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MMeshSmoothOptions.h>
#include <maya/MPlug.h>

#include "host/api/graph/modifier.h"
#include "host/api/mesh/fn_mesh.h"
#include "host/api/mesh/id_arrays.h"
#include "host/nodes/corner_override.h"
#include "host/nodes/mesh_node.h"
#include "host/nodes/mesh_shape.h"
#include "host/ops/smooth/smooth_mesh.h"
#include "host/ops/topology/chip_off.h"
#include "host/ops/topology/collapse.h"
#include "host/ops/topology/delete_edges.h"
#include "host/ops/topology/delete_faces.h"
#include "host/ops/topology/delete_vertices.h"
#include "host/ops/topology/extrude_edges.h"
#include "host/ops/topology/extrude_faces.h"
#include "host/ops/topology/split_path.h"
#include "host/ops/topology/subdivide_edges.h"
#include "host/ops/topology/subdivide_faces.h"

namespace host::api {
namespace {

/// Gives a shape with history other corner data through a modifier, and does it.
MStatus writeOverride(MDGModifier& modifier, dg::Node& shape, mesh::Mesh mesh) {
  auto override = nodes::makeOverride(shape, std::move(mesh));
  if (!override) return toStatus(override);
  const MStatus status = modifier.newPlugValue(wrap(shape.plug(nodes::kMeshOverrideAttribute)),
                                               wrap(*std::move(override)));
  return status ? modifier.doIt() : status;
}

/// A shape without history keeps everything in one place; tweaks are part of what was read, so they
/// go.
MStatus writeStoredThrough(MDGModifier& modifier, dg::Node& shape, mesh::Mesh mesh) {
  modifierOf(modifier).add([node = wrap(&shape), mesh = std::move(mesh)]() -> Result<void> {
    dg::Node* now = nodeOf(node);
    if (!now || !now->isAlive()) return fail("A mesh to be written is deleted");
    return nodes::setStoredMesh(*now, mesh);
  });
  return modifier.doIt();
}

}  // namespace

MStatus writeAttributes(const MFnMesh& set, mesh::Mesh mesh, MDGModifier* modifier) {
  const MeshTarget target = targetOf(set);
  dg::Node* shape = target.shape();
  if (!modifier || !shape) return target.writeAttributes(std::move(mesh));
  if (nodes::hasHistory(*shape)) return writeOverride(*modifier, *shape, std::move(mesh));
  return writeStoredThrough(*modifier, *shape, std::move(mesh));
}

MStatus writeMesh(const MFnMesh& set, mesh::Mesh mesh, MDGModifier* modifier) {
  const MeshTarget target = targetOf(set);
  dg::Node* shape = target.shape();
  if (!modifier || !shape || nodes::hasHistory(*shape)) return target.writeMesh(std::move(mesh));
  return writeStoredThrough(*modifier, *shape, std::move(mesh));
}

}  // namespace host::api

using namespace host;
using api::editMesh;
using api::idsOf;

MStatus MFnMesh::deleteFace(int index, MDGModifier* modifier) {
  return editMesh(*this, modifier, [=](mesh::Mesh& mesh) {
    return ops::deleteFaces(mesh, std::array{FaceId(index)});
  });
}
MStatus MFnMesh::deleteEdge(int index, MDGModifier* modifier) {
  return editMesh(*this, modifier, [=](mesh::Mesh& mesh) {
    return ops::deleteEdges(mesh, std::array{EdgeId(index)});
  });
}
MStatus MFnMesh::deleteVertex(int index, MDGModifier* modifier) {
  return editMesh(*this, modifier, [=](mesh::Mesh& mesh) {
    return ops::deleteVertices(mesh, std::array{VertexId(index)});
  });
}
MStatus MFnMesh::collapseFaces(const MIntArray& faceList) {
  return editMesh(*this, nullptr, [&](mesh::Mesh& mesh) {
    return ops::collapseFaces(mesh, idsOf<FaceId>(faceList));
  });
}
MStatus MFnMesh::collapseEdges(const MIntArray& edgeList) {
  return editMesh(*this, nullptr, [&](mesh::Mesh& mesh) {
    return ops::collapseEdges(mesh, idsOf<EdgeId>(edgeList));
  });
}
MStatus MFnMesh::subdivideEdges(const MIntArray& edgeList, int divisions) {
  return editMesh(*this, nullptr, [&](mesh::Mesh& mesh) {
    return ops::subdivideEdges(mesh, idsOf<EdgeId>(edgeList), divisions);
  });
}
MStatus MFnMesh::subdivideFaces(const MIntArray& faceList, int divisions) {
  ops::SubdivideFacesOptions options;
  options.divisions = divisions;
  return editMesh(*this, nullptr, [&](mesh::Mesh& mesh) {
    return ops::subdivideFaces(mesh, idsOf<FaceId>(faceList), options);
  });
}

namespace {

/// What the calls that extrude or take off components say about where these go.
ops::ExtrudePlacement placementOf(int count, const MFloatVector* translation, float thickness,
                                  float offset) {
  ops::ExtrudePlacement placement;
  placement.divisions = count;
  placement.thickness = static_cast<double>(thickness);
  placement.offset = static_cast<double>(offset);
  if (translation) placement.world.translate = api::toVec3(MVector(*translation));
  return placement;
}

MStatus chipOff(const MFnMesh& set, const MIntArray& faceList, const MFloatVector* translation,
                bool duplicate) {
  ops::ChipOffOptions options{placementOf(1, translation, 0, 0)};
  options.duplicate = duplicate;
  return editMesh(set, nullptr, [&](mesh::Mesh& mesh) {
    return ops::chipOff(mesh, idsOf<FaceId>(faceList), options);
  });
}

/// For what the kernel has no form of: the reason reaches the user when the command fails.
MStatus refuse(const char* reason) {
  api::rememberError(Error{reason});
  return MStatus::kFailure;
}

}  // namespace

MStatus MFnMesh::extrudeFaces(const MIntArray& faceList, int extrusionCount,
                              const MFloatVector* translation, bool extrudeTogether,
                              float thickness, float offset) {
  ops::ExtrudeFacesOptions options{placementOf(extrusionCount, translation, thickness, offset)};
  options.keepFacesTogether = extrudeTogether;
  return editMesh(*this, nullptr, [&](mesh::Mesh& mesh) {
    return ops::extrudeFaces(mesh, idsOf<FaceId>(faceList), options);
  });
}
MStatus MFnMesh::extrudeEdges(const MIntArray& edgeList, int extrusionCount,
                              const MFloatVector* translation, bool extrudeTogether,
                              float thickness, float offset) {
  ops::ExtrudeEdgesOptions options{placementOf(extrusionCount, translation, thickness, offset)};
  options.keepEdgesTogether = extrudeTogether;
  return editMesh(*this, nullptr, [&](mesh::Mesh& mesh) {
    return ops::extrudeEdges(mesh, idsOf<EdgeId>(edgeList), options);
  });
}
MStatus MFnMesh::duplicateFaces(const MIntArray& faceList, const MFloatVector* translation) {
  return chipOff(*this, faceList, translation, true);
}
MStatus MFnMesh::extractFaces(const MIntArray& faceList, const MFloatVector* translation) {
  return chipOff(*this, faceList, translation, false);
}
MStatus MFnMesh::split(const MIntArray& placements, const MIntArray& edgeList,
                       const MFloatArray& edgeFactors, const MFloatPointArray& internalPoints) {
  std::vector<ops::SplitPoint> path;
  unsigned int nextEdge = 0, nextPoint = 0;
  for (const int placement : placements) {
    ops::SplitPoint point;
    if (placement == kOnEdge && nextEdge < edgeList.length() && nextEdge < edgeFactors.length()) {
      point.edge = edgeList[nextEdge];
      if (point.edge < 0) return MStatus::kInvalidParameter;
      point.t = static_cast<double>(edgeFactors[nextEdge++]);
    } else if (placement == kInternalPoint && nextPoint < internalPoints.length()) {
      const MFloatPoint& inside = internalPoints[nextPoint++];
      point.point = {inside.x, inside.y, inside.z};
    } else {
      return MStatus::kInvalidParameter;
    }
    path.push_back(point);
  }
  return editMesh(*this, nullptr, [&](mesh::Mesh& mesh) { return ops::splitPath(mesh, path); });
}
MStatus MFnMesh::addHoles(int, const MPointArray&, const MIntArray&, bool, double) {
  return refuse("A face has one loop here: holes inside faces can't be made");
}
MStatus MFnMesh::booleanOp(BoolOperation, MFnMesh&, MFnMesh&) {
  return refuse("Boolean operations of meshes can't be made here");
}

MObject MFnMesh::generateSmoothMesh(MObject parentOrOwner, MMeshSmoothOptions* options,
                                    MStatus* status) {
  MMeshSmoothOptions shown;
  MStatus code = options ? MStatus(MStatus::kSuccess) : getSmoothMeshDisplayOptions(shown);
  const auto data = code ? api::readMesh(*this, &code) : nullptr;
  if (!data) {
    api::setStatus(status, code.statusCode());
    return MObject();
  }
  const MMeshSmoothOptions& chosen = options ? *options : shown;
  ops::SmoothOptions smooth;
  smooth.divisions = chosen.divisions();
  smooth.continuity = static_cast<double>(chosen.smoothness());
  smooth.smoothUVs = chosen.smoothUVs();
  smooth.propagateHardness = chosen.propEdgeHardness();
  smooth.keepBorder = chosen.keepBorderEdge();
  smooth.keepHardEdges = chosen.keepHardEdge();
  mesh::Mesh mesh = data->mesh;
  PerElement<FaceId, FaceId> faces(mesh.faceCount());
  for (std::size_t f = 0; f < faces.size(); ++f) faces[f] = static_cast<FaceId>(f);
  code = api::toStatus(ops::smoothMesh(mesh, faces, smooth), MStatus::kInvalidParameter);
  api::setStatus(status, code.statusCode());
  if (!code) return MObject();
  const MObject smoothed =
      api::wrap(dg::DataPtr(std::make_shared<scene::MeshData>(std::move(mesh))));
  return MFnMesh().copy(smoothed, parentOrOwner, status);
}

namespace {

/// The attributes of the smooth preview, as they stand on the shape.
MPlug previewPlug(const MFnMesh& set, const char* name) {
  dg::Node* shape = api::targetOf(set).shape();
  return shape ? api::wrap(shape->plug(name)) : MPlug();
}

}  // namespace

MStatus MFnMesh::getSmoothMeshDisplayOptions(MMeshSmoothOptions& options) const {
  MStatus status;
  if (!api::readMesh(*this, &status)) return status;
  if (!api::targetOf(*this).shape()) {
    options = MMeshSmoothOptions();
    return MStatus::kSuccess;
  }
  options.setDivisions(previewPlug(*this, "smoothLevel").asInt());
  options.setSmoothness(previewPlug(*this, "continuity").asFloat());
  options.setSmoothUVs(previewPlug(*this, "smoothUVs").asBool());
  options.setPropEdgeHardness(previewPlug(*this, "propagateEdgeHardness").asBool());
  options.setKeepBorderEdge(previewPlug(*this, "keepBorder").asBool());
  options.setKeepHardEdge(previewPlug(*this, "keepHardEdge").asBool());
  return MStatus::kSuccess;
}

MStatus MFnMesh::setSmoothMeshDisplayOptions(const MMeshSmoothOptions& options) {
  if (!api::targetOf(*this).shape()) return MStatus::kFailure;
  MStatus status = previewPlug(*this, "smoothLevel").setInt(options.divisions());
  if (status) status = previewPlug(*this, "continuity").setFloat(options.smoothness());
  if (status) status = previewPlug(*this, "smoothUVs").setBool(options.smoothUVs());
  if (status)
    status = previewPlug(*this, "propagateEdgeHardness").setBool(options.propEdgeHardness());
  if (status) status = previewPlug(*this, "keepBorder").setBool(options.keepBorderEdge());
  if (status) status = previewPlug(*this, "keepHardEdge").setBool(options.keepHardEdge());
  return status;
}
