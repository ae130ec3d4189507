#include "host/mesh/corner_carry.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include "host/base/cancel_poll.h"

namespace host::mesh {

namespace {

void addScaled(Vec2f& sum, const Vec2f& value, double weight) {
  sum.u = static_cast<float>(sum.u + value.u * weight);
  sum.v = static_cast<float>(sum.v + value.v * weight);
}

void addScaled(Color4f& sum, const Color4f& value, double weight) {
  sum.r = static_cast<float>(sum.r + value.r * weight);
  sum.g = static_cast<float>(sum.g + value.g * weight);
  sum.b = static_cast<float>(sum.b + value.b * weight);
  sum.a = static_cast<float>(sum.a + value.a * weight);
}

struct Part {
  Index id;
  double weight;
};

/// Adds up the weights of equal ids, in order of id, to a sum of one. Corners without a value don't
/// count.
template <class ValueId>
void collectParts(const std::vector<ValueId>& ids, std::span<const CornerWeight> blend,
                  std::vector<Part>& parts) {
  parts.clear();
  double total = 0;
  for (const CornerWeight& part : blend)
    if (const Index id = ids[at(part.corner)]; id != kNone) {
      parts.push_back({id, part.weight});
      total += part.weight;
    }
  std::ranges::stable_sort(parts, {}, &Part::id);
  std::size_t kept = 0;
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (kept > 0 && parts[kept - 1].id == parts[i].id)
      parts[kept - 1].weight += parts[i].weight;
    else
      parts[kept++] = parts[i];
  }
  parts.resize(kept);
  for (Part& part : parts)
    part.weight = total != 0 ? part.weight / total : 1.0 / static_cast<double>(kept);
}

/// At least one part.
template <class Value>
Value sumOf(const std::vector<Part>& parts, const std::vector<Value>& values) {
  Value sum = values[at(parts[0].id)];
  addScaled(sum, sum, parts[0].weight - 1);
  for (std::size_t i = 1; i < parts.size(); ++i)
    addScaled(sum, values[at(parts[i].id)], parts[i].weight);
  return sum;
}

/// Carries one face-varying channel: values, and an id a corner.
template <class Value, class ValueId>
class ChannelCarrier {
 public:
  ChannelCarrier(const std::vector<Value>& values, const std::vector<ValueId>& ids,
                 const Topology& topology, const CornerSources& corners)
      : values_(values), ids_(ids), topology_(topology), corners_(corners) {}

  /// @param became gets the map of old values to new ones, unless all stay
  void run(bool wholeFacesOnly, std::vector<Value>& newValues, std::vector<ValueId>& newIds,
           PerElement<ValueId, ValueId>* became = nullptr) {
    newIds.reserve(corners_.size());
    std::size_t round = 0;
    for (const CornerSources::Stretch& stretch : corners_.stretches()) {
      pollCancel(round++);
      if (stretch.source != kNone)
        newIds.insert(newIds.end(), ids_.begin() + stretch.source,
                      ids_.begin() + stretch.source + stretch.count);
      else
        resolveFaces(stretch, wholeFacesOnly, newIds);
    }
    std::vector<ValueId> map = compact(newValues, newIds);
    if (!became) return;
    if (!map.empty()) map.resize(values_.size());  // the rest are new ones
    *became = std::move(map);
  }

 private:
  struct Made {  // a blended value made at a vertex
    std::vector<Part> parts;
    Index id;
    Index older;
  };

  // The stretch's corners are those of whole faces of the new mesh.
  void resolveFaces(const CornerSources::Stretch& stretch, bool wholeFacesOnly,
                    std::vector<ValueId>& newIds) {
    const auto& offsets = topology_.faceOffsets;
    const auto first = static_cast<CornerId>(newIds.size());
    auto end = std::upper_bound(offsets.begin(), offsets.end(), first);
    for (Index done = 0; done < stretch.count; ++end) {
      const Index count = *end - (first + done);
      const std::size_t listed = stretch.listed + at(done);
      bool isWhole = true;
      for (std::size_t k = 0; k < at(count) && isWhole; ++k) isWhole = hasValue(listed + k);
      for (std::size_t k = 0; k < at(count); ++k)
        newIds.push_back(isWhole || !wholeFacesOnly
                             ? resolve(listed + k, topology_.cornerVertices[newIds.size()])
                             : ValueId(kNone));
      done += count;
    }
  }

  [[nodiscard]] bool hasValue(std::size_t corner) const {
    if (const CornerId s = corners_.single(corner); s != kNone) return ids_[at(s)] != kNone;
    return std::ranges::any_of(corners_.blend(corner), [this](const CornerWeight& part) {
      return ids_[at(part.corner)] != kNone;
    });
  }

  ValueId resolve(std::size_t corner, VertexId vertex) {
    if (const CornerId s = corners_.single(corner); s != kNone) return ids_[at(s)];
    collectParts(ids_, corners_.blend(corner), parts_);
    if (parts_.empty()) return kNone;
    if (parts_.size() == 1) return parts_[0].id;
    const auto [entry, isNew] = newestAtVertex_.try_emplace(vertex, kNone);
    for (Index m = entry->second; m != kNone; m = made_[at(m)].older)
      if (isSame(made_[at(m)].parts)) return made_[at(m)].id;
    const auto id = static_cast<Index>(values_.size() + blended_.size());
    blended_.push_back(sumOf(parts_, values_));
    made_.push_back({parts_, id, entry->second});
    entry->second = static_cast<Index>(made_.size()) - 1;
    return id;
  }

  [[nodiscard]] bool isSame(const std::vector<Part>& other) const {
    return std::ranges::equal(parts_, other, [](const Part& a, const Part& b) {
      return a.id == b.id && std::abs(a.weight - b.weight) < 1e-9;
    });
  }

  /// Drops values that lost their last corner and closes the gaps. @return what each became; empty
  /// when all stay
  std::vector<ValueId> compact(std::vector<Value>& newValues, std::vector<ValueId>& newIds) const {
    std::vector<std::uint8_t> stays(values_.size() + blended_.size(), 1);
    markStaying(stays, newIds);
    newValues.reserve(stays.size());
    if (std::find(stays.begin(), stays.end(), std::uint8_t{0}) == stays.end()) {
      newValues.insert(newValues.end(), values_.begin(), values_.end());
      newValues.insert(newValues.end(), blended_.begin(), blended_.end());
      return {};
    }
    std::vector<ValueId> map(stays.size(), kNone);
    for (std::size_t i = 0; i < stays.size(); ++i) {
      pollCancel(i);
      if (!stays[i]) continue;
      map[i] = static_cast<Index>(newValues.size());
      newValues.push_back(i < values_.size() ? values_[i] : blended_[i - values_.size()]);
    }
    for (ValueId& id : newIds)
      if (id != kNone) id = map[at(id)];
    return map;
  }

  // Only what hangs on corners that no run copies can lose its last corner.
  void markStaying(std::vector<std::uint8_t>& stays, const std::vector<ValueId>& newIds) const {
    const auto sourceCorners = static_cast<Index>(ids_.size());
    const auto forEachOldId = [&](auto visit) {
      corners_.forEachGap(sourceCorners, [&](CornerId first, CornerId end) {
        for (CornerId c = first; c < end; ++c)
          if (ids_[at(c)] != kNone) visit(ids_[at(c)]);
      });
    };
    forEachOldId([&](Index id) { stays[at(id)] = 0; });
    std::size_t corner = 0;
    for (const CornerSources::Stretch& stretch : corners_.stretches()) {
      if (stretch.source == kNone)
        for (std::size_t c = corner; c < corner + at(stretch.count); ++c)
          if (newIds[c] != kNone) stays[at(newIds[c])] = 1;
      corner += at(stretch.count);
    }
    bool isAnyOpen = false;
    forEachOldId([&](Index id) { isAnyOpen |= stays[at(id)] == 0; });
    if (!isAnyOpen) return;
    for (const CornerSources::Stretch& stretch : corners_.stretches())
      if (stretch.source != kNone)
        for (CornerId c = stretch.source; c < stretch.source + stretch.count; ++c)
          if (ids_[at(c)] != kNone) stays[at(ids_[at(c)])] = 1;
  }

  const std::vector<Value>& values_;
  const std::vector<ValueId>& ids_;
  const Topology& topology_;
  const CornerSources& corners_;
  std::vector<Value> blended_;
  std::vector<Made> made_;
  std::unordered_map<VertexId, Index> newestAtVertex_;
  std::vector<Part> parts_;
};

}  // namespace

void CornerSources::addSingle(Index source) {
  if (stretches_.empty() || stretches_.back().source != kNone)
    stretches_.push_back({kNone, sources_.size(), 0});
  ++stretches_.back().count;
  ++size_;
  sources_.push_back(source);
}

void CornerSources::addRun(CornerId first, Index count) {
  if (!stretches_.empty() && stretches_.back().source != kNone &&
      stretches_.back().source + stretches_.back().count == first)
    stretches_.back().count += count;
  else if (count > 0)
    stretches_.push_back({first, 0, count});
  size_ += at(count);
}

void CornerSources::add(std::span<const CornerWeight> blend) {
  if (blend.size() <= 1) return add(blend.empty() ? kNone : blend[0].corner);
  addSingle(-2 - (static_cast<Index>(blendOffsets_.size()) - 1));
  blendParts_.insert(blendParts_.end(), blend.begin(), blend.end());
  blendOffsets_.push_back(static_cast<Index>(blendParts_.size()));
}

std::span<const CornerWeight> CornerSources::blend(std::size_t listed) const {
  if (sources_[listed] > -2) return {};
  const std::size_t i = at(-2 - sources_[listed]);
  return {blendParts_.data() + blendOffsets_[i], blendParts_.data() + blendOffsets_[i + 1]};
}

std::optional<Vec2f> blendedUv(const UvSet& source, std::span<const CornerWeight> blend) {
  static thread_local std::vector<Part> parts;
  collectParts(source.cornerIds, blend, parts);
  if (parts.empty()) return std::nullopt;
  return sumOf(parts, source.points);
}

UvSet carryUvSet(const UvSet& source, const Topology& topology, const CornerSources& corners,
                 PerElement<UvId, UvId>* became) {
  UvSet out;
  out.name = source.name;
  if (source.cornerIds.empty())
    out.points = source.points;
  else
    ChannelCarrier(source.points, source.cornerIds, topology, corners)
        .run(true, out.points, out.cornerIds, became);
  return out;
}

ColorSet carryColorSet(const ColorSet& source, const Topology& topology,
                       const CornerSources& corners) {
  ColorSet out;
  out.name = source.name;
  out.representation = source.representation;
  out.clamped = source.clamped;
  if (source.cornerIds.empty())
    out.colors = source.colors;
  else
    ChannelCarrier(source.colors, source.cornerIds, topology, corners)
        .run(false, out.colors, out.cornerIds);
  return out;
}

LockedNormals carryLockedNormals(const LockedNormals& source, const CornerSources& corners) {
  LockedNormals out;
  if (source.locked.empty()) return out;
  out.normals.reserve(corners.size());
  out.locked.reserve(corners.size());
  const auto add = [&out](const Vec3f& normal, std::uint8_t locked) {
    out.normals.push_back(normal);
    out.locked.push_back(locked);
  };
  const auto addListed = [&](std::size_t c) {
    if (const CornerId s = corners.single(c); s != kNone)
      return add(source.normals[at(s)], source.locked[at(s)]);
    const auto blend = corners.blend(c);
    Vec3 sum;
    bool isLocked = !blend.empty();
    for (const CornerWeight& part : blend) {
      isLocked = isLocked && source.locked[at(part.corner)];
      sum += Vec3(source.normals[at(part.corner)]) * part.weight;
    }
    if (!isLocked || lengthSquared(sum) == 0) return add({}, 0);
    add(normalized(sum).toFloat(), 1);
  };
  for (const CornerSources::Stretch& stretch : corners.stretches()) {
    for (Index k = 0; k < stretch.count; ++k)
      if (stretch.source != kNone)
        add(source.normals[at(stretch.source + k)], source.locked[at(stretch.source + k)]);
      else
        addListed(stretch.listed + at(k));
  }
  return out;
}

}  // namespace host::mesh
