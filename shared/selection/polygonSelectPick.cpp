#include <maya/M3dView.h>
#include <maya/MBoundingBox.h>
#include <maya/MFloatPoint.h>
#include <maya/MFloatPointArray.h>
#include <maya/MFloatVector.h>
#include <maya/MFnMesh.h>
#include <maya/MIntArray.h>
#include <maya/MItMeshPolygon.h>
#include <maya/MMatrix.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "shared/numeric/indexArrays.h"
#include "shared/selection/polygonSelect.h"
#include "shared/selection/sightBlockers.h"
#include "shared/view/viewProjector.h"

namespace {

/// A vertex or edge within reach of the cursor.
struct candidate {
  int index;
  MPoint point;
  double depth, pixels;
};

class cursorPick {
 public:
  /// @param reach pixels around the cursor that are looked at; 0 for what lies on the pixel itself
  cursorPick(const M3dView& viewIn, int xIn, int yIn, const MDagPath& mesh, double reach,
             MStatus& status)
      : view(viewIn), x(xIn), y(yIn), path(mesh), meshFn(mesh, &status), projector(view) {
    if (status == MS::kSuccess) projector = viewProjector(view, &status);
    const M3dView::DisplayStyle style = view.displayStyle();
    isSolid = (style == M3dView::kFlatShaded || style == M3dView::kGouraudShaded) && !view.xray();
    accelerator = MFnMesh::autoUniformGridParams();
    if (status != MS::kSuccess) return;
    lookAround(reach);
    lookAlong(reach);
    sightLine line;
    if (isSolid && !faces.empty() && sight(x, y, line))
      blockers = sightBlockers(path, line, (reach + 1.0) * projector.worldPerPixel(farthest));
  }

  bool vertex(closestComponentRecord& found) const {
    std::vector<candidate> near;
    for (const int id : cornersOfFaces()) {
      MPoint point;
      meshFn.getPoint(id, point, MSpace::kWorld);
      const viewPlace at = projector.project(point);
      const double pixels = std::hypot(at.x - x, at.y - y);
      if (!at.isClipped && pixels <= polygonSelect::kVertexTolerance)
        near.push_back({id, point, at.depth, pixels});
    }
    return best(near, polygonSelect::kVertexTolerance, found);
  }

  bool edge(closestComponentRecord& found) const {
    std::vector<candidate> near;
    for (const int id : edgesOfFaces()) {
      int2 ends = {0, 0};
      MPoint a, b;
      meshFn.getEdgeVertices(id, ends);
      meshFn.getPoint(ends[0], a, MSpace::kWorld);
      meshFn.getPoint(ends[1], b, MSpace::kWorld);
      const candidate at = nearestOnEdge(id, a, b);
      if (at.pixels <= polygonSelect::kEdgeTolerance) near.push_back(at);
    }
    return best(near, polygonSelect::kEdgeTolerance, found);
  }

  bool face(closestComponentRecord& found) const {
    if (centreFace < 0) return false;
    if (!isVisible({centreFace, centreHit, projector.project(centreHit).depth, 0.0})) return false;
    found.index = centreFace;
    found.point = centreHit;
    return true;
  }

 private:
  bool sight(double px, double py, sightLine& line) const {
    // The view takes whole pixels.
    MPoint farPoint;
    const auto column = static_cast<short>(std::lround(px)),
               row = static_cast<short>(std::lround(py));
    if (view.viewToWorld(column, row, line.start, farPoint) != MS::kSuccess) return false;
    line.direction = farPoint - line.start;
    line.length = line.direction.length();
    line.direction.normalize();
    return line.length > 0.0;
  }

  /// The first hit of a line of sight, nearer than `reach`.
  bool firstHit(const sightLine& line, double reach, MPoint& point, int& face,
                double& distance) const {
    MFloatPoint hit;
    float parameter = 0.0F;
    if (!meshFn.closestIntersection(source(line), way(line), nullptr, nullptr, false,
                                    MSpace::kWorld, static_cast<float>(reach), false, &accelerator,
                                    hit, &parameter, &face, nullptr, nullptr, nullptr))
      return false;
    distance = static_cast<double>(parameter);
    point = MPoint(hit.x, hit.y, hit.z);
    return true;
  }

  static MFloatPoint source(const sightLine& line) {
    return MFloatPoint(static_cast<float>(line.start.x), static_cast<float>(line.start.y),
                       static_cast<float>(line.start.z));
  }
  static MFloatVector way(const sightLine& line) {
    return MFloatVector(static_cast<float>(line.direction.x), static_cast<float>(line.direction.y),
                        static_cast<float>(line.direction.z));
  }

  /// Collects the faces on the lines of sight through the cursor and on rings around it.
  void lookAround(double reach) {
    constexpr double kTurn = 6.283185307179586;
    constexpr struct {
      double radius;
      int count;
    } kRings[] = {{0, 1}, {3, 6}, {6, 12}, {9.5, 20}};
    for (const auto& ring : kRings)
      for (int i = 0; ring.radius <= reach && i < ring.count; ++i) {
        const double angle = kTurn * i / ring.count;
        sightLine line;
        if (sight(x + ring.radius * std::cos(angle), y + ring.radius * std::sin(angle), line))
          look(line, ring.radius == 0);
      }
    // Where faces are smaller than pixels the nearest vertex may be a neighbour's.
    if (centreFace >= 0) addNeighbours(centreFace);
    makeSortedUnique(faces);
  }

  void addNeighbours(int face) {
    MItMeshPolygon polygon(path);
    int before = 0;
    MIntArray around;
    if (polygon.setIndex(face, before) == MS::kSuccess) polygon.getConnectedFaces(around);
    for (unsigned int i = 0; i < around.length(); ++i) faces.push_back(around[i]);
  }

  /// Finds what is nearest to the eye of a flat mesh that is seen along its faces: lines of sight
  /// miss these, or meet any of them by chance.
  void lookAlong(double reach) {
    // A box costs with the mesh; of larger ones that is more than a look may take.
    constexpr int kMostVertices = 200000;
    sightLine line;
    if (meshFn.numVertices() > kMostVertices || !sight(x, y, line)) return;
    if (meetsFaceOn(line) || !isSeenAsLine()) return;
    MPoint from = line.start, found;
    int face = -1;
    for (int i = 0; i < 3; ++i) {
      if (meshFn.getClosestPoint(from, found, MSpace::kWorld, &face) != MS::kSuccess) return;
      from = line.start + line.direction * std::max(0.0, (found - line.start) * line.direction);
    }
    const viewPlace at = projector.project(found);
    if (at.isClipped || std::hypot(at.x - x, at.y - y) > reach + 1.0) return;
    faces.push_back(face);
    addNeighbours(face);
    makeSortedUnique(faces);
    farthest = at.depth;
  }

  /// Whether a face that was found is seen from one of its sides.
  bool meetsFaceOn(const sightLine& line) const {
    constexpr double kGrazing = 0.01;
    return std::any_of(faces.begin(), faces.end(), [&](int face) {
      MVector normal;
      return meshFn.getPolygonNormal(face, normal, MSpace::kWorld) == MS::kSuccess &&
             std::fabs(normal * line.direction) > kGrazing;
    });
  }

  /// Whether the mesh's box shows no wider than a pixel.
  bool isSeenAsLine() const {
    const MBoundingBox box = meshFn.boundingBox();
    const MMatrix toWorld = path.inclusiveMatrix();
    std::vector<viewPlace> places;
    for (int i = 0; i < 8; ++i) {
      const MPoint corner((i & 1 ? box.max() : box.min()).x, (i & 2 ? box.max() : box.min()).y,
                          (i & 4 ? box.max() : box.min()).z);
      places.push_back(projector.project(corner * toWorld));
      if (places.back().isClipped) return false;
    }
    const auto apart = [](const viewPlace& a, const viewPlace& b) {
      return std::hypot(a.x - b.x, a.y - b.y);
    };
    const viewPlace& a = places[0];
    const viewPlace& b = *std::max_element(
        places.begin(), places.end(),
        [&](const viewPlace& p, const viewPlace& q) { return apart(a, p) < apart(a, q); });
    const double length = apart(a, b);
    return length > 0.0 && std::all_of(places.begin(), places.end(), [&](const viewPlace& p) {
             return std::fabs((p.x - a.x) * (b.y - a.y) - (p.y - a.y) * (b.x - a.x)) <= length;
           });
  }

  void look(const sightLine& line, bool isCentre) {
    MPoint point;
    int face = -1;
    double distance = 0.0;
    if ((isSolid || isCentre) && firstHit(line, line.length, point, face, distance)) {
      faces.push_back(face);
      farthest = std::max(farthest, projector.project(point).depth);
      if (isCentre) {
        centreFace = face;
        centreHit = point;
      }
    }
    if (isSolid) return;
    MFloatPointArray points;
    MIntArray hitFaces;
    meshFn.allIntersections(source(line), way(line), nullptr, nullptr, false, MSpace::kWorld,
                            static_cast<float>(line.length), false, &accelerator, false, points,
                            nullptr, &hitFaces, nullptr, nullptr, nullptr);
    for (unsigned int i = 0; i < hitFaces.length(); ++i) faces.push_back(hitFaces[i]);
  }

  std::vector<int> cornersOfFaces() const {
    std::vector<int> corners;
    MIntArray ids;
    for (const int face : faces) {
      meshFn.getPolygonVertices(face, ids);
      for (unsigned int i = 0; i < ids.length(); ++i) corners.push_back(ids[i]);
    }
    makeSortedUnique(corners);
    return corners;
  }

  std::vector<int> edgesOfFaces() const {
    std::vector<int> edges;
    MIntArray ids;
    MItMeshPolygon polygon(path);
    for (const int face : faces) {
      int before = 0;
      polygon.setIndex(face, before);
      polygon.getEdges(ids);
      for (unsigned int i = 0; i < ids.length(); ++i) edges.push_back(ids[i]);
    }
    makeSortedUnique(edges);
    return edges;
  }

  /// Moves the end of an edge that is clipped to where the edge begins to show, to a millionth of
  /// its length.
  viewPlace cutToShown(MPoint& outer, const MPoint& shownEnd) const {
    MPoint shown = shownEnd;
    for (int i = 0; i < 20; ++i) {
      const MPoint middle((outer.x + shown.x) / 2, (outer.y + shown.y) / 2,
                          (outer.z + shown.z) / 2);
      (projector.project(middle).isClipped ? outer : shown) = middle;
    }
    outer = shown;
    return projector.project(shown);
  }

  /// The place of an edge that shows nearest to the cursor.
  candidate nearestOnEdge(int index, MPoint a, MPoint b) const {
    candidate found{index, a, 0.0, HUGE_VAL};
    viewPlace atA = projector.project(a), atB = projector.project(b);
    if (atA.isClipped && !atB.isClipped) atA = cutToShown(a, b);
    if (atB.isClipped && !atA.isClipped) atB = cutToShown(b, a);
    if (atA.isClipped || atB.isClipped) return found;
    const double dx = atB.x - atA.x, dy = atB.y - atA.y;
    const double squared = dx * dx + dy * dy;
    double share = squared > 0.0 ? ((x - atA.x) * dx + (y - atA.y) * dy) / squared : 0.0;
    share = std::clamp(share, 0.0, 1.0);
    found.pixels = std::hypot(atA.x + share * dx - x, atA.y + share * dy - y);
    // Equal steps on the screen are no equal steps along an edge that leads away from the camera.
    double along = share;
    if (!projector.isOrthographic())
      along = share * atA.depth / ((1 - share) * atB.depth + share * atA.depth);
    found.point = a + (b - a) * along;
    found.depth = atA.depth + (atB.depth - atA.depth) * along;
    return found;
  }

  bool isVisible(const candidate& at) const {
    if (!isSolid) return true;
    const viewPlace place = projector.project(at.point);
    sightLine line;
    if (!sight(place.x, place.y, line)) return false;
    line.direction = at.point - line.start;
    const double distance = line.direction.length();
    line.direction.normalize();
    // Its own faces touch it; and single precision carries a place no farther than this.
    const double slack = std::max(projector.worldPerPixel(at.depth), 1e-5 * distance);
    MPoint point;
    int face = -1;
    double blocked = 0.0;
    if (firstHit(line, distance, point, face, blocked) && blocked < distance - slack) return false;
    line.length = distance - slack;
    return !blockers.block(line);
  }

  bool best(std::vector<candidate>& near, double tolerance, closestComponentRecord& found) const {
    near.erase(std::remove_if(near.begin(), near.end(),
                              [this](const candidate& at) { return !isVisible(at); }),
               near.end());
    if (near.empty()) return false;
    const auto front =
        std::min_element(near.begin(), near.end(),
                         [](const candidate& a, const candidate& b) { return a.depth < b.depth; });
    const double limit = front->depth + tolerance * projector.worldPerPixel(front->depth);
    const candidate* winner = nullptr;
    for (const candidate& at : near)
      if (at.depth <= limit && (!winner || at.pixels < winner->pixels)) winner = &at;
    found.index = winner->index;
    found.point = winner->point;
    return true;
  }

  M3dView view;
  int x, y;
  MDagPath path;
  MFnMesh meshFn;
  viewProjector projector;
  mutable MMeshIsectAccelParams accelerator;
  bool isSolid = false;
  std::vector<int> faces;  ///< ascending, on the lines of sight
  int centreFace = -1;     ///< under the cursor itself
  MPoint centreHit;
  double farthest = 0.0;   ///< depth of what the lines of sight met
  sightBlockers blockers;  ///< of a view that shades
};

}  // namespace

MStatus polygonSelect::componentUnderCursor(const M3dView& view, int x, int y, const MDagPath& mesh,
                                            int type, closestComponentRecord& found) const {
  found = closestComponentRecord();
  if (type < kAnyType || type > kEdgeType) return MS::kInvalidParameter;
  if (!mesh.isValid()) return MS::kFailure;
  MStatus status;
  const bool wantsAll = type == kAnyType;
  const cursorPick pick(view, x, y, mesh, type == kFaceType ? 0.0 : kVertexTolerance, status);
  if (status != MS::kSuccess) return status;
  if ((wantsAll || type == kVertexType) && pick.vertex(found))
    found.type = kVertexType;
  else if ((wantsAll || type == kEdgeType) && pick.edge(found))
    found.type = kEdgeType;
  else if ((wantsAll || type == kFaceType) && pick.face(found))
    found.type = kFaceType;
  return MS::kSuccess;
}
