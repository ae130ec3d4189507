#include "host/ops/uv/unfold.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include "host/base/cancel.h"
#include "host/ops/uv/unfold_piece.h"

namespace host::ops {
namespace {

using flat::Point;

/// Fewer rounds than this go on from the UVs as they are, so that one can watch them unfold.
constexpr int kFewIterations = 10;

/// The outcome for one shell: its UVs, or why it stays.
struct ShellOutcome {
  std::vector<UvId> uvs;
  std::vector<mesh::Vec2f> places;
  std::string reason;
  int iterations = 0;
};

double signedArea(const flat::Piece& piece, std::span<const Point> x) {
  double sum = 0;
  for (const flat::Triangle& t : piece.triangles)
    sum += 0.5 * flat::doubleArea(x[at(t[0])], x[at(t[1])], x[at(t[2])]);
  return sum;
}

double surfaceArea(const flat::Piece& piece) {
  double sum = 0;
  for (const flat::Triangle& t : piece.triangles)
    sum += 0.5 * math::length(math::cross(piece.points[at(t[1])] - piece.points[at(t[0])],
                                          piece.points[at(t[2])] - piece.points[at(t[0])]));
  return sum;
}

flat::FlattenOptions flattenOptions(const UnfoldOptions& options) {
  flat::FlattenOptions flatten;
  const double global = std::clamp(options.globalBlend, 0.0, 1.0);
  const double lengths = std::clamp(options.globalMethodBlend, 0.0, 1.0);
  // Some of the first energy stays: the others alone do not keep triangles from turning over.
  flatten.energy.symmetric = 1 - 0.9 * global;
  flatten.energy.lengths = 2 * global * lengths;
  flatten.energy.areas = 4 * global * (1 - lengths);
  flatten.iterations = options.iterations;
  flatten.threshold = options.stoppingThreshold;
  flatten.areaWeight = std::clamp(options.areaWeight, 0.0, 1.0);
  return flatten;
}

bool isUpright(const flat::Piece& piece, std::span<const Point> x) {
  return std::ranges::all_of(piece.triangles, [&](const flat::Triangle& t) {
    return flat::orientation(x[at(t[0])], x[at(t[1])], x[at(t[2])]) > 0;
  });
}

/// Moves, turns and scales a flat piece onto the UVs it had, by least squares; UVs that were all in
/// one place or in a line are centred instead.
void placeLikeBefore(const ShellPiece& shell, const UnfoldOptions& options, std::vector<Point>& x) {
  Point was, now;
  for (std::size_t i = 0; i < x.size(); ++i) {
    was = was + shell.x[i];
    now = now + x[i];
  }
  const double count = static_cast<double>(x.size());
  was = 1 / count * was;
  now = 1 / count * now;
  double cosine = 0, sine = 0;
  for (std::size_t i = 0; i < x.size(); ++i) {
    const Point a = x[i] - now, b = shell.x[i] - was;
    cosine += flat::dot(a, b);
    sine += flat::cross(a, b);
  }
  const double turn = std::hypot(cosine, sine);
  if (turn > 0) {
    cosine /= turn;
    sine /= turn;
  } else {
    cosine = 1;
    sine = 0;
  }
  const double area = signedArea(shell.piece, x);
  double absolute = 0, extent = 0;
  for (const flat::Triangle& t : shell.piece.triangles)
    absolute +=
        0.5 * std::abs(flat::doubleArea(shell.x[at(t[0])], shell.x[at(t[1])], shell.x[at(t[2])]));
  for (const Point& p : x)
    extent = std::max({extent, std::abs(p.x - now.x), std::abs(p.y - now.y)});
  double scale = options.scale;
  if (!options.useScale)
    scale = absolute > 1e-12 * flat::dot(was, was) && absolute > 0 ? std::sqrt(absolute / area)
                                                                   : 0.5 / std::max(extent, 1e-300);
  for (Point& p : x) {
    const Point a = scale * (p - now);
    p = was + Point{cosine * a.x - sine * a.y, sine * a.x + cosine * a.y};
  }
}

/// Rounds to floats and makes sure that this turned nothing over and closed no gap.
Result<std::vector<mesh::Vec2f>> rounded(const flat::Piece& piece, std::span<const Point> x,
                                         std::span<const std::uint8_t> isFixed, int up,
                                         bool checksBorder) {
  std::vector<mesh::Vec2f> places;
  places.reserve(x.size());
  std::vector<Point> back;
  for (const Point& p : x) {
    places.push_back({static_cast<float>(p.x), static_cast<float>(p.y)});
    if (!std::isfinite(places.back().u) || !std::isfinite(places.back().v))
      return fail("its UVs would leave the range of numbers");
    back.push_back({places.back().u, places.back().v});
  }
  for (const flat::Triangle& t : piece.triangles) {
    const bool isPinned =
        !isFixed.empty() && isFixed[at(t[0])] && isFixed[at(t[1])] && isFixed[at(t[2])];
    if (!isPinned &&
        flat::orientation(places[at(t[0])], places[at(t[1])], places[at(t[2])]) * up <= 0)
      return fail("its triangles are too small for UVs to tell apart");
  }
  if (checksBorder && !flat::BorderGuard(piece.border, back).isSimple())
    return fail("its borders come too near each other for UVs to tell apart");
  return places;
}

flat::Axes axesOf(UnfoldOptions::Axes axes) {
  switch (axes) {
    case UnfoldOptions::Axes::VerticalOnly:
      return flat::Axes::VerticalOnly;
    case UnfoldOptions::Axes::HorizontalOnly:
      return flat::Axes::HorizontalOnly;
    default:
      return flat::Axes::Both;
  }
}

/// Unfolds a shell of which some UVs stay, or whose UVs move only one way, from where they are.
Result<std::vector<mesh::Vec2f>> continueShell(const ShellPiece& shell,
                                               std::span<const std::uint8_t> isFixed,
                                               const UnfoldOptions& options, int& iterations,
                                               bool startsFar = false) {
  const flat::Piece& piece = shell.piece;
  std::vector<Point> x = shell.x;
  const double area = signedArea(piece, x);
  const int up = area < 0 ? -1 : 1;
  if (up < 0)
    for (Point& p : x) p.x = -p.x;
  double scale = options.scale;
  if (!options.useScale) {
    double absolute = 0;
    for (const flat::Triangle& t : piece.triangles)
      absolute += 0.5 * std::abs(flat::doubleArea(x[at(t[0])], x[at(t[1])], x[at(t[2])]));
    if (!(absolute > 0)) return fail("all its UVs lie in a line and some are pinned");
    scale = std::sqrt(absolute / surfaceArea(piece));
  }
  flat::FlattenOptions flatten = flattenOptions(options);
  if (startsFar) {
    // Each round costs much of a large piece: some rounds come most of the way.
    const auto most = 1'000'000 / std::max<std::size_t>(1, piece.triangles.size());
    flatten.startsFar = true;
    flatten.iterations =
        std::min(flatten.iterations, static_cast<int>(std::clamp<std::size_t>(most, 15, 200)));
  }
  std::vector<flat::Element> elements = flat::elementsOf(piece, x, flatten.areaWeight, scale);
  // Triangles of pinned UVs alone are not ours to change.
  std::erase_if(elements, [&](const flat::Element& e) {
    return !isFixed.empty() && isFixed[at(e.corners[0])] && isFixed[at(e.corners[1])] &&
           isFixed[at(e.corners[2])];
  });
  if (!flat::untangle(elements, isFixed, axesOf(options.axes), 60, x))
    return fail("its pinned UVs leave no way to lay it flat without turned faces");
  const bool wasApart = flat::BorderGuard(piece.border, x).isSimple();
  iterations = flat::improve(elements, flatten, wasApart ? &piece.border : nullptr, isFixed,
                             axesOf(options.axes), x);
  if (up < 0)
    for (Point& p : x) p.x = -p.x;
  return rounded(piece, x, isFixed, up, wasApart);
}

Result<std::vector<mesh::Vec2f>> unfoldAnew(const ShellPiece& shell, const UnfoldOptions& options,
                                            int& iterations) {
  flat::Flattened flattened = flat::flatten(shell.piece, flattenOptions(options));
  if (flattened.x.empty()) return fail("no flat layout without turned faces was found");
  iterations = flattened.iterations;
  placeLikeBefore(shell, options, flattened.x);
  return rounded(shell.piece, flattened.x, {}, 1, true);
}

std::vector<Point> pointsOf(std::span<const mesh::Vec2f> places) {
  std::vector<Point> points;
  for (const mesh::Vec2f& p : places) points.push_back({p.u, p.v});
  return points;
}

/// How much a layout is stretched, whatever its scale; 4 at best.
double stretchOf(const flat::Piece& piece, std::span<const Point> x) {
  const std::vector<flat::Element> elements = flat::elementsOf(piece, x, 1);
  const double scale = flat::bestScale(elements, x);
  std::vector<Point> scaled;
  for (const Point& p : x) scaled.push_back(scale * p);
  return flat::meanEnergy({}, elements, scaled);
}

ShellOutcome unfoldShell(PieceMaker& maker, Index shellId, std::span<const std::uint8_t> isPinned,
                         const UnfoldOptions& options) {
  ShellOutcome outcome;
  Result<ShellPiece> shell = maker.make(shellId);
  if (!shell) {
    outcome.reason = shell.error().message;
    return outcome;
  }
  std::vector<std::uint8_t> isFixed(shell->x.size(), 0);
  bool hasFixed = false, hasFree = false;
  for (std::size_t i = 0; i < isFixed.size(); ++i) {
    isFixed[i] = (!isPinned.empty() && isPinned[at(shell->uvs[i])]) ||
                 (options.pinBorder && shell->piece.border.has(static_cast<Index>(i)));
    (isFixed[i] ? hasFixed : hasFree) = true;
  }
  if (!hasFree || options.iterations == 0) return outcome;
  const bool startsAnew =
      !hasFixed && options.axes == UnfoldOptions::Axes::Both &&
      (options.iterations >= kFewIterations || !isUpright(shell->piece, shell->x));
  auto places = startsAnew ? unfoldAnew(*shell, options, outcome.iterations)
                           : continueShell(*shell, isFixed, options, outcome.iterations);
  // Where many parts of a border crowd each other on the coarse versions, sound UVs that are there
  // already are the better start.
  if (startsAnew && !isCancelled() && isUpright(shell->piece, shell->x) &&
      flat::BorderGuard(shell->piece.border, shell->x).isSimple() &&
      (!places || stretchOf(shell->piece, pointsOf(*places)) > stretchOf(shell->piece, shell->x)))
    if (auto again = continueShell(*shell, isFixed, options, outcome.iterations, true))
      places = std::move(again);
  if (!places) {
    outcome.reason = fmt::format("The UV shell of face {} was left as it was: {}.",
                                 maker.topology().faces.of(shellId)[0], places.error().message);
    return outcome;
  }
  outcome.uvs = std::move(shell->uvs);
  outcome.places = std::move(*places);
  for (std::size_t i = 0; i < isFixed.size(); ++i)
    if (isFixed[i])
      outcome.places[i] = {static_cast<float>(shell->x[i].x), static_cast<float>(shell->x[i].y)};
  return outcome;
}

}  // namespace

Result<UnfoldResult> unfoldUvs(mesh::Mesh& mesh, int uvSet, std::span<const Index> shells,
                               std::span<const std::uint8_t> isPinned,
                               const UnfoldOptions& options) {
  if (uvSet < 0 || uvSet >= mesh.uvSetCount())
    return fail(ErrorKind::NotFound, "There is no UV set {}.", uvSet);
  if (!isPinned.empty() && isPinned.size() != mesh.uvSet(uvSet).points.size())
    return fail("Pins are given for {} UVs, but the set has {}.", isPinned.size(),
                mesh.uvSet(uvSet).points.size());
  if (options.iterations < 0)
    return fail(ErrorKind::BadArgument, "Iterations must not be negative.");
  if (options.useScale && !(options.scale > 0 && std::isfinite(options.scale)))
    return fail(ErrorKind::BadArgument, "The scale must be above 0.");
  PieceMaker maker(mesh, uvSet);
  for (const Index s : shells)
    if (s < 0 || s >= maker.topology().shellCount)
      return fail(ErrorKind::NotFound, "There is no UV shell {}.", s);
  std::vector<ShellOutcome> outcomes(shells.size());
  std::atomic<std::size_t> next = 0;
  LongWork work("Unfolding", shells.size());
  const auto takeShells = [&] {
    for (std::size_t i; (i = next++) < shells.size() && !isCancelled();) {
      outcomes[i] = unfoldShell(maker, shells[i], isPinned, options);
      work.advance();
    }
  };
  std::vector<std::thread> threads;
  const std::size_t most =
      std::min<std::size_t>(std::thread::hardware_concurrency(), shells.size());
  for (std::size_t i = 1; i < most; ++i) threads.emplace_back(takeShells);
  takeShells();
  for (std::thread& thread : threads) thread.join();
  if (isCancelled()) return cancelled();
  UnfoldResult result;
  bool isChanged = false;
  for (ShellOutcome& outcome : outcomes) {
    result.iterations = std::max(result.iterations, outcome.iterations);
    if (!outcome.reason.empty())
      result.left.push_back(std::move(outcome.reason));
    else
      ++result.shells;
    isChanged = isChanged || !outcome.uvs.empty();
  }
  if (!isChanged) return result;
  std::vector<mesh::Vec2f>& points = mesh.editUvSet(uvSet).points;
  for (const ShellOutcome& outcome : outcomes)
    for (std::size_t i = 0; i < outcome.uvs.size(); ++i)
      points[at(outcome.uvs[i])] = outcome.places[i];
  return result;
}

}  // namespace host::ops
