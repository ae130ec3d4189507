#include "host/mesh/check.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>
#include <unordered_set>

#include "host/mesh/edge_table.h"

namespace host::mesh {

namespace {

bool isFinite(const Vec3f& p) {
  return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
}
bool isFinite(const Vec2f& p) {
  return std::isfinite(p.u) && std::isfinite(p.v);
}
bool isFinite(const Color4f& c) {
  return std::isfinite(c.r) && std::isfinite(c.g) && std::isfinite(c.b) && std::isfinite(c.a);
}

class Checker {
 public:
  explicit Checker(const Mesh& mesh) : mesh_(mesh), topology_(mesh.topology()) {}

  std::vector<std::string> run() {
    checkFinite("Point", mesh_.points());
    // What follows walks the loops, so it waits until they can be walked.
    if (checkLoops() && checkEdges()) {
      checkCornerEdges();
      checkFlags();
      checkUvSets();
      checkColorSets();
      checkLockedNormals();
    }
    return std::move(faults_);
  }

 private:
  static constexpr int kFaultsAKind = 10;

  /// Reports a fault unless its kind has been reported often enough.
  template <class... Args>
  void report(int& count, fmt::format_string<Args...> format, Args&&... args) {
    if (count++ < kFaultsAKind) faults_.push_back(fmt::format(format, std::forward<Args>(args)...));
  }

  template <class T>
  void checkFinite(std::string_view what, std::span<const T> values) {
    int bad = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
      if (!isFinite(values[i])) report(bad, "{} {} is not finite.", what, i);
  }

  bool checkSize(std::string_view what, std::size_t size, Index expected) {
    if (size == 0 || size == at(expected)) return true;
    faults_.push_back(fmt::format("{} has {} entries, not {}.", what, size, expected));
    return false;
  }

  bool checkLoops() {
    int bad = 0;
    const std::vector<CornerId>& offsets = topology_.faceOffsets;
    if (offsets.empty() || offsets.front() != 0 ||
        at(offsets.back()) != topology_.cornerVertices.size())
      report(bad, "The face offsets do not span the {} corners.", topology_.cornerVertices.size());
    if (topology_.cornerEdges.size() != topology_.cornerVertices.size())
      report(bad, "There are {} corner edges for {} corners.", topology_.cornerEdges.size(),
             topology_.cornerVertices.size());
    for (std::size_t f = 0; f + 1 < offsets.size(); ++f)
      if (offsets[f + 1] - offsets[f] < 3)
        report(bad, "Face {} has {} corners.", f, offsets[f + 1] - offsets[f]);
    for (std::size_t c = 0; c < topology_.cornerVertices.size(); ++c)
      if (!isIn(topology_.cornerVertices[c], mesh_.vertexCount()))
        report(bad, "Corner {} names vertex {} of {}.", c, topology_.cornerVertices[c],
               mesh_.vertexCount());
    return bad == 0;
  }

  bool checkEdges() {
    int bad = 0;
    std::vector<EdgeVertices> seen;
    seen.reserve(topology_.edges.size());
    EdgeTable table(seen, mesh_.vertexCount());
    for (std::size_t e = 0; e < topology_.edges.size(); ++e) {
      const auto [a, b] = topology_.edges[e];
      if (!isIn(a, mesh_.vertexCount()) || !isIn(b, mesh_.vertexCount())) {
        report(bad, "Edge {} joins vertices {} and {} of {}.", e, a, b, mesh_.vertexCount());
        return false;
      }
      if (a == b) report(bad, "Edge {} joins vertex {} to itself.", e, a);
      const EdgeId twin = table.find(a, b);
      if (twin != kNone) report(bad, "Edge {} repeats edge {}.", e, twin);
      table.add(a, b);
    }
    return true;
  }

  void checkCornerEdges() {
    int bad = 0, unused = 0;
    std::vector<std::uint8_t> used(topology_.edges.size(), 0);
    for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
      const auto loop = mesh_.faceVertices(f);
      const auto edges = mesh_.faceEdges(f);
      for (std::size_t i = 0; i < loop.size(); ++i) {
        const VertexId next = loop[i + 1 == loop.size() ? 0 : i + 1];
        if (!isIn(edges[i], mesh_.edgeCount())) {
          report(bad, "Face {} names edge {} of {}.", f, edges[i], mesh_.edgeCount());
          continue;
        }
        used[at(edges[i])] = 1;
        const EdgeVertices e = mesh_.edge(edges[i]);
        if (!(e == EdgeVertices{loop[i], next} || e == EdgeVertices{next, loop[i]}))
          report(bad, "Face {} walks from vertex {} to {} on edge {}, which joins {} and {}.", f,
                 loop[i], next, edges[i], e.a, e.b);
      }
    }
    for (std::size_t e = 0; e < used.size(); ++e)
      if (!used[e]) report(unused, "Edge {} has no face.", e);
  }

  void checkFlags() {
    checkSize("The edge smoothness array", mesh_.edgeSmooth().size(), mesh_.edgeCount());
    checkCreases("Edge", mesh_.creases().edges, mesh_.edgeCount());
    checkCreases("Vertex", mesh_.creases().vertices, mesh_.vertexCount());
    int bad = 0;
    FaceId previous = kNone;
    for (FaceId f : mesh_.invisibleFaces()) {
      if (!isIn(f, mesh_.faceCount()) || f <= previous)
        report(bad, "Invisible face {} after {} is out of order or range.", f, previous);
      previous = f;
    }
  }

  void checkCreases(std::string_view what, const std::vector<float>& values, Index expected) {
    checkSize(fmt::format("{} creases", what), values.size(), expected);
    int bad = 0;
    for (std::size_t i = 0; i < values.size(); ++i)
      if (!std::isfinite(values[i]) || values[i] < 0)
        report(bad, "{} {} has crease {}.", what, i, values[i]);
  }

  void checkName(std::string_view name, std::unordered_set<std::string_view>& names) {
    if (name.empty()) faults_.emplace_back("A set has no name.");
    if (!names.insert(name).second) faults_.push_back(fmt::format("Two sets are named {}.", name));
  }

  void checkIds(std::string_view set, IdView ids, std::size_t count) {
    int bad = 0;
    for (std::size_t c = 0; c < ids.size(); ++c)
      if (ids[c] < kNone || ids[c] >= static_cast<Index>(count))
        report(bad, "Set {} has id {} of {} at corner {}.", set, ids[c], count, c);
  }

  void checkUvSets() {
    std::unordered_set<std::string_view> names;
    if (!isIn(mesh_.currentUvSet(), mesh_.uvSetCount()))
      faults_.push_back(
          fmt::format("The current UV set is {} of {}.", mesh_.currentUvSet(), mesh_.uvSetCount()));
    for (int s = 0; s < mesh_.uvSetCount(); ++s) {
      const UvSet& set = mesh_.uvSet(s);
      checkName(set.name, names);
      checkFinite("UV", std::span(set.points));
      checkIds(set.name, set.cornerIds, set.points.size());
      if (!checkSize(fmt::format("UV set {}", set.name), set.cornerIds.size(), mesh_.cornerCount()))
        continue;
      if (set.cornerIds.empty()) continue;
      int bad = 0;
      for (FaceId f = 0; f < mesh_.faceCount(); ++f) {
        const std::span ids(set.cornerIds.data() + mesh_.firstCorner(f), at(mesh_.faceSize(f)));
        const auto without = std::ranges::count(ids, kNone);
        if (without != 0 && without != mesh_.faceSize(f))
          report(bad, "Face {} has UVs of set {} at some corners only.", f, set.name);
      }
    }
  }

  void checkColorSets() {
    std::unordered_set<std::string_view> names;
    const int current = mesh_.currentColorSet();
    if (current < kNone || current >= mesh_.colorSetCount())
      faults_.push_back(
          fmt::format("The current colour set is {} of {}.", current, mesh_.colorSetCount()));
    for (int s = 0; s < mesh_.colorSetCount(); ++s) {
      const ColorSet& set = mesh_.colorSet(s);
      checkName(set.name, names);
      checkFinite("Colour", std::span(set.colors));
      checkIds(set.name, set.cornerIds, set.colors.size());
      checkSize(fmt::format("Colour set {}", set.name), set.cornerIds.size(), mesh_.cornerCount());
    }
  }

  void checkLockedNormals() {
    const LockedNormals& locked = mesh_.lockedNormals();
    checkSize("The locked normals", locked.normals.size(), mesh_.cornerCount());
    if (locked.normals.size() != locked.locked.size())
      faults_.push_back(fmt::format("There are {} locked normals and {} lock flags.",
                                    locked.normals.size(), locked.locked.size()));
    checkFinite("Locked normal", std::span(locked.normals));
  }

  static bool isIn(Index i, Index count) { return i >= 0 && i < count; }

  const Mesh& mesh_;
  const Topology& topology_;
  std::vector<std::string> faults_;
};

}  // namespace

std::vector<std::string> check(const Mesh& mesh) {
  return Checker(mesh).run();
}

}  // namespace host::mesh
