#include "commands/transferVertexNormalsCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MMeshIntersector.h>
#include <maya/MPointOnMesh.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>

#include "commands/transferFlags.h"
#include "shared/mesh/cornerNormals.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/vertexCorners.h"
#include "shared/mesh/worldPoints.h"
#include "shared/selection/componentGather.h"
#include "shared/selection/meshPair.h"
#include "shared/tool/shownComputation.h"

namespace {

constexpr const char* kName = "qxTransferVertexNormals";

/// How far a corner of a vertex on a hard edge looks into its own face for the side it is on.
constexpr double kIntoFace = 0.02;
/// Corners of a vertex whose normals differ by less (cosine, half a degree) are shaded as one.
constexpr double kSameNormal = 0.99996;

constexpr const char* kHelp =
    "qxTransferVertexNormals: select two meshes; the first is shaded with the normals of the "
    "second.\n"
    "  -sp -space world|object     where the two meshes are compared (world)\n"
    "  -md -maxDistance DISTANCE   vertices farther than this from the second mesh keep their "
    "normals (0: no limit)\n"
    "  -h  -help                   this text\n"
    "With components of the first mesh selected only their vertices take part. Returns the number "
    "of vertices that\n"
    "found no place.\n";

/// For each corner the middle of a triangle at it. Between the corner and there the surface is
/// flat, so that a place on the way lies on it even where the face is bent.
MPointArray cornerTriangleCentres(const MFnMesh& meshFn, const MPointArray& points,
                                  const MIntArray& connects) {
  MIntArray triangleCounts, triangleCorners;
  meshFn.getTriangleOffsets(triangleCounts, triangleCorners);
  MPointArray centres(connects.length());
  for (unsigned int c = 0; c < connects.length(); ++c)
    centres[c] = points[static_cast<unsigned int>(connects[c])];
  const auto pointAt = [&](unsigned int i) {
    const int corner = triangleCorners[i];
    return MVector(points[static_cast<unsigned int>(connects[static_cast<unsigned int>(corner)])]);
  };
  for (unsigned int t = triangleCorners.length() / 3; t-- > 0;) {
    const MPoint centre((pointAt(3 * t) + pointAt(3 * t + 1) + pointAt(3 * t + 2)) / 3.0);
    for (unsigned int k = 0; k < 3; ++k)
      centres[static_cast<unsigned int>(triangleCorners[3 * t + k])] = centre;
  }
  return centres;
}

MIntArray chosenVertices(const meshPair& pair, unsigned int vertexCount) {
  MIntArray ids;
  if (pair.firstComponents.isNull()) {
    ids.setLength(vertexCount);
    for (unsigned int v = 0; v < vertexCount; ++v) ids[v] = static_cast<int>(v);
    return ids;
  }
  MSelectionList list;
  MDagPath path = pair.first;
  list.add(path, pair.firstComponents);
  appendSelectedVertices(list, path, ids);
  appendSelectedEdgeEnds(list, path, ids);
  appendSelectedFaceVertices(list, path, ids);
  ids = mathHelper().uniqueSorted(ids);
  return ids;
}

}  // namespace

transferVertexNormalsCmd::transferVertexNormalsCmd()
    : space(MSpace::kWorld), maxDistance(0.0), unplaced(0) {}

void* transferVertexNormalsCmd::creator() {
  return new transferVertexNormalsCmd;
}

MSyntax transferVertexNormalsCmd::newSyntax() {
  return transferSyntax();
}

MStatus transferVertexNormalsCmd::readSource(const MDagPath& source, cornerNormals& normals) const {
  const MFnMesh meshFn(source);
  MIntArray cornerCounts;
  MStatus status = meshFn.getPoints(normals.points, space);
  if (status == MS::kSuccess) status = meshFn.getVertices(normals.counts, normals.connects);
  if (status == MS::kSuccess)
    status = meshFn.getTriangleOffsets(normals.triangleCounts, normals.triangleCorners);
  if (status == MS::kSuccess) status = meshFn.getNormalIds(cornerCounts, normals.normalIds);
  if (status == MS::kSuccess) status = meshFn.getNormals(normals.normals, space);
  if (status == MS::kSuccess) normals.prepare();
  return status;
}

MStatus transferVertexNormalsCmd::gatherNormals(const meshPair& pair) {
  cornerNormals source;
  MStatus status = readSource(pair.second, source);
  if (status != MS::kSuccess) return status;
  const MFnMesh meshFn(targetPath);
  MPointArray points;
  MIntArray counts, connects;
  if ((status = meshFn.getPoints(points, space)) != MS::kSuccess) return status;
  if (!positionsAreFinite(kName, points) || !positionsAreFinite(kName, source.points))
    return MS::kFailure;
  if ((status = meshFn.getVertices(counts, connects)) != MS::kSuccess) return status;
  const vertexCorners around(counts, connects, points.length());
  const MPointArray centres = cornerTriangleCentres(meshFn, points, connects);
  MObject sourceNode = pair.second.node();
  MMeshIntersector nearest;
  const MMatrix toSpace =
      space == MSpace::kWorld ? pair.second.inclusiveMatrix() : MMatrix::identity;
  nearest.create(sourceNode, toSpace);

  const MIntArray chosen = chosenVertices(pair, points.length());
  if (!idsAreInRange(chosen, points.length())) return MS::kFailure;
  shownComputation work("Taking normals", static_cast<int>(chosen.length()));
  for (unsigned int i = 0; i < chosen.length(); ++i) {
    if (work.advance()) return MS::kFailure;
    const MPoint& point = points[static_cast<unsigned int>(chosen[i])];
    MPointOnMesh place;
    const MStatus found = maxDistance > 0.0 ? nearest.getClosestPoint(point, place, maxDistance)
                                            : nearest.getClosestPoint(point, place);
    if (found != MS::kSuccess) {
      ++unplaced;
      continue;
    }
    vertexIds.append(chosen[i]);
    vertexNormals.append(source.at(place.faceIndex(), point));
    if (!source.isAtHardEdge(place.faceIndex(), MPoint(place.getPoint()) * toSpace)) continue;
    MVectorArray ofCorners;
    for (unsigned int k = around.first(chosen[i]); k < around.first(chosen[i] + 1); ++k) {
      const MPoint& centre = centres[static_cast<unsigned int>(around.corners[k])];
      nearest.getClosestPoint(point + (centre - point) * kIntoFace, place);
      ofCorners.append(source.at(place.faceIndex(), point));
    }
    splitVertex(around, ofCorners);
  }
  return MS::kSuccess;
}

void transferVertexNormalsCmd::splitVertex(const vertexCorners& around,
                                           const MVectorArray& ofCorners) {
  const unsigned int last = vertexIds.length() - 1;
  MVector sum;
  for (unsigned int k = 0; k < ofCorners.length(); ++k) sum += ofCorners[k];
  MVector& normal = vertexNormals[last];
  if (sum.length() > 1e-6) normal = sum.normal();
  for (unsigned int k = 0; k < ofCorners.length(); ++k) {
    if (ofCorners[k] * normal > kSameNormal) continue;
    cornerFaces.append(around.faces[around.corners[around.first(vertexIds[last]) + k]]);
    cornerVertices.append(vertexIds[last]);
    cornerNormalsAtEdges.append(ofCorners[k]);
  }
}

MStatus transferVertexNormalsCmd::doIt(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MStatus status = readTransferFlags(kName, database, space, maxDistance);
  if (status != MS::kSuccess) return status;
  if (parsed != MS::kSuccess) return parsed;
  isHelp = database.isFlagSet(kHelpFlag);
  if (isHelp) return showHelp(kHelp);
  meshPair pair;
  status = pair.takeSelection(kName,
                              "qxTransferVertexNormals: select two meshes: the one to shade, then "
                              "the one with the normals");
  if (status != MS::kSuccess) return status;
  targetPath = pair.first;
  for (const MDagPath* path : {&pair.first, &pair.second})
    if ((status = requireFaces(kName, *path)) != MS::kSuccess) return status;
  if ((status = gatherNormals(pair)) != MS::kSuccess) return status;
  if (vertexIds.length() > 0 && (status = apply()) != MS::kSuccess) return status;
  reportTransfer(kName, "shaded anew", static_cast<int>(vertexIds.length()), unplaced);
  setResult(unplaced);
  return MS::kSuccess;
}

MStatus transferVertexNormalsCmd::apply() {
  // Going through the modifier, the vertices take their earlier normals with them, all corners and
  // locks; what single corners get after that is covered by them.
  MFnMesh meshFn(targetPath);
  MStatus status = meshFn.setVertexNormals(vertexNormals, vertexIds, space, &modifier);
  if (status == MS::kSuccess && cornerFaces.length() > 0)
    status = meshFn.setFaceVertexNormals(cornerNormalsAtEdges, cornerFaces, cornerVertices, space);
  return status;
}

MStatus transferVertexNormalsCmd::redoIt() {
  if (!targetPath.isValid()) return MS::kFailure;
  if (vertexIds.length() == 0) return MS::kSuccess;
  const MStatus status = modifier.doIt();
  if (status != MS::kSuccess || cornerFaces.length() == 0) return status;
  return MFnMesh(targetPath)
      .setFaceVertexNormals(cornerNormalsAtEdges, cornerFaces, cornerVertices, space);
}

MStatus transferVertexNormalsCmd::undoIt() {
  if (!targetPath.isValid()) return MS::kFailure;
  return vertexIds.length() == 0 ? MS::kSuccess : modifier.undoIt();
}
