#include "host/scene/component.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <iterator>

#include "host/scene/component_word.h"

namespace host::scene {

namespace {

constexpr std::array<std::string_view, 5> kWords = {"vtx", "e", "f", "map", "vtxFace"};

/// The most indices that one written range may stand for; more than any mesh that fits in memory
/// has.
constexpr std::int64_t kMostIndicesInWord = std::int64_t{1} << 26;

template <class T>
void sortUnique(std::vector<T>& values) {
  if (!std::is_sorted(values.begin(), values.end())) std::sort(values.begin(), values.end());
  values.erase(std::unique(values.begin(), values.end()), values.end());
}

template <class T>
void uniteInto(std::vector<T>& mine, const std::vector<T>& others) {
  std::vector<T> sum;
  sum.reserve(mine.size() + others.size());
  std::set_union(mine.begin(), mine.end(), others.begin(), others.end(), std::back_inserter(sum));
  mine = std::move(sum);
}

template <class T>
void subtractFrom(std::vector<T>& mine, const std::vector<T>& others) {
  std::vector<T> rest;
  std::set_difference(mine.begin(), mine.end(), others.begin(), others.end(),
                      std::back_inserter(rest));
  mine = std::move(rest);
}

template <class T>
void intersectInto(std::vector<T>& mine, const std::vector<T>& others) {
  std::vector<T> both;
  std::set_intersection(mine.begin(), mine.end(), others.begin(), others.end(),
                        std::back_inserter(both));
  mine = std::move(both);
}

}  // namespace

std::string_view componentWord(ComponentType type) {
  return kWords[static_cast<std::size_t>(type)];
}

bool parseComponentWord(std::string_view word, ComponentType& type) {
  const auto found = std::find(kWords.begin(), kWords.end(), word);
  if (found == kWords.end()) return false;
  type = static_cast<ComponentType>(found - kWords.begin());
  return true;
}

Component::Component(ComponentType type, std::vector<Index> indices)
    : type_(type), indices_(std::move(indices)) {
  sortUnique(indices_);
}

Component::Component(std::vector<VertexFace> pairs)
    : type_(ComponentType::VertexFace), pairs_(std::move(pairs)) {
  sortUnique(pairs_);
}

Component Component::all(ComponentType type) {
  Component component(type);
  component.complete_ = true;
  return component;
}

std::vector<Index> Component::expanded(Index count) const {
  if (!complete_) return indices_;
  std::vector<Index> every(at(std::max<Index>(count, 0)));
  for (std::size_t i = 0; i < every.size(); ++i) every[i] = static_cast<Index>(i);
  return every;
}

std::size_t Component::count(Index meshCount) const {
  return complete_ ? at(std::max<Index>(meshCount, 0)) : indices_.size() + pairs_.size();
}

bool Component::contains(Index index) const {
  return complete_ || std::binary_search(indices_.begin(), indices_.end(), index);
}

void Component::unite(const Component& other) {
  if (complete_ || other.complete_) {
    *this = all(type_);
    return;
  }
  uniteInto(indices_, other.indices_);
  uniteInto(pairs_, other.pairs_);
}

void Component::subtract(const Component& other, Index meshCount) {
  if (other.complete_) {
    *this = Component(type_);
    return;
  }
  if (complete_ && type_ != ComponentType::VertexFace) {
    indices_ = expanded(meshCount);
    complete_ = false;
  }
  subtractFrom(indices_, other.indices_);
  subtractFrom(pairs_, other.pairs_);
}

void Component::intersect(const Component& other, Index /*meshCount*/) {
  if (other.complete_) return;
  if (complete_) {
    *this = other;
    return;
  }
  intersectInto(indices_, other.indices_);
  intersectInto(pairs_, other.pairs_);
}

std::vector<std::string> Component::words() const {
  const std::string head = std::string(componentWord(type_)) + "[";
  if (complete_) return {head + (type_ == ComponentType::VertexFace ? "*][*]" : "*]")};
  std::vector<std::string> words;
  for (const VertexFace& pair : pairs_)
    words.push_back(head + std::to_string(pair.vertex) + "][" + std::to_string(pair.face) + "]");
  for (std::size_t i = 0; i < indices_.size();) {
    std::size_t end = i + 1;
    while (end < indices_.size() && indices_[end] == indices_[end - 1] + 1) ++end;
    std::string word = head + std::to_string(indices_[i]);
    if (end - i > 1) word += ":" + std::to_string(indices_[end - 1]);
    words.push_back(word + "]");
    i = end;
  }
  return words;
}

namespace {

bool parseIndex(std::string_view text, Index& index) {
  const char* end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, index);
  return error == std::errc() && stop == end && index >= 0;
}

bool parseRange(std::string_view text, IndexRange& range) {
  range = {};
  if (text == "*") return true;
  const std::size_t colon = text.find(':');
  if (colon == std::string_view::npos) {
    if (!parseIndex(text, range.first)) return false;
    range.last = range.first;
    return true;
  }
  // Either end of a range may be left open in scripts: "[:5]", "[3:*]" reach to the first and last
  // component.
  const std::string_view low = text.substr(0, colon), high = text.substr(colon + 1);
  if (!low.empty() && !parseIndex(low, range.first)) return false;
  if (high.empty() || high == "*") return low.empty() || range.first == 0;
  if (!parseIndex(high, range.last)) return false;
  if (range.last < range.first) std::swap(range.first, range.last);
  return true;
}

std::int64_t length(const IndexRange& range) {
  return std::int64_t{range.last} - range.first + 1;
}

}  // namespace

Result<ComponentWord> splitComponentWord(std::string_view word) {
  ComponentWord parsed;
  const std::size_t bracket = word.find('[');
  if (!parseComponentWord(word.substr(0, bracket), parsed.type))
    return fail(ErrorKind::BadArgument, "'{}' is not a mesh component", word);
  std::size_t at = bracket;
  while (at < word.size()) {
    const std::size_t close = word.find(']', at);
    IndexRange range;
    if (word[at] != '[' || close == std::string_view::npos ||
        !parseRange(word.substr(at + 1, close - at - 1), range))
      return fail(ErrorKind::BadArgument, "'{}' has an index that is not a number or a range",
                  word);
    parsed.ranges.push_back(range);
    at = close + 1;
  }
  if (parsed.type == ComponentType::VertexFace && parsed.ranges.size() % 2 != 0)
    return fail(ErrorKind::BadArgument, "'{}' needs a vertex and a face index", word);
  return parsed;
}

Result<Component> parseComponent(std::string_view word) {
  const auto parsed = splitComponentWord(word);
  if (!parsed) return failWith(parsed.error());
  const std::vector<IndexRange>& ranges = parsed->ranges;
  if (ranges.empty()) return Component::all(parsed->type);
  if (parsed->type == ComponentType::VertexFace) {
    std::vector<Component::VertexFace> pairs;
    for (std::size_t i = 0; i + 1 < ranges.size(); i += 2) {
      if (ranges[i].isAll() && ranges[i + 1].isAll()) return Component::all(parsed->type);
      if (ranges[i].isAll() || ranges[i + 1].isAll())
        return fail(ErrorKind::BadArgument, "'{}': give both indices, or '*' for both", word);
      if (length(ranges[i]) > kMostIndicesInWord / length(ranges[i + 1]))
        return fail(ErrorKind::BadArgument, "'{}' stands for more components than a mesh can have",
                    word);
      for (std::int64_t v = ranges[i].first; v <= ranges[i].last; ++v)
        for (std::int64_t f = ranges[i + 1].first; f <= ranges[i + 1].last; ++f)
          pairs.push_back({static_cast<Index>(v), static_cast<Index>(f)});
    }
    return Component(std::move(pairs));
  }
  std::vector<Index> indices;
  for (const IndexRange& range : ranges) {
    if (range.isAll()) return Component::all(parsed->type);
    if (length(range) + static_cast<std::int64_t>(indices.size()) > kMostIndicesInWord)
      return fail(ErrorKind::BadArgument, "'{}' stands for more components than a mesh can have",
                  word);
    for (std::int64_t i = range.first; i <= range.last; ++i)
      indices.push_back(static_cast<Index>(i));
  }
  return Component(parsed->type, std::move(indices));
}

bool ComponentListData::equals(const dg::Data& other) const {
  const auto* same = dynamic_cast<const ComponentListData*>(&other);
  return same && same->value == value;
}

std::uint64_t ComponentListData::hash() const {
  std::uint64_t result = value.size();
  for (const Component& each : value) {
    const std::uint8_t head[] = {static_cast<std::uint8_t>(each.type()), each.isComplete()};
    result = dg::hashBytes(head, sizeof head, result);
    result = dg::hashBytes(each.indices().data(), each.indices().size_bytes(), result);
    result = dg::hashBytes(each.pairs().data(), each.pairs().size_bytes(), result);
  }
  return result;
}

}  // namespace host::scene
