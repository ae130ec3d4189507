#include "quaddraw/quadFinder.h"

#include <maya/M3dView.h>
#include <maya/MGlobal.h>
#include <maya/MIntArray.h>

#include "shared/mesh/polyHelper.h"
#include "shared/settings/toolSettings.h"

namespace {

/// The line of sight that border vertices must not point along; none with back faces taken too.
const MVector* cullingRay(const M3dView& view, int x, int y, MVector& ray) {
  if (!toolSettings::current().ignoreQuadDrawBackface) return nullptr;
  MPoint eye;
  const MStatus seen = view.viewToWorld(static_cast<short>(x), static_cast<short>(y), eye, ray);
  return seen == MS::kSuccess ? &ray : nullptr;
}

/// Whether polygons of the mesh run along a side of the quad the same way round as the quad does,
/// more often than the other way: then the two would face different ways.
bool runsAgainst(const drawnMesh& mesh, const MPointArray& quad) {
  int same = 0, opposite = 0;
  for (unsigned int i = 0; i < quad.length(); ++i) {
    const int a = mesh.borderVertexAt(quad[i]);
    const int b = mesh.borderVertexAt(quad[(i + 1) % quad.length()]);
    if (a < 0 || b < 0) continue;
    same += mesh.hasCornerRun(a, b) ? 1 : 0;
    opposite += mesh.hasCornerRun(b, a) ? 1 : 0;
  }
  if (same + opposite == 0) return mesh.isThere() && mesh.toWorld().det3x3() < 0.0;
  return same > opposite;
}

/// Whether the corners stand on one line, or so that the quad has no area.
bool isFlat(const MPointArray& quad) {
  constexpr double kLeastSine = 1e-6;
  const MVector across = quad[2] - quad[0], along = quad[3] - quad[1];
  return !((across ^ along).length() > kLeastSine * across.length() * along.length());
}

}  // namespace

void quadFinder::refresh(const M3dView& view, const drawnMesh& mesh, const MPointArray& loose,
                         unsigned int looseRevision) {
  const viewSight sight(view);
  if (isGathered && looseRead == looseRevision && meshRead == mesh.revision() && sightRead == sight)
    return;
  candidates.clear();
  for (unsigned int i = 0; i < loose.length(); ++i)
    candidates.push_back({loose[i], MVector(), false});
  for (const borderVertex& border : mesh.border())
    candidates.push_back({border.place, border.normal, true});
  if (index.build(candidates, sight) > 0)
    MGlobal::displayWarning("error converting point data to view space");
  looseCount = static_cast<std::ptrdiff_t>(loose.length());
  isGathered = true;
  looseRead = looseRevision;
  meshRead = mesh.revision();
  sightRead = sight;
}

void quadFinder::clear() {
  candidates.clear();
  index.build(candidates, viewSight());
  looseCount = 0;
  isGathered = false;
}

bool quadFinder::nearest(const M3dView& view, int x, int y, MPoint& place) const {
  MVector ray;
  const auto found = index.nearest(x, y, 1, cullingRay(view, x, y, ray));
  if (found.empty()) return false;
  place = candidates[static_cast<std::size_t>(found[0].candidate)].place;
  return true;
}

int quadFinder::looseNear(const M3dView& view, int x, int y, double pixels) const {
  screenIndex ofLoose;
  ofLoose.build({candidates.begin(), candidates.begin() + looseCount}, viewSight(view));
  const auto found = ofLoose.nearest(x, y, 1, nullptr);
  return !found.empty() && found[0].distance < pixels ? found[0].candidate : -1;
}

MPointArray quadFinder::quadAt(const M3dView& view, int x, int y, const drawnMesh& mesh) const {
  MVector ray;
  const MVector* culling = cullingRay(view, x, y, ray);
  const auto nearestFour = index.nearest(x, y, 4, culling);
  if (nearestFour.size() < 4) return MPointArray();
  MPointArray found;
  for (const screenIndex::found& at : nearestFour)
    found.append(candidates[static_cast<std::size_t>(at.candidate)].place);
  for (unsigned int i = 0; i < 4; ++i)
    for (unsigned int j = 0; j < i; ++j)
      if (found[i] == found[j]) return MPointArray();  // a corner twice is no quad
  MPoint eye;
  if (!culling) view.viewToWorld(static_cast<short>(x), static_cast<short>(y), eye, ray);
  const MVector towardsViewer = -ray;
  MIntArray order;
  if (polyHelper().angularOrder(found, &towardsViewer, order) != MS::kSuccess ||
      order.length() != 4)
    return MPointArray();
  MPointArray quad;
  for (unsigned int i = 0; i < 4; ++i) quad.append(found[static_cast<unsigned int>(order[i])]);
  if (isFlat(quad)) return MPointArray();
  // Whatever polygon is under the cursor is among those that are looked at here.
  if (mesh.mostCornersOfOnePolygon(quad) >= 3) return MPointArray();
  if (!runsAgainst(mesh, quad)) return quad;
  MPointArray reversed;
  for (unsigned int i = 4; i-- > 0;) reversed.append(quad[i]);
  return reversed;
}
