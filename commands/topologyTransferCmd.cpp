#include "commands/topologyTransferCmd.h"

#include <maya/MArgDatabase.h>
#include <maya/MArgList.h>
#include <maya/MDistance.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>
#include <maya/MMeshIntersector.h>
#include <maya/MPointOnMesh.h>
#include <maya/MSelectionList.h>
#include <maya/MString.h>
#include <maya/MVectorArray.h>

#include <algorithm>

#include "commands/orderMatch.h"
#include "commands/regularPlan.h"
#include "commands/transferFlags.h"
#include "shared/mesh/mathHelper.h"
#include "shared/mesh/polygonGraph.h"
#include "shared/mesh/vertexNormals.h"
#include "shared/mesh/worldPoints.h"
#include "shared/numeric/landmarkWarp.h"
#include "shared/selection/componentGather.h"
#include "shared/selection/meshPair.h"
#include "shared/settings/flagReader.h"
#include "shared/tool/shownComputation.h"

namespace {

constexpr const char* kName = "qxTransferTopology";
constexpr const char* kOrderFlag = "-o";
constexpr const char* kSymmetryFlag = "-sy";
constexpr const char* kLandmarkFlag = "-lm";

/// A place along the normal this many times as far as the closest one lies on another part of the
/// surface.
constexpr double kFarther = 4.0;
constexpr float kRayTolerance = 1e-6F;

constexpr const char* kHelp =
    "qxTransferTopology: select two meshes; the first takes the shape of the second.\n"
    "  -sp -space world|object     where the two meshes are compared (world)\n"
    "  -md -maxDistance DISTANCE   vertices with no place as near as this stay (0: no limit)\n"
    "  -sy -symmetry x|y|z|none    make the result symmetric across an axis (none)\n"
    "  -lm -landmark V W           vertex V of the first mesh belongs on vertex W of the second; "
    "may be repeated\n"
    "  -o  -order on|off           the meshes have the same faces in another order: select one "
    "face of each that match\n"
    "  -h  -help                   this text\n"
    "Vertices selected on both meshes, as many on each, are landmarks too, paired in ascending "
    "order.\n"
    "Returns the number of vertices that found no place.\n";

/// The second mesh as the vertices of the first are put on it.
class targetSurface final : public placingSurface {
 public:
  targetSurface(const MDagPath& target, MSpace::Space spaceIn, int questions)
      : work("Placing vertices", questions),
        meshFn(target),
        space(spaceIn),
        toSpace(space == MSpace::kWorld ? target.inclusiveMatrix() : MMatrix::identity),
        accelParams(MFnMesh::autoUniformGridParams()) {
    MObject node = target.node();
    index.create(node, toSpace);
  }

  bool nearestWithin(const MPoint& point, double distance, MPoint& place, int& face) const {
    MPointOnMesh found;
    if (work.advance()) return false;
    const MStatus status = distance > 0.0 ? index.getClosestPoint(point, found, distance)
                                          : index.getClosestPoint(point, found);
    if (status != MS::kSuccess) return false;
    place = MPoint(found.getPoint()) * toSpace;
    face = found.faceIndex();
    return true;
  }
  bool nearest(const MPoint& point, MPoint& place, MVector& facing) const override {
    int face = -1;
    return nearestWithin(point, 0.0, place, face) &&
           meshFn.getPolygonNormal(face, facing, space) == MS::kSuccess;
  }
  bool isStopped() const override { return work.isStopped(); }
  bool along(const MPoint& point, const MVector& direction, double reach, MPoint& place,
             MVector& facing) const override {
    MFloatPoint hit;
    int face = -1;
    if (work.advance()) return false;
    if (!meshFn.closestIntersection(MFloatPoint(point), MFloatVector(direction), nullptr, nullptr,
                                    false, space, static_cast<float>(reach), true, &accelParams,
                                    hit, nullptr, &face, nullptr, nullptr, nullptr, kRayTolerance))
      return false;
    place = MPoint(hit);
    return meshFn.getPolygonNormal(face, facing, space) == MS::kSuccess;
  }

 private:
  mutable shownComputation work;
  MFnMesh meshFn;
  MSpace::Space space;
  MMatrix toSpace;
  MMeshIntersector index;
  mutable MMeshIsectAccelParams accelParams;
};

MStatus refuse(const MString& text) {
  MGlobal::displayError(MString(kName) + ": " + text);
  return MS::kFailure;
}

MIntArray selectedVertices(MDagPath path, const MObject& components) {
  MIntArray ids;
  MSelectionList list;
  if (!components.isNull()) list.add(path, components);
  appendSelectedVertices(list, path, ids);
  return ids;
}

MIntArray selectedFaces(const MDagPath& path, const MObject& components) {
  MSelectionList list;
  if (!components.isNull()) list.add(path, components);
  return selectedFaceIds(list);
}

double sizeOf(const MPointArray& points) {
  MPoint low = points[0], high = points[0];
  for (unsigned int i = 1; i < points.length(); ++i)
    for (unsigned int axis = 0; axis < 3; ++axis) {
      low[axis] = std::min(low[axis], points[i][axis]);
      high[axis] = std::max(high[axis], points[i][axis]);
    }
  return low.distanceTo(high);
}

}  // namespace

topologyTransferCmd::topologyTransferCmd()
    : space(MSpace::kWorld), byOrder(false), maxDistance(0.0), symmetryAxis(3), unplaced(0) {}

void* topologyTransferCmd::creator() {
  return new topologyTransferCmd;
}

MSyntax topologyTransferCmd::newSyntax() {
  MSyntax syntax = transferSyntax();
  syntax.addFlag(kSymmetryFlag, "-symmetry", MSyntax::kString);
  syntax.addFlag(kLandmarkFlag, "-landmark", MSyntax::kLong, MSyntax::kLong);
  syntax.makeFlagMultiUse(kLandmarkFlag);
  syntax.addFlag(kOrderFlag, "-order", MSyntax::kBoolean);
  return syntax;
}

MStatus topologyTransferCmd::parseArguments(const MArgList& arguments) {
  MStatus parsed;
  const MArgDatabase database(syntax(), arguments, &parsed);
  MStatus status = readTransferFlags(kName, database, space, maxDistance);
  MString across("none");
  if (status == MS::kSuccess)
    status = readFlag(database, kSymmetryFlag, across, "could not parse symmetry axis");
  if (status == MS::kSuccess)
    status = readFlag(database, kOrderFlag, byOrder, "could not parse order");
  if (status != MS::kSuccess) return status;
  if (parsed != MS::kSuccess) return parsed;
  isHelp = database.isFlagSet(kHelpFlag);
  static const char* const kAxes[] = {"x", "y", "z", "none"};
  for (symmetryAxis = 0; symmetryAxis < 4 && across != kAxes[symmetryAxis];) ++symmetryAxis;
  if (symmetryAxis == 4) return refuse("the symmetry is x, y, z or none, not " + across);
  for (unsigned int i = 0; i < database.numberOfFlagUses(kLandmarkFlag); ++i) {
    MArgList words;
    if (database.getFlagArgumentList(kLandmarkFlag, i, words) != MS::kSuccess) return MS::kFailure;
    landmarks.push_back({words.asInt(0), words.asInt(1)});
  }
  return MS::kSuccess;
}

MStatus topologyTransferCmd::pairLandmarks(const meshPair& pair, unsigned int targetCount) {
  MIntArray own = selectedVertices(pair.first, pair.firstComponents);
  MIntArray theirs = selectedVertices(pair.second, pair.secondComponents);
  if (own.length() != theirs.length())
    return refuse(MString("landmarks are pairs: ") + static_cast<int>(own.length()) +
                  " vertices are selected on " + pair.first.partialPathName() + " and " +
                  static_cast<int>(theirs.length()) + " on " + pair.second.partialPathName());
  own = mathHelper().uniqueSorted(own);
  theirs = mathHelper().uniqueSorted(theirs);
  for (unsigned int i = 0; i < own.length(); ++i) landmarks.push_back({own[i], theirs[i]});
  if (landmarks.size() > landmarkWarp::kMostLandmarks)
    return refuse(MString("at most ") + static_cast<int>(landmarkWarp::kMostLandmarks) +
                  " landmarks can be used");
  for (const auto& [vertex, other] : landmarks)
    if (!idsAreInRange(MIntArray(1, vertex), pointsBefore.length()) ||
        !idsAreInRange(MIntArray(1, other), targetCount))
      return refuse(MString("there are no vertices ") + vertex + " and " + other +
                    " to be landmarks");
  return MS::kSuccess;
}

MStatus topologyTransferCmd::placeByOrder(const meshPair& pair, const MPointArray& target) {
  const MIntArray own = selectedFaces(pair.first, pair.firstComponents);
  const MIntArray theirs = selectedFaces(pair.second, pair.secondComponents);
  if (own.length() == 0 || own.length() != theirs.length())
    return refuse("select one face of each mesh that match each other");
  MIntArray counts, connects, otherCounts, otherConnects;
  MFnMesh(pair.first).getVertices(counts, connects);
  MFnMesh(pair.second).getVertices(otherCounts, otherConnects);
  const polygonGraph graph(counts, connects, pointsBefore.length());
  const polygonGraph otherGraph(otherCounts, otherConnects, target.length());
  std::vector<int> partner(pointsBefore.length(), -1);
  for (unsigned int i = 0; i < own.length(); ++i)
    if (!matchOrder(graph, pointsBefore, own[i], otherGraph, target, theirs[i], partner))
      return refuse(MString("the meshes are not the same around face ") + own[i] + " of " +
                    pair.first.partialPathName() + " and face " + theirs[i] + " of " +
                    pair.second.partialPathName());
  for (unsigned int v = 0; v < pointsBefore.length(); ++v) {
    if (partner[v] < 0) continue;
    const MPoint& place = target[static_cast<unsigned int>(partner[v])];
    if (maxDistance > 0.0 && place.distanceTo(pointsBefore[v]) > maxDistance) continue;
    pointsAfter[v] = place;
    isPlaced[v] = 1;
  }
  return MS::kSuccess;
}

void topologyTransferCmd::putOnSurface(const placingSurface& surface, const MPointArray& warped,
                                       const MVectorArray& normals, double size) {
  const double limit = maxDistance > 0.0 ? maxDistance : 4.0 * size;
  const double rounding = 1e-6 * size;
  for (unsigned int v = 0; v < warped.length(); ++v) {
    MPoint place;
    MVector facing;
    if (!surface.nearest(warped[v], place, facing)) continue;
    const double distance = warped[v].distanceTo(place);
    if (maxDistance > 0.0 && distance > maxDistance) continue;
    isPlaced[v] = 1;
    pointsAfter[v] = place;
    const double reach = std::min(limit, kFarther * distance + rounding);
    if (surface.along(warped[v], normals[v], reach, place, facing) && facing * normals[v] > 0.0)
      pointsAfter[v] = place;
  }
}

MStatus topologyTransferCmd::placeOnSurface(const MDagPath& target,
                                            const MPointArray& targetPoints) {
  MPointArray warped = pointsBefore;
  if (!landmarks.empty()) {
    MPointArray from, to;
    for (const auto& [vertex, other] : landmarks) {
      from.append(pointsBefore[static_cast<unsigned int>(vertex)]);
      to.append(targetPoints[static_cast<unsigned int>(other)]);
    }
    landmarkWarp warp;
    if (!warp.fit(from, to)) return refuse("two landmarks lie in one place");
    for (unsigned int v = 0; v < warped.length(); ++v) warped[v] = warp(warped[v]);
  } else if (symmetryAxis < 3) {
    // What lies on the mesh's own plane is to come out on the shape's: from there it looks around.
    const auto axis = static_cast<unsigned int>(symmetryAxis);
    for (unsigned int v = 0; v < warped.length(); ++v) warped[v][axis] += plane - symmetry.at;
  }
  MIntArray counts, connects;
  MFnMesh(movedPath).getVertices(counts, connects);
  MVectorArray normals;
  vertexNormals(warped, counts, connects, normals);
  // Seen in a mirroring transform faces run the other way round than their normals are.
  const bool isMirrored = space == MSpace::kWorld && movedPath.inclusiveMatrix().det3x3() < 0.0;
  if (isMirrored)
    for (unsigned int v = 0; v < normals.length(); ++v) normals[v] = -normals[v];
  // Each vertex asks twice, and each face is looked at once.
  const targetSurface surface(target, space,
                              static_cast<int>(2 * warped.length() + counts.length()));
  putOnSurface(surface, warped, normals,
               sizeOf(warped) + sizeOf(targetPoints) + warped[0].distanceTo(targetPoints[0]));
  std::vector<char> isHeld(warped.length(), 0);
  for (std::size_t v = 0; v < isHeld.size(); ++v) isHeld[v] = isPlaced[v] == 0;
  for (const auto& [vertex, other] : landmarks) {
    pointsAfter[static_cast<unsigned int>(vertex)] = targetPoints[static_cast<unsigned int>(other)];
    isPlaced[static_cast<std::size_t>(vertex)] = isHeld[static_cast<std::size_t>(vertex)] = 1;
  }
  regularPlan(warped, counts, connects, isHeld, isMirrored ? -1.0 : 1.0).run(surface, pointsAfter);
  return surface.isStopped() ? MS::kFailure : MS::kSuccess;
}

MStatus topologyTransferCmd::doIt(const MArgList& arguments) {
  MStatus status = parseArguments(arguments);
  if (status != MS::kSuccess) return status;
  if (isHelp) return showHelp(kHelp);
  meshPair pair;
  status = pair.takeSelection(
      kName,
      "qxTransferTopology: select two meshes: the one to reshape, then the one with the shape");
  if (status != MS::kSuccess) return status;
  movedPath = pair.first;
  for (const MDagPath* path : {&pair.first, &pair.second})
    if ((status = requireFaces(kName, *path)) != MS::kSuccess) return status;
  MPointArray target;
  if ((status = MFnMesh(pair.first).getPoints(pointsBefore, space)) != MS::kSuccess) return status;
  if ((status = MFnMesh(pair.second).getPoints(target, space)) != MS::kSuccess) return status;
  if (!positionsAreFinite(kName, pointsBefore) || !positionsAreFinite(kName, target))
    return MS::kFailure;
  if ((status = placesBefore.takeAll(movedPath)) != MS::kSuccess) return status;
  if (!byOrder && (status = pairLandmarks(pair, target.length())) != MS::kSuccess) return status;

  if (symmetryAxis < 3 && (status = findSymmetry(target)) != MS::kSuccess) return status;
  pointsAfter = pointsBefore;
  isPlaced.assign(pointsBefore.length(), 0);
  status = byOrder ? placeByOrder(pair, target) : placeOnSurface(pair.second, target);
  if (status != MS::kSuccess) return status;
  if (symmetryAxis < 3)
    makeSymmetric(symmetry, static_cast<unsigned int>(symmetryAxis), plane, pointsAfter, isPlaced);
  unplaced = static_cast<int>(std::count(isPlaced.begin(), isPlaced.end(), 0));
  status = redoIt();
  if (status != MS::kSuccess) return status;
  reportTransfer(kName, "moved", static_cast<int>(isPlaced.size()) - unplaced, unplaced);
  setResult(unplaced);
  return MS::kSuccess;
}

MStatus topologyTransferCmd::findSymmetry(const MPointArray& target) {
  const auto axis = static_cast<unsigned int>(symmetryAxis);
  symmetry = symmetryOf(pointsBefore, axis);
  if (2 * symmetry.paired < pointsBefore.length())
    return refuse(movedPath.partialPathName() + " is not symmetric across " +
                  MString("xyz").substringW(symmetryAxis, symmetryAxis) + ": only " +
                  static_cast<int>(symmetry.paired) + " of its " +
                  static_cast<int>(pointsBefore.length()) + " vertices have a counterpart");
  plane = symmetricPlaneOf(target, axis);
  return MS::kSuccess;
}

MStatus topologyTransferCmd::redoIt() {
  if (!movedPath.isValid()) return MS::kFailure;
  return MFnMesh(movedPath).setPoints(pointsAfter, space);
}

MStatus topologyTransferCmd::undoIt() {
  return placesBefore.putAllBack(movedPath, pointsBefore, space);
}
