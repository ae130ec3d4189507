#include "host/ops/uv/layout.h"

#include <algorithm>
#include <map>

#include "host/ops/uv/layout_pack.h"
#include "host/ops/uv/uv_topology.h"

namespace host::ops {
namespace {

using flat::Point;

/// One shell, or several that lie on each other and move as one.
struct Group {
  struct Member {
    std::size_t part;
    Index shell;
  };
  std::vector<Member> members;
  std::vector<std::array<Point, 3>> triangles;
  Point low{1e300, 1e300}, high{-1e300, -1e300};
  double area = 0;     ///< signed, in UV
  double surface = 0;  ///< on the mesh
  bool isMirrored = false;
  double prescale = 1;
  [[nodiscard]] Point middle() const { return 0.5 * (low + high); }
};

/// Where the UVs of a group go: p -> turned and scaled by a matrix, then moved.
struct Move {
  double xx = 1, xy = 0, yx = 0, yy = 1;
  Point offset;
  [[nodiscard]] Point of(Point p) const {
    return {xx * p.x + xy * p.y + offset.x, yx * p.x + yy * p.y + offset.y};
  }
};

class Layout {
 public:
  Layout(std::span<const LayoutPart> parts, const LayoutOptions& options)
      : parts_(parts), options_(options) {}

  Result<LayoutResult> run() {
    HOST_TRY(gather());
    if (groups_.empty()) return LayoutResult{};
    if (options_.keepStacked) joinStacked();
    prepare();
    moves_.assign(groups_.size(), {});
    HOST_TRY(arrange());
    return write();
  }

 private:
  Result<void> gather() {
    for (std::size_t p = 0; p < parts_.size(); ++p) {
      const LayoutPart& part = parts_[p];
      topologies_.push_back(uvTopology(*part.mesh, part.uvSet));
      const UvTopology& topology = topologies_.back();
      const auto& points = part.mesh->uvSet(part.uvSet).points;
      for (const Index shell : part.shells) {
        if (shell < 0 || shell >= topology.shellCount)
          return fail(ErrorKind::NotFound, "There is no UV shell {}.", shell);
        for (const UvId uv : topology.uvs.of(shell))
          if (!std::isfinite(points[at(uv)].u) || !std::isfinite(points[at(uv)].v))
            return fail(ErrorKind::BadArgument,
                        "UV {} is not a number; give it a place before laying out.", uv);
        groups_.push_back(groupOf(p, shell));
      }
      for (const Index shell : part.standing) standing_.push_back({groupOf(p, shell).triangles});
    }
    return {};
  }

  [[nodiscard]] Group groupOf(std::size_t p, Index shell) const {
    const LayoutPart& part = parts_[p];
    const mesh::Mesh& mesh = *part.mesh;
    const mesh::UvSet& set = mesh.uvSet(part.uvSet);
    const bool inWorld = options_.prescale == LayoutOptions::Prescale::World;
    Group group;
    group.members.push_back({p, shell});
    for (const FaceId f : topologies_[p].faces.of(shell)) {
      const CornerId first = mesh.firstCorner(f);
      const auto uv = [&](Index k) {
        const mesh::Vec2f& q = set.points[at(set.cornerIds[first + k])];
        return Point{q.u, q.v};
      };
      const auto place = [&](Index k) {
        const mesh::Vec3 q = mesh.point(mesh.cornerVertex(first + k));
        return inWorld ? math::transformPoint(q, part.world) : q;
      };
      const auto add = [&](Index a, Index b, Index c) {
        group.triangles.push_back({uv(a), uv(b), uv(c)});
        group.area += 0.5 * flat::doubleArea(uv(a), uv(b), uv(c));
        if (options_.prescale != LayoutOptions::Prescale::None)
          group.surface +=
              0.5 * math::length(math::cross(place(b) - place(a), place(c) - place(a)));
      };
      // Chords halve a long loop again and again: its triangles are compact then, where those of a
      // fan would all be long.
      const auto split = [&](auto&& self, Index from, Index to) -> void {
        if (to - from < 2) return;
        const Index middle = from + (to - from) / 2;
        add(from, middle, to);
        self(self, from, middle);
        self(self, middle, to);
      };
      constexpr Index kLongLoop = 16;
      if (mesh.faceSize(f) > kLongLoop) {
        split(split, 0, mesh.faceSize(f) - 1);
        continue;
      }
      for (Index k = 1; k + 1 < mesh.faceSize(f); ++k) add(0, k, k + 1);
    }
    measure(group);
    return group;
  }

  static void measure(Group& group) {
    group.low = {1e300, 1e300};
    group.high = {-1e300, -1e300};
    for (const auto& t : group.triangles)
      for (const Point& q : t) {
        group.low = {std::min(group.low.x, q.x), std::min(group.low.y, q.y)};
        group.high = {std::max(group.high.x, q.x), std::max(group.high.y, q.y)};
      }
  }

  /// Shells count as stacked when their boxes and areas agree to a thousandth of their size.
  void joinStacked() {
    std::vector<Group> joined;
    std::map<std::array<long long, 2>, std::vector<std::size_t>> near;
    for (Group& group : groups_) {
      const double size = std::max({group.high.x - group.low.x, group.high.y - group.low.y, 1e-12});
      const auto isLike = [&](const Group& other) {
        const Point a = group.low - other.low, b = group.high - other.high;
        return std::max({std::abs(a.x), std::abs(a.y), std::abs(b.x), std::abs(b.y)}) <=
                   1e-3 * size &&
               std::abs(std::abs(group.area) - std::abs(other.area)) <= 1e-2 * size * size;
      };
      const auto cell = [](double x) { return static_cast<long long>(std::floor(x * 64)); };
      const std::array<long long, 2> key{cell(group.middle().x), cell(group.middle().y)};
      Group* home = nullptr;
      for (long long dy = -1; dy <= 1 && !home; ++dy)
        for (long long dx = -1; dx <= 1 && !home; ++dx)
          if (const auto found = near.find({key[0] + dx, key[1] + dy}); found != near.end())
            for (const std::size_t i : found->second)
              if (isLike(joined[i])) {
                home = &joined[i];
                break;
              }
      if (!home) {
        near[key].push_back(joined.size());
        joined.push_back(std::move(group));
        continue;
      }
      home->members.insert(home->members.end(), group.members.begin(), group.members.end());
      home->triangles.insert(home->triangles.end(), group.triangles.begin(), group.triangles.end());
    }
    groups_ = std::move(joined);
    for (Group& group : groups_) measure(group);
  }

  /// Mirrors reversed shells and gives all one scale on the surface, about their middles.
  void prepare() {
    double areas = 0, surfaces = 0;
    for (const Group& group : groups_) {
      areas += std::abs(group.area);
      surfaces += group.surface;
    }
    for (Group& group : groups_) {
      group.isMirrored = options_.flipReversed && group.area < 0;
      if (options_.prescale != LayoutOptions::Prescale::None && group.area != 0 && surfaces > 0)
        group.prescale = std::sqrt(group.surface / std::abs(group.area) * (areas / surfaces));
      const Point middle = group.middle();
      const double across = (group.isMirrored ? -1 : 1) * group.prescale;
      for (auto& t : group.triangles)
        for (Point& p : t)
          p = {middle.x + across * (p.x - middle.x), middle.y + group.prescale * (p.y - middle.y)};
      measure(group);
    }
  }

  [[nodiscard]] double gutter() const {
    return 0.01 * std::clamp(options_.percentageSpace, 0.0, 5.0);
  }

  Result<void> arrange() {
    std::vector<std::size_t> all(groups_.size());
    for (std::size_t i = 0; i < all.size(); ++i) all[i] = i;
    switch (options_.arrange) {
      case LayoutOptions::Arrange::None:
        fitAll(all, {0, 0});
        return {};
      case LayoutOptions::Arrange::AlongU:
        row(all);
        return {};
      case LayoutOptions::Arrange::Square:
        return pack(all, {options_.offsetU, options_.offsetV}, {options_.sizeU, options_.sizeV});
      case LayoutOptions::Arrange::Grid:
        return grid();
      case LayoutOptions::Arrange::NearestRegion:
        return tiles();
    }
    return {};
  }

  /// Without moving shells against each other: one scale and move for all, into the square.
  void fitAll(std::span<const std::size_t> which, Point) {
    if (options_.scale == LayoutOptions::Scale::None) return;
    Point low{1e300, 1e300}, high{-1e300, -1e300};
    for (const std::size_t i : which) {
      low = {std::min(low.x, groups_[i].low.x), std::min(low.y, groups_[i].low.y)};
      high = {std::max(high.x, groups_[i].high.x), std::max(high.y, groups_[i].high.y)};
    }
    Point scale = scaleInto(high - low);
    const Point origin{options_.offsetU + gutter() * options_.sizeU,
                       options_.offsetV + gutter() * options_.sizeV};
    for (const std::size_t i : which)
      moves_[i] = {
          scale.x, 0, 0, scale.y, {origin.x - scale.x * low.x, origin.y - scale.y * low.y}};
  }

  /// The factors that bring a box into the square, less the gaps at its edge.
  [[nodiscard]] Point scaleInto(Point box) const {
    const double room = 1 - 2 * gutter();
    const Point fit{room * options_.sizeU / std::max(box.x, 1e-12),
                    room * options_.sizeV / std::max(box.y, 1e-12)};
    if (options_.scale == LayoutOptions::Scale::Stretch) return fit;
    return {std::min(fit.x, fit.y), std::min(fit.x, fit.y)};
  }

  /// Side by side along u, in their order, scaled so that the row is as long as the square.
  void row(std::span<const std::size_t> which) {
    const double count = static_cast<double>(which.size());
    double widths = 0, height = 0;
    std::vector<bool> isTurned(groups_.size(), false);
    for (const std::size_t i : which) {
      const Point box = groups_[i].high - groups_[i].low;
      isTurned[i] = options_.turns != LayoutOptions::Turns::None && box.x > box.y;
      widths += isTurned[i] ? box.y : box.x;
      height = std::max(height, isTurned[i] ? box.x : box.y);
    }
    const double gaps = gutter() * options_.sizeU;
    Point scale{1, 1};
    if (options_.scale != LayoutOptions::Scale::None) {
      scale.x = std::max(0.05 * options_.sizeU, options_.sizeU - gaps * (count + 1)) /
                std::max(widths, 1e-12);
      scale.y = scale.x;
      if (options_.scale == LayoutOptions::Scale::Stretch)
        scale.y = (1 - 2 * gutter()) * options_.sizeV / std::max(height, 1e-12);
    }
    double u = options_.offsetU + gaps;
    const double v = options_.offsetV + gutter() * options_.sizeV;
    for (const std::size_t i : which) {
      const Group& g = groups_[i];
      // A quarter turn takes (x, y) to (-y, x).
      Move move =
          isTurned[i] ? Move{0, -scale.x, scale.y, 0, {}} : Move{scale.x, 0, 0, scale.y, {}};
      const Point corner = isTurned[i] ? Point{-scale.x * g.high.y, scale.y * g.low.x}
                                       : Point{scale.x * g.low.x, scale.y * g.low.y};
      move.offset = {u - corner.x, v - corner.y};
      moves_[i] = move;
      u += scale.x * (isTurned[i] ? g.high.y - g.low.y : g.high.x - g.low.x) + gaps;
    }
  }

  Result<void> pack(std::span<const std::size_t> which, Point origin, Point size) {
    std::vector<flat::PackShape> shapes;
    for (const std::size_t i : which) shapes.push_back({groups_[i].triangles});
    flat::PackOptions options;
    options.turns = static_cast<flat::PackOptions::Turns>(options_.turns);
    options.packsBoxes = options_.byBoxes;
    // Heights are 1 while packing; the gap is a part of the shorter side.
    const double side = size.y;
    options.width = size.x / side;
    options.gutter = gutter() * std::min(1.0, options.width);
    if (options_.scale == LayoutOptions::Scale::None) {
      options.scale = 1 / side;
    }
    for (const flat::PackShape& shape : standing_) {
      options.standing.push_back(shape);
      for (auto& t : options.standing.back().triangles)
        for (Point& p : t) p = (1 / side) * (p - origin);
    }
    auto packing = flat::packShapes(shapes, options);
    if (!packing) return failWith(packing.error());
    Point stretch{side, side};
    if (options_.scale == LayoutOptions::Scale::Stretch && standing_.empty())
      stretch = stretchOf(shapes, *packing, options, side);
    for (std::size_t k = 0; k < which.size(); ++k) {
      const flat::PackPlace& place = packing->places[k];
      const double s = packing->scale;
      moves_[which[k]] = {
          stretch.x * s * place.turn.x,
          -stretch.x * s * place.turn.y,
          stretch.y * s * place.turn.y,
          stretch.y * s * place.turn.x,
          {origin.x + stretch.x * place.offset.x, origin.y + stretch.y * place.offset.y}};
    }
    return {};
  }

  /// How a packing is stretched to reach the far edges.
  static Point stretchOf(std::span<const flat::PackShape> shapes, const flat::Packing& packing,
                         const flat::PackOptions& options, double side) {
    Point far{0, 0};
    for (std::size_t i = 0; i < shapes.size(); ++i)
      for (const auto& t : shapes[i].triangles)
        for (const Point& p : t) {
          const Point q = packing.places[i].at(p, packing.scale);
          far = {std::max(far.x, q.x), std::max(far.y, q.y)};
        }
    return {side * (options.width - options.gutter) / far.x, side * (1 - options.gutter) / far.y};
  }

  /// Deals shells out to the cells by size, so that each cell gets some of every size.
  Result<void> grid() {
    const int across = std::max(1, options_.gridU), up = std::max(1, options_.gridV);
    std::vector<std::size_t> order(groups_.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) {
      return std::abs(groups_[a].area) > std::abs(groups_[b].area);
    });
    const std::size_t cells = at(across) * at(up);
    const Point size{options_.sizeU / across, options_.sizeV / up};
    for (std::size_t c = 0; c < cells; ++c) {
      std::vector<std::size_t> mine;
      for (std::size_t i = c; i < order.size(); i += cells) mine.push_back(order[i]);
      if (mine.empty()) continue;
      const Point origin{options_.offsetU + size.x * static_cast<double>(c % at(across)),
                         options_.offsetV + size.y * static_cast<double>(c / at(across))};
      HOST_TRY(pack(mine, origin, size));
    }
    return {};
  }

  Result<void> tiles() {
    std::map<std::array<double, 2>, std::vector<std::size_t>> byTile;
    for (std::size_t i = 0; i < groups_.size(); ++i) {
      const Point m = groups_[i].middle();
      byTile[{std::floor(m.x), std::floor(m.y)}].push_back(i);
    }
    for (const auto& [tile, mine] : byTile) HOST_TRY(pack(mine, {tile[0], tile[1]}, {1, 1}));
    return {};
  }

  Result<LayoutResult> write() {
    LayoutResult result;
    std::vector<std::vector<mesh::Vec2f>> written(parts_.size());
    for (std::size_t p = 0; p < parts_.size(); ++p)
      written[p] = parts_[p].mesh->uvSet(parts_[p].uvSet).points;
    for (std::size_t i = 0; i < groups_.size(); ++i) {
      const Group& group = groups_[i];
      const Point middle = group.middle();
      const double across = (group.isMirrored ? -1 : 1) * group.prescale;
      const Move& move = moves_[i];
      const double grown = std::abs(move.xx * move.yy - move.xy * move.yx);
      result.coverage += grown * group.prescale * group.prescale * std::abs(group.area);
      result.flipped += group.isMirrored;
      for (const Group::Member& member : group.members) {
        ++result.shells;
        for (const UvId uv : topologies_[member.part].uvs.of(member.shell)) {
          mesh::Vec2f& q = written[member.part][at(uv)];
          const Point before{middle.x + across * (q.u - middle.x),
                             middle.y + group.prescale * (q.v - middle.y)};
          const Point now = move.of(before);
          q = {static_cast<float>(now.x), static_cast<float>(now.y)};
          if (!std::isfinite(q.u) || !std::isfinite(q.v))
            return fail("UV {} would leave the range of numbers.", uv);
        }
      }
    }
    result.coverage /= options_.sizeU * options_.sizeV;
    for (std::size_t p = 0; p < parts_.size(); ++p)
      if (written[p] != parts_[p].mesh->uvSet(parts_[p].uvSet).points)
        parts_[p].mesh->editUvSet(parts_[p].uvSet).points = std::move(written[p]);
    return result;
  }

  std::span<const LayoutPart> parts_;
  const LayoutOptions& options_;
  std::vector<UvTopology> topologies_;
  std::vector<Group> groups_;
  std::vector<flat::PackShape> standing_;
  std::vector<Move> moves_;
};

}  // namespace

Result<LayoutResult> layoutUvs(std::span<const LayoutPart> parts, const LayoutOptions& options) {
  for (const LayoutPart& part : parts)
    if (part.uvSet < 0 || part.uvSet >= part.mesh->uvSetCount())
      return fail(ErrorKind::NotFound, "There is no UV set {}.", part.uvSet);
  if (!(options.sizeU > 0) || !(options.sizeV > 0))
    return fail("The area to fill must have a size above 0.");
  return Layout(parts, options).run();
}

}  // namespace host::ops
