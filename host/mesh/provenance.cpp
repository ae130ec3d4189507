#include "host/mesh/provenance.h"

#include <algorithm>

namespace host::mesh {

namespace {

thread_local ProvenanceTrail* current = nullptr;

bool haveSameFaces(const Mesh& a, const Mesh& b) {
  const auto& x = a.topology().cornerVertices;
  const auto& y = b.topology().cornerVertices;
  return (x.data() == y.data() && x.size() == y.size()) || &a.topology() == &b.topology();
}

/// One set's part in a stretch of pieces.
void takeStretch(const Origins::Stretch& stretch, std::span<const Index> ids,
                 std::vector<Index>& out) {
  if (stretch.source == kNone) return;
  const Index span = stretch.step == 1 ? stretch.count : 1;
  auto from = std::lower_bound(ids.begin(), ids.end(), stretch.source);
  const auto end = std::lower_bound(from, ids.end(), stretch.source + span);
  if (stretch.step == 0) {
    if (from != end)
      for (Index i = 0; i < stretch.count; ++i) out.push_back(stretch.first + i);
    return;
  }
  for (; from != end; ++from) out.push_back(stretch.first + *from - stretch.source);
}

/// The pieces that an operation added or took apart, sorted by where they come from, so that a set
/// can be met from whichever side is shorter.
class Pieces {
 public:
  explicit Pieces(std::span<const Origins::Stretch> stretches) {
    for (const Origins::Stretch& each : stretches)
      if (each.source != kNone) sorted_.push_back(each);
    std::stable_sort(sorted_.begin(), sorted_.end(),
                     [](const auto& a, const auto& b) { return a.source < b.source; });
    for (const Origins::Stretch& each : sorted_) {
      reach_.push_back(std::max(reach_.empty() ? 0 : reach_.back(), endOf(each)));
    }
  }

  void take(std::span<const Index> ids, std::vector<Index>& out) const {
    if (sorted_.empty() || ids.empty()) return;
    const auto first = std::lower_bound(ids.begin(), ids.end(), sorted_.front().source);
    const auto end = std::lower_bound(first, ids.end(), reach_.back());
    const std::span<const Index> within(first, end);
    if (within.size() > sorted_.size()) {
      for (const Origins::Stretch& piece : sorted_) takeStretch(piece, within, out);
      return;
    }
    // Few ids: look up the pieces of each. Pieces of one source stand together; longer runs may
    // begin before it.
    for (const Index id : within) {
      auto piece = std::upper_bound(sorted_.begin(), sorted_.end(), id,
                                    [](Index value, const auto& s) { return value < s.source; });
      while (piece != sorted_.begin()) {
        --piece;
        if (reach_[static_cast<std::size_t>(piece - sorted_.begin())] <= id) break;
        if (endOf(*piece) > id) takeStretch(*piece, std::span(&id, 1), out);
      }
    }
  }

 private:
  static Index endOf(const Origins::Stretch& each) {
    return each.source + (each.step == 1 ? each.count : 1);
  }
  std::vector<Origins::Stretch> sorted_;
  std::vector<Index> reach_;  ///< the farthest source of this one and all before it
};

}  // namespace

void Origins::addRun(Index source, Index count) {
  if (count <= 0) return;
  if (source == kNone) return addSame(kNone, count);
  if (!stretches_.empty()) {
    Stretch& last = stretches_.back();
    const bool goesOn = last.source != kNone && last.source + last.count == source &&
                        (last.step == 1 || last.count == 1);
    if (goesOn) {
      last.step = 1;
      last.count += count;
      size_ += count;
      return;
    }
  }
  stretches_.push_back({size_, count, source, 1});
  size_ += count;
}

void Origins::addSame(Index source, Index count) {
  if (count <= 0) return;
  if (count == 1 && source != kNone && !stretches_.empty() && stretches_.back().step == 1 &&
      stretches_.back().source != kNone &&
      stretches_.back().source + stretches_.back().count == source)
    return addRun(source, 1);
  if (!stretches_.empty()) {
    Stretch& last = stretches_.back();
    if (last.source == source && (last.step == 0 || last.count == 1)) {
      last.step = 0;
      last.count += count;
      size_ += count;
      return;
    }
  }
  stretches_.push_back({size_, count, source, count == 1 && source != kNone ? 1 : 0});
  size_ += count;
}

Origins Origins::identity(Index count) {
  Origins origins;
  origins.addRun(0, count);
  return origins;
}

Origins Origins::fromMap(IdView newIds, Index newCount) {
  std::vector<Index> sources(static_cast<std::size_t>(newCount), kNone);
  for (std::size_t old = newIds.size(); old-- > 0;)
    if (newIds[old] >= 0 && newIds[old] < newCount)
      sources[static_cast<std::size_t>(newIds[old])] = static_cast<Index>(old);
  Origins origins;
  for (const Index source : sources) origins.add(source);
  return origins;
}

Index Origins::at(Index id) const {
  if (id < 0 || id >= size_) return kNone;
  const auto after =
      std::upper_bound(stretches_.begin(), stretches_.end(), id,
                       [](Index value, const Stretch& each) { return value < each.first; });
  const Stretch& stretch = *std::prev(after);
  if (stretch.source == kNone) return kNone;
  return stretch.source + (stretch.step == 1 ? id - stretch.first : 0);
}

Origins Origins::after(const Origins& earlier) const {
  Origins result;
  for (const Stretch& each : stretches_) {
    if (each.source == kNone || each.step == 0) {
      result.addSame(each.source == kNone ? kNone : earlier.at(each.source), each.count);
      continue;
    }
    Index at = each.source;
    const Index end = std::min(each.source + each.count, earlier.size_);
    auto piece = std::upper_bound(earlier.stretches_.begin(), earlier.stretches_.end(), at,
                                  [](Index value, const Stretch& s) { return value < s.first; });
    if (piece != earlier.stretches_.begin()) --piece;
    for (; at < end && piece != earlier.stretches_.end(); ++piece) {
      const Index count = std::min(end, piece->first + piece->count) - at;
      if (piece->step == 1)
        result.addRun(piece->source == kNone ? kNone : piece->source + at - piece->first, count);
      else
        result.addSame(piece->source, count);
      at += count;
    }
    result.addSame(kNone, each.source + each.count - at);
  }
  return result;
}

Provenance Provenance::after(const Provenance& earlier) const {
  return {vertices.after(earlier.vertices), edges.after(earlier.edges), faces.after(earlier.faces)};
}

std::vector<CarriedIds> carryIds(const Origins& origins,
                                 std::span<const std::span<const Index>> sets) {
  std::vector<CarriedIds> carried(sets.size());
  std::span<const Origins::Stretch> rest = origins.stretches();
  // What stayed under its number comes first in nearly all operations, and is most of the mesh.
  Index stayed = 0;
  if (!rest.empty() && rest.front().source == 0 && rest.front().step == 1) {
    stayed = rest.front().count;
    rest = rest.subspan(1);
  }
  const Pieces pieces(rest);
  for (std::size_t i = 0; i < sets.size(); ++i) {
    std::vector<Index> more;
    pieces.take(sets[i], more);
    const auto kept = std::lower_bound(sets[i].begin(), sets[i].end(), stayed);
    if (more.empty() && kept == sets[i].end()) {
      carried[i].same = true;
      continue;
    }
    std::sort(more.begin(), more.end());
    carried[i].ids.assign(sets[i].begin(), kept);
    carried[i].ids.insert(carried[i].ids.end(), more.begin(), more.end());
  }
  return carried;
}

ProvenanceTrail::ProvenanceTrail(const Mesh& start) : start_(start), outer_(current) {
  current = this;
}

ProvenanceTrail::~ProvenanceTrail() {
  current = outer_;
  // Who followed from further out hears of it too.
  if (!outer_) return;
  for (Step& step : steps_) outer_->steps_.push_back(std::move(step));
}

bool ProvenanceTrail::isFollowed() {
  return current != nullptr;
}

void ProvenanceTrail::note(const Mesh& from, const Mesh& made, Provenance provenance) {
  if (current) current->steps_.push_back({from, made, std::move(provenance)});
}

std::optional<Provenance> ProvenanceTrail::to(const Mesh& mesh) const {
  if (haveSameFaces(mesh, start_))
    return Provenance{Origins::identity(mesh.vertexCount()), Origins::identity(mesh.edgeCount()),
                      Origins::identity(mesh.faceCount())};
  std::optional<Provenance> whole;
  const Mesh* at = &mesh;
  for (std::size_t i = steps_.size(); i-- > 0;) {
    if (!haveSameFaces(steps_[i].made, *at)) continue;
    whole = whole ? whole->after(steps_[i].provenance) : steps_[i].provenance;
    at = &steps_[i].from;
    if (haveSameFaces(*at, start_)) return whole;
  }
  return std::nullopt;
}

}  // namespace host::mesh
