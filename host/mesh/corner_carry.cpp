#include "host/mesh/corner_carry.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

namespace host::mesh {

namespace {

std::size_t at(Index i) {
  return static_cast<std::size_t>(i);
}

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

/// Carries one face-varying channel: values, and an id a corner.
template <class Value>
class ChannelCarrier {
 public:
  ChannelCarrier(const std::vector<Value>& values, const std::vector<Index>& ids,
                 const Topology& topology, const CornerSources& corners)
      : values_(values), ids_(ids), topology_(topology), corners_(corners) {}

  void run(bool wholeFacesOnly, std::vector<Value>& newValues, std::vector<Index>& newIds) {
    newIds.resize(corners_.size());
    for (std::size_t f = 0; f + 1 < topology_.faceOffsets.size(); ++f) {
      const std::size_t begin = at(topology_.faceOffsets[f]),
                        end = at(topology_.faceOffsets[f + 1]);
      bool isWhole = true;
      for (std::size_t c = begin; c < end && isWhole; ++c) isWhole = hasValue(c);
      for (std::size_t c = begin; c < end; ++c)
        newIds[c] = isWhole || !wholeFacesOnly ? resolve(c) : kNone;
    }
    compact(newValues, newIds);
  }

 private:
  struct Part {
    Index id;
    double weight;
  };
  struct Made {  // a blended value made at a vertex
    std::vector<Part> parts;
    Index id;
    Index older;
  };

  [[nodiscard]] bool hasValue(std::size_t corner) const {
    if (const CornerId s = corners_.single(corner); s != kNone) return ids_[at(s)] != kNone;
    return std::ranges::any_of(corners_.blend(corner), [this](const CornerWeight& part) {
      return ids_[at(part.corner)] != kNone;
    });
  }

  Index resolve(std::size_t corner) {
    if (const CornerId s = corners_.single(corner); s != kNone) return ids_[at(s)];
    collectParts(corners_.blend(corner));
    if (parts_.empty()) return kNone;
    if (parts_.size() == 1) return parts_[0].id;
    const auto [entry, isNew] =
        newestAtVertex_.try_emplace(topology_.cornerVertices[corner], kNone);
    for (Index m = entry->second; m != kNone; m = made_[at(m)].older)
      if (isSame(made_[at(m)].parts)) return made_[at(m)].id;
    Value sum = values_[at(parts_[0].id)];
    addScaled(sum, sum, parts_[0].weight - 1);
    for (std::size_t i = 1; i < parts_.size(); ++i)
      addScaled(sum, values_[at(parts_[i].id)], parts_[i].weight);
    const auto id = static_cast<Index>(values_.size() + blended_.size());
    blended_.push_back(sum);
    made_.push_back({parts_, id, entry->second});
    entry->second = static_cast<Index>(made_.size()) - 1;
    return id;
  }

  /// Adds up the weights of equal ids, in order of id, to a sum of one.
  void collectParts(std::span<const CornerWeight> blend) {
    parts_.clear();
    double total = 0;
    for (const CornerWeight& part : blend)
      if (const Index id = ids_[at(part.corner)]; id != kNone) {
        parts_.push_back({id, part.weight});
        total += part.weight;
      }
    std::ranges::stable_sort(parts_, {}, &Part::id);
    std::size_t kept = 0;
    for (std::size_t i = 0; i < parts_.size(); ++i) {
      if (kept > 0 && parts_[kept - 1].id == parts_[i].id)
        parts_[kept - 1].weight += parts_[i].weight;
      else
        parts_[kept++] = parts_[i];
    }
    parts_.resize(kept);
    for (Part& part : parts_)
      part.weight = total != 0 ? part.weight / total : 1.0 / static_cast<double>(kept);
  }

  [[nodiscard]] bool isSame(const std::vector<Part>& other) const {
    return std::ranges::equal(parts_, other, [](const Part& a, const Part& b) {
      return a.id == b.id && std::abs(a.weight - b.weight) < 1e-9;
    });
  }

  /// Drops values that lost their last corner and closes the gaps.
  void compact(std::vector<Value>& newValues, std::vector<Index>& newIds) const {
    std::vector<std::uint8_t> stays(values_.size() + blended_.size(), 1);
    for (Index id : ids_)
      if (id != kNone) stays[at(id)] = 0;
    for (Index id : newIds)
      if (id != kNone) stays[at(id)] = 1;
    std::vector<Index> map(stays.size(), kNone);
    newValues.reserve(stays.size());
    for (std::size_t i = 0; i < stays.size(); ++i) {
      if (!stays[i]) continue;
      map[i] = static_cast<Index>(newValues.size());
      newValues.push_back(i < values_.size() ? values_[i] : blended_[i - values_.size()]);
    }
    if (newValues.size() == stays.size()) return;
    for (Index& id : newIds)
      if (id != kNone) id = map[at(id)];
  }

  const std::vector<Value>& values_;
  const std::vector<Index>& ids_;
  const Topology& topology_;
  const CornerSources& corners_;
  std::vector<Value> blended_;
  std::vector<Made> made_;
  std::unordered_map<VertexId, Index> newestAtVertex_;
  std::vector<Part> parts_;
};

}  // namespace

void CornerSources::add(std::span<const CornerWeight> blend) {
  if (blend.size() <= 1) return add(blend.empty() ? kNone : blend[0].corner);
  sources_.push_back(-2 - (static_cast<Index>(blendOffsets_.size()) - 1));
  blendParts_.insert(blendParts_.end(), blend.begin(), blend.end());
  blendOffsets_.push_back(static_cast<Index>(blendParts_.size()));
}

std::span<const CornerWeight> CornerSources::blend(std::size_t corner) const {
  if (sources_[corner] > -2) return {};
  const std::size_t i = at(-2 - sources_[corner]);
  return {blendParts_.data() + blendOffsets_[i], blendParts_.data() + blendOffsets_[i + 1]};
}

UvSet carryUvSet(const UvSet& source, const Topology& topology, const CornerSources& corners) {
  UvSet out;
  out.name = source.name;
  if (source.cornerIds.empty())
    out.points = source.points;
  else
    ChannelCarrier(source.points, source.cornerIds, topology, corners)
        .run(true, out.points, out.cornerIds);
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
  out.normals.resize(corners.size());
  out.locked.resize(corners.size(), 0);
  for (std::size_t c = 0; c < corners.size(); ++c) {
    if (const CornerId s = corners.single(c); s != kNone) {
      out.normals[c] = source.normals[at(s)];
      out.locked[c] = source.locked[at(s)];
      continue;
    }
    const auto blend = corners.blend(c);
    Vec3 sum;
    bool isLocked = !blend.empty();
    for (const CornerWeight& part : blend) {
      isLocked = isLocked && source.locked[at(part.corner)];
      sum += Vec3(source.normals[at(part.corner)]) * part.weight;
    }
    if (!isLocked || lengthSquared(sum) == 0) continue;
    out.normals[c] = normalized(sum).toFloat();
    out.locked[c] = 1;
  }
  return out;
}

}  // namespace host::mesh
