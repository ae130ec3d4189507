#include "host/ops/uv/layout_settle.h"

#include <algorithm>
#include <cmath>

#include "host/base/cancel.h"
#include "host/ops/uv/layout_contacts.h"

namespace host::ops::flat {
namespace {

constexpr double kKept = 0.96;         ///< part of its speed that a body keeps from sweep to sweep
constexpr double kPressed = 0.5;       ///< part of the effort for the ceiling, the rest for growing
constexpr double kTolerance = 1.5e-3;  ///< depth of contacts that pressure keeps up, of a body
constexpr double kGrowth = 4e-5;       ///< greatest growth of the scale in a sweep
constexpr double kFreePace = 8;        ///< times as fast where there are hardly any contacts
constexpr int kMostLetGo = 3000;       ///< sweeps until what is left over is given up
constexpr int kSweepsListed = 8;       ///< sweeps from one look at all near edges to the next
constexpr double kLeastMass = 1e-3;    ///< of a mean body's, so that slivers don't fly

class Settling {
 public:
  Settling(std::span<const PackShape> shapes, const PackOptions& options, const Packing& start,
           std::uint64_t effort)
      : options_(options), effort_(effort), scale_(start.scale), height_(start.height) {
    double area = 0;
    for (const PackShape& shape : shapes) {
      bodies_.push_back(PackBody::of(shape));
      area += bodies_.back().area * scale_ * scale_;
    }
    moving_ = shapes.size();
    const double mean = area / static_cast<double>(shapes.size());
    size_ = std::sqrt(mean);
    slack_ = std::max(1.6e-4 * size_, 4e-6);
    gap_ = options.gutter + slack_;
    const bool turns = options.turns == PackOptions::Turns::Free;
    for (std::size_t i = 0; i < moving_; ++i) {
      PackBody& body = bodies_[i];
      // Between the masses of plates and those of equal bodies: large ones must give way too.
      body.ease = 1 / std::sqrt(std::max(body.area * scale_ * scale_, kLeastMass * mean));
      const double least = 0.01 * body.reach * body.reach;
      if (turns && body.reach > 0)
        body.turnEase = body.ease / (scale_ * scale_ * std::max(body.gyration, least));
      const PackPlace& place = start.places[i];
      poses_.push_back({place.at(body.centre, scale_), place.turn, scale_});
    }
    for (const PackShape& shape : options.standing) {
      bodies_.push_back(PackBody::of(shape));
      poses_.push_back({bodies_.back().centre, {1, 0}, 1});
    }
    before_ = poses_;
  }

  [[nodiscard]] std::optional<Packing> run() {
    for (const PackBody& body : bodies_)
      if (body.edges.empty()) return std::nullopt;
    list();
    if (options_.standing.empty()) {
      press();
      fit();
    }
    grow();
    if (!letGo()) return std::nullopt;
    Packing result;
    result.scale = scale_;
    for (std::size_t i = 0; i < moving_; ++i) {
      const Point centre = PackPlace{poses_[i].turn, {}}.at(bodies_[i].centre, scale_);
      result.places.push_back({poses_[i].turn, poses_[i].at - centre});
    }
    return result;
  }

 private:
  /// Brings the ceiling down as fast as the contacts can follow.
  void press() {
    const auto until = static_cast<std::uint64_t>(kPressed * static_cast<double>(effort_));
    while (spent_ < until && !isCancelled()) {
      step(kKept);
      height_ -= 6e-4 * size_ * room();
    }
  }

  /// Makes all smaller that stands too high; what is low has room to grow.
  void fit() {
    const double by = std::min(1.0, 1 / height_);
    height_ = 1;
    setScale(scale_ * by);
    for (PackPose& pose : poses_) pose.at = by * pose.at;
    before_ = poses_;
    list();
  }

  void grow() {
    while (spent_ < effort_ && !isCancelled()) {
      step(kKept);
      setScale(scale_ * (1 + kGrowth * room()));
    }
  }

  /// Shrinks by a hair at a time until every two outlines are apart, which is measured anew: what
  /// was resolved first may have been undone by what came later.
  [[nodiscard]] bool letGo() {
    int next = 0;
    for (int k = 0; k < kMostLetGo && !isCancelled(); ++k) {
      const double deepest = step(0.9 * kKept);
      setScale(scale_ * (1 - 6e-3 * std::clamp(depth_ / size_, 1e-6, 2e-3)));
      if (deepest > 0.5 * slack_ || k < next) continue;
      next = k + 20;
      if (areApart(bodies_, poses_, options_.gutter + 0.1 * slack_, options_.width, 1)) return true;
    }
    return false;
  }

  /// From 1 when all contacts are resolved, above where nothing touches yet, to -1.
  [[nodiscard]] double room() const {
    const double room = std::max(1 - depth_ / (kTolerance * size_), -1.0);
    return room > 0.98 ? kFreePace : room;
  }

  void setScale(double scale) {
    scale_ = scale;
    for (std::size_t i = 0; i < moving_; ++i) poses_[i].scale = scale;
  }

  /// Moves all bodies on and resolves every contact once.
  /// @return the deepest contact met
  double step(double kept) {
    const double fastest = 0.016 * size_;
    for (std::size_t i = 0; i < moving_; ++i) {
      const Point at = poses_[i].at;
      Point way = at - before_[i].at;
      if (const double far = length(way); far > fastest) way = (fastest / far) * way;
      poses_[i].at = at + kept * way;
      before_[i].at = at;
    }
    if (haveMovedFar()) list();
    if (sweepsSince_++ % kSweepsListed == 0) listNearest();
    double deepest = 0, squares = 0;
    const auto met = [&](double depth) {
      deepest = std::max(deepest, depth);
      squares += depth * depth;
    };
    for (const EdgePair& pair : nearest_) met(resolve(pair));
    for (std::size_t i = 0; i < moving_; ++i) met(resolveEdges(i));
    spent_ += nearest_.size() + bodies_.size();
    depth_ = 0.9 * depth_ + 0.1 * std::sqrt(squares / static_cast<double>(moving_));
    return deepest;
  }

  double resolve(const EdgePair& pair) {
    const PackBody &a = bodies_[pair.a], &b = bodies_[pair.b];
    const EdgeContact contact =
        contactOf(a.edges[pair.edgeA], poses_[pair.a], b.edges[pair.edgeB], poses_[pair.b], gap_);
    if (!(contact.depth > 0)) return 0;
    const double armA = cross(contact.at - poses_[pair.a].at, contact.normal);
    const double armB = cross(contact.at - poses_[pair.b].at, contact.normal);
    const double ease = a.ease + b.ease + a.turnEase * armA * armA + b.turnEase * armB * armB;
    const double depth = std::min(contact.depth, 2 * gap_ + 2e-3 * size_);
    const Point impulse = (depth / ease) * contact.normal;
    push(pair.a, -1.0 * impulse, contact.at);
    push(pair.b, impulse, contact.at);
    return contact.depth;
  }

  /// Keeps a body away from the edges of the area.
  double resolveEdges(std::size_t i) {
    const PackBody& body = bodies_[i];
    const double reach = scale_ * body.reach;
    double worst = 0;
    const auto keep = [&](Point inward, double limit) {
      if (dot(inward, poses_[i].at) - reach > limit) return;
      double least = 1e300;
      Point lowest;
      for (const PackBody::Edge& edge : body.edges) {
        const Point p = poses_[i].of(edge.from);
        if (dot(inward, p) >= least) continue;
        least = dot(inward, p);
        lowest = p;
      }
      const double depth = limit - least;
      if (!(depth > 0)) return;
      worst = std::max(worst, depth);
      const double arm = cross(lowest - poses_[i].at, inward);
      push(i, (depth / (body.ease + body.turnEase * arm * arm)) * inward, lowest);
    };
    keep({1, 0}, gap_);
    keep({-1, 0}, gap_ - options_.width);
    keep({0, 1}, gap_);
    keep({0, -1}, gap_ - height_);
    return worst;
  }

  void push(std::size_t i, Point impulse, Point at) {
    const PackBody& body = bodies_[i];
    PackPose& pose = poses_[i];
    const double spin = body.turnEase * cross(at - pose.at, impulse);
    pose.at = pose.at + body.ease * impulse;
    if (spin == 0) return;
    const Point turn{pose.turn.x - spin * pose.turn.y, pose.turn.y + spin * pose.turn.x};
    pose.turn = (1 / length(turn)) * turn;
  }

  [[nodiscard]] double margin() const { return 0.03 * size_; }

  [[nodiscard]] bool haveMovedFar() const {
    for (std::size_t i = 0; i < moving_; ++i) {
      const PackPose &now = poses_[i], &then = listed_[i];
      const double swing = now.scale * bodies_[i].reach * length(now.turn - then.turn);
      const double grown = bodies_[i].reach * std::abs(now.scale - then.scale);
      if (length(now.at - then.at) + swing + grown > 0.5 * margin()) return true;
    }
    return false;
  }

  void list() {
    listed_ = poses_;
    pairs_ = nearEdges(bodies_, poses_, gap_ + margin(), spent_);
    spent_ += pairs_.size();
    sweepsSince_ = 0;
  }

  /// Of the listed pairs those that may touch within the next sweeps.
  void listNearest() {
    nearest_.clear();
    for (const EdgePair& p : pairs_)
      if (contactOf(bodies_[p.a].edges[p.edgeA], poses_[p.a], bodies_[p.b].edges[p.edgeB],
                    poses_[p.b], gap_ + 5e-3 * size_)
              .depth > 0)
        nearest_.push_back(p);
    spent_ += pairs_.size();
  }

  const PackOptions& options_;
  std::uint64_t effort_, spent_ = 0;
  std::vector<PackBody> bodies_;  ///< those of the shapes, then what is standing
  std::vector<PackPose> poses_, before_, listed_;
  std::vector<EdgePair> pairs_, nearest_;
  std::size_t moving_ = 0;
  double scale_, height_;
  double size_ = 1;   ///< of a mean body: side of a square of its area
  double slack_ = 0;  ///< by how much contacts are kept beyond the gutter
  double gap_ = 0;
  double depth_ = 0;  ///< of contacts, root of the mean square a body, over the last sweeps
  int sweepsSince_ = 0;
};

}  // namespace

std::optional<Packing> settled(std::span<const PackShape> shapes, const PackOptions& options,
                               const Packing& start, std::uint64_t effort) {
  if (shapes.empty()) return std::nullopt;
  return Settling(shapes, options, start, effort).run();
}

}  // namespace host::ops::flat
