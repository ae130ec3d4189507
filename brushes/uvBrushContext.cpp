#include "brushes/uvBrushContext.h"

#include <maya/MFnMesh.h>
#include <maya/MGlobal.h>

#include <algorithm>
#include <cmath>

#include "brushes/uvPointTarget.h"
#include "brushes/uvSetTarget.h"
#include "shared/settings/toolSettings.h"
#include "uv/uvMessages.h"
#include "uv/uvObjectEnds.h"

namespace {

constexpr double kRadiansPerPixel = 0.5 * 3.14159265358979323846 / 180.0;
constexpr double kPixelsPerDoubling = 150.0;
/// Middle of the map, where mirrored UVs meet.
constexpr double kMiddle = 0.5;

bool isSame(const MIntArray& a, const MIntArray& b) {
  if (a.length() != b.length()) return false;
  for (unsigned int i = 0; i < a.length(); ++i)
    if (a[i] != b[i]) return false;
  return true;
}

/// A step along one axis alone: along the one on which the way so far went farther.
void keepStrongerAxis(double (&step)[2], const double (&way)[2]) {
  step[std::fabs(way[0]) >= std::fabs(way[1]) ? 1 : 0] = 0.0;
}

bool areFinite(const std::vector<float>& numbers) {
  return std::all_of(numbers.begin(), numbers.end(),
                     [](float each) { return std::isfinite(each); });
}

}  // namespace

/// A place turned and scaled about a pivot, then moved; each in part, so that what follows less
/// bends instead of shrinking.
struct uvBrushContext::change {
  double pivot[2] = {0.0, 0.0}, shift[2] = {0.0, 0.0};
  double angle = 0.0;      ///< radians, to the left
  double doublings = 0.0;  ///< the factor is 2 to this

  void apply(const float* place, double share, std::vector<float>& result) const {
    const double factor = std::exp2(doublings * share);
    const double cosine = std::cos(angle * share) * factor;
    const double sine = std::sin(angle * share) * factor;
    const double x = static_cast<double>(place[0]) - pivot[0];
    const double y = static_cast<double>(place[1]) - pivot[1];
    // What only moves keeps its place relative to the others to the last bit that floats allow.
    const bool turns = angle != 0.0 || doublings != 0.0;
    const double dx = turns ? cosine * x - sine * y - x : 0.0;
    const double dy = turns ? sine * x + cosine * y - y : 0.0;
    result.push_back(static_cast<float>(static_cast<double>(place[0]) + dx + shift[0] * share));
    result.push_back(static_cast<float>(static_cast<double>(place[1]) + dy + shift[1] * share));
  }
};

uvBrushContext::uvBrushContext(const char* command, const char* titleIn, const char* helpIn)
    : brushContext(command, titleIn, helpIn) {
  settings.strength = 1.0;
}

uvBrushContext::~uvBrushContext() = default;

bool uvBrushContext::canBrush(const MDagPath& path) const {
  MStatus status;
  const MFnMesh meshFn(path, &status);
  return status && (meshFn.numUVs() > 0 || meshOfUvObject(path).isValid());
}

bool uvBrushContext::followsPointer() const {
  const actions what = action();
  return what == kMove || what == kRotate || what == kScale;
}

/// Takes in what a target has; what joins the UVs is often what it was in the stroke before.
bool uvBrushContext::takeContent(const uvTarget::content& content) {
  const bool isKnown = 2 * static_cast<std::size_t>(layout.count()) == content.places.size() &&
                       isSame(content.counts, knownCounts) && isSame(content.ids, knownIds);
  if (isKnown) {
    layout.setPlaces(content.places);
  } else {
    if (!layout.build(content.places, content.counts, content.ids)) return false;
    knownCounts = content.counts;
    knownIds = content.ids;
  }
  guard = std::make_unique<uvGuard>(layout);
  isChanged.assign(static_cast<std::size_t>(layout.count()), 0);
  return true;
}

bool uvBrushContext::beginStroke(const brushHit& hit) {
  const MDagPath& path = hit.surface->mesh();
  mesh = meshOfUvObject(path);
  isUvObject = mesh.isValid();
  if (!isUvObject) mesh = path;
  const MDagPath uvObject = isUvObject ? path : uvObjectOfMesh(path);
  if (uvObject.isValid())
    target = std::make_unique<uvPointTarget>(uvObject);
  else
    target = std::make_unique<uvSetTarget>(path);
  uvTarget::content content;
  bool isReady = target->read(content);
  if (isReady && !isUvObject && uvObject.isValid()) {
    // What hangs together at a place of the mesh is said by the mesh, not by its UV object.
    const MFnMesh meshFn(path);
    const MString set = meshFn.currentUVSetName();
    isReady = static_cast<std::size_t>(meshFn.numUVs(set)) == content.places.size() / 2 &&
              meshFn.getAssignedUVs(content.counts, content.ids, &set);
    if (!isReady)
      failWith(path.partialPathName() + " and its UV object don't fit each other any more");
  }
  if (isReady) {
    isReady = reach.begin(*hit.surface, isUvObject, content) && takeContent(content);
    if (!isReady) failWith("the UVs of " + path.partialPathName() + " don't fit its polygons");
  }
  isHolding = hasRelaxing = false;
  pairs.reset();
  lastHit = brushHit();
  smeared[0] = smeared[1] = 0.0;
  heldBack = 0;
  isKeptUp = false;
  changed.clear();
  if (!isReady) target.reset();
  return isReady;
}

/// Where others have moved UVs in mid-stroke the stroke goes on from there. Looked after once an
/// event.
void uvBrushContext::keepUp() {
  if (!target || isKeptUp) return;
  isKeptUp = true;
  std::vector<float> places;
  const uvTarget::state state = target->keepUp(places);
  if (state == uvTarget::kSame) return;
  if (state == uvTarget::kGone || places.size() != 2 * static_cast<std::size_t>(layout.count())) {
    MGlobal::displayWarning("The UVs were changed while they were brushed: the stroke ends there.");
    target.reset();
    return;
  }
  layout.setPlaces(places);
  pairs.reset();
  isHolding = hasRelaxing = false;
}

void uvBrushContext::meshChanged() {
  isKeptUp = hasRelaxing = false;
  keepUp();
}

bool uvBrushContext::mirrorImage(const MPoint&, MPoint&) const {
  return false;  // what is mirrored lies in the map
}

void uvBrushContext::dab(const brushDab& dab) {
  keepUp();
  if (!target) return;
  switch (action()) {
    case kRelax:
      relaxDab(dab);
      break;
    case kSmear:
      smear(dab);
      break;
    default:
      if (!isHolding)
        hold(dab);
      else
        drag(dab);
  }
  lastHit = dab.hit;
}

const uvMirror* uvBrushContext::mirror() {
  if (!settings.mirror) return nullptr;
  if (!pairs) {
    const double line = settings.mirrorsInWorld() ? 0.0 : kMiddle * target->unit();
    pairs = std::make_unique<uvMirror>(layout, settings.mirrorAxis == 0 ? 0 : 1, line);
  }
  return pairs.get();
}

void uvBrushContext::move(const std::vector<double>& weights, std::vector<int> uvs,
                          std::vector<float> targets) {
  if (!areFinite(targets)) return;
  if (const uvMirror* across = mirror()) addCounterparts(*across, weights, uvs, targets);
  heldBack = std::max(heldBack, guard->move(uvs, targets));
  for (const int uv : uvs) {
    char& isListed = isChanged[static_cast<std::size_t>(uv)];
    if (isListed) continue;
    isListed = 1;
    changed.push_back(uv);
  }
}

void uvBrushContext::hold(const brushDab& dab) {
  // A stroke that others have changed the UVs under takes hold anew where it is on the surface.
  reach.collect(dab, settings, layout, true, region);
  from.clear();
  for (const int uv : region.uvs)
    from.insert(from.end(), {layout.place(uv)[0], layout.place(uv)[1]});
  heldAt = dab;
  isHolding = dab.hit.isHit();
}

/// From where the stroke took hold to the pointer: in the plane that touches the surface there, or,
/// where that is seen from its edge, across the view.
MVector uvBrushContext::wayOnSurface(const brushDab& dab) const {
  MPoint origin;
  MVector direction;
  sight().ray(dab.place.x, dab.place.y, origin, direction);
  const MVector& normal = heldAt.hit.normal;
  const double slope = direction * normal;
  constexpr double kGrazing = 0.15;
  if (std::fabs(slope) < kGrazing) return dab.held - heldAt.held;
  const double along = ((heldAt.hit.point - origin) * normal) / slope;
  return origin + direction * along - heldAt.hit.point;
}

/// Moves what is reached, each UV as its shell is moved: from where it was held, or from where it
/// is.
void uvBrushContext::moveByShells(const std::unordered_map<int, change>& changes, bool isHeld,
                                  double strength) {
  std::vector<int> uvs;
  std::vector<double> weights;
  std::vector<float> targets;
  for (std::size_t i = 0; i < region.uvs.size(); ++i) {
    const int uv = region.uvs[i];
    const auto found = changes.find(layout.shellOf(uv));
    if (found == changes.end()) continue;
    uvs.push_back(uv);
    weights.push_back(region.weights[i]);
    found->second.apply(isHeld ? &from[2 * i] : layout.place(uv), region.weights[i] * strength,
                        targets);
  }
  move(weights, std::move(uvs), std::move(targets));
}

void uvBrushContext::drag(const brushDab& dab) {
  const actions what = action();
  const double pixels = (dab.place.x - heldAt.place.x) * (dab.invert ? -1.0 : 1.0);
  const MVector way = wayOnSurface(dab);
  // On the mesh it is the picture that follows the hand, so UVs go against it.
  const double towards = isUvObject ? 1.0 : -1.0;
  std::unordered_map<int, change> changes;
  for (const auto& [shell, frame] : region.frames) {
    change& each = changes[shell];
    for (int k = 0; k < 2; ++k) each.pivot[k] = frame.place[k];
    if (what == kRotate) {
      // To the right turns clockwise for who looks at it.
      const double side = frame.isSeenFromFront(heldAt.hit.towardsViewer) ? -1.0 : 1.0;
      each.angle = towards * side * pixels * kRadiansPerPixel;
    } else if (what == kScale) {
      each.doublings = towards * pixels / kPixelsPerDoubling;
    } else {
      for (int k = 0; k < 2; ++k) each.shift[k] = towards * frame.change(k, way);
      if (dab.invert) keepStrongerAxis(each.shift, each.shift);
    }
  }
  moveByShells(changes, true, dab.strength);
}

void uvBrushContext::smear(const brushDab& dab) {
  if (!dab.hit.isHit() || !lastHit.isHit()) return;
  const MVector way = dab.hit.point - lastHit.point;
  if (way.length() > 2.0 * dab.radius) return;  // it left the mesh and came back elsewhere
  reach.collect(dab, settings, layout, true, region);
  const double towards = isUvObject ? 1.0 : -1.0;
  std::unordered_map<int, change> changes;
  bool isFirst = true;
  for (const auto& [shell, frame] : region.frames) {
    change& each = changes[shell];
    for (int k = 0; k < 2; ++k) each.shift[k] = towards * frame.change(k, way);
    if (isFirst)
      for (int k = 0; k < 2; ++k) smeared[k] += each.shift[k];
    isFirst = false;
    if (dab.invert) keepStrongerAxis(each.shift, smeared);
  }
  moveByShells(changes, false, dab.strength);
}

void uvBrushContext::readSurface() {
  if (hasRelaxing) return;
  hasRelaxing = true;
  relaxing.begin(layout,
                 mesh.isValid() ? uvReach::cornersOnMesh(mesh, layout) : std::vector<float>());
}

void uvBrushContext::relaxDab(const brushDab& dab) {
  if (!dab.hit.isHit()) return;
  readSurface();
  // The UV window's options count for everything that smooths UVs.
  const toolSettings& options = toolSettings::current();
  const double intensity = std::clamp(options.smoothUvIntensity, 0, 100) / 100.0;
  brushSettings wanted = settings;
  wanted.lockBorders = settings.lockBorders || options.pinBorderEdges;
  reach.collect(dab, wanted, layout, false, region);
  for (int round = 0; round < settings.relaxIterations; ++round) relaxRound(dab, intensity);
}

/// One round over the region in which every UV sees where those before it have gone, and goes a
/// little farther than it wants to (successive over-relaxation): that halves the rounds, and more.
void uvBrushContext::relaxRound(const brushDab& dab, double intensity) {
  constexpr double kOverRelaxation = 1.5;
  std::vector<int> uvs;
  std::vector<double> weights;
  std::vector<float> targets, starts;
  for (std::size_t i = 0; i < region.uvs.size(); ++i) {
    const int uv = region.uvs[i];
    double goal[2];
    if (!relaxing.target(layout, uv, dab.invert, goal)) continue;
    const float here[2] = {layout.place(uv)[0], layout.place(uv)[1]};
    const double share = kOverRelaxation * region.weights[i] * dab.strength * intensity;
    float to[2];
    for (int k = 0; k < 2; ++k) {
      const double at = static_cast<double>(here[k]);
      to[k] = static_cast<float>(at + (goal[k] - at) * share);
    }
    uvs.push_back(uv);
    weights.push_back(region.weights[i]);
    targets.insert(targets.end(), {to[0], to[1]});
    starts.insert(starts.end(), {here[0], here[1]});
    layout.setPlace(uv, to[0], to[1]);
  }
  for (std::size_t i = 0; i < uvs.size(); ++i)
    layout.setPlace(uvs[i], starts[2 * i], starts[2 * i + 1]);
  move(weights, std::move(uvs), std::move(targets));
}

void uvBrushContext::showDabs() {
  isKeptUp = false;
  if (!target || changed.empty()) return;
  const auto own = ownEdit();
  if (target->write(changed, layout) && isUvObject) {
    std::vector<float> places;
    const auto& points = static_cast<const uvPointTarget&>(*target);
    for (const int uv : changed) {
      const float* const place = points.stored(uv);
      places.insert(places.end(), place, place + 3);
    }
    strokeStart().surface->move(changed, places);
  }
  for (const int uv : changed) isChanged[static_cast<std::size_t>(uv)] = 0;
  changed.clear();
}

std::shared_ptr<brushRecord> uvBrushContext::strokeRecord() {
  return target ? target->record() : nullptr;
}

void uvBrushContext::endStroke() {
  if (target) target->settle();
  if (heldBack > 0)
    tell(MString("") + heldBack + " UVs were held back: they would have turned polygons over");
  target.reset();
  guard.reset();
  pairs.reset();
  region = uvRegion();
  from.clear();
  isHolding = hasRelaxing = false;
  lastHit = brushHit();
}
