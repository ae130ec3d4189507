#include "host/scene/lattice_points.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "host/dg/graph.h"

namespace host::scene {

namespace {

struct Range {
  Index first = 0, last = 0;
};

std::string bracket(const Range& range) {
  return range.first == range.last ? fmt::format("[{}]", range.first)
                                   : fmt::format("[{}:{}]", range.first, range.last);
}

/// The text of a bracket as a range of `count` points.
bool readRange(std::string_view text, Index count, Range& range) {
  if (text == "*") {
    range = {0, count - 1};
    return true;
  }
  const auto number = [](std::string_view word, Index& value) {
    const auto read = std::from_chars(word.data(), word.data() + word.size(), value);
    return read.ec == std::errc() && read.ptr == word.data() + word.size() && value >= 0;
  };
  const std::size_t colon = text.find(':');
  if (!number(text.substr(0, colon), range.first)) return false;
  range.last = range.first;
  return colon == std::string_view::npos ||
         (number(text.substr(colon + 1), range.last) && range.first <= range.last);
}

}  // namespace

std::optional<std::array<Index, 3>> latticeDivisions(dg::Node& shape) {
  if (!shape.type().isA("lattice")) return std::nullopt;
  std::array<Index, 3> divisions{};
  constexpr const char* kNames[] = {"sDivisions", "tDivisions", "uDivisions"};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const auto value = shape.graph().get(shape.plug(kNames[axis]));
    const auto* number = value ? std::get_if<std::int64_t>(&*value) : nullptr;
    divisions[axis] = number ? static_cast<Index>(std::clamp<std::int64_t>(*number, 2, 100)) : 2;
  }
  return divisions;
}

bool isLatticeWord(std::string_view word) {
  return word.substr(0, word.find('[')) == "pt";
}

Result<Component> parseLatticePoints(std::string_view word, const std::array<Index, 3>& divisions) {
  std::array<Range, 3> box;
  for (std::size_t axis = 0; axis < 3; ++axis) box[axis] = {0, divisions[axis] - 1};
  std::string_view rest = word.substr(2);
  for (std::size_t axis = 0; axis < 3 && !rest.empty(); ++axis) {
    const std::size_t end = rest.find(']');
    if (rest.front() != '[' || end == std::string_view::npos ||
        !readRange(rest.substr(1, end - 1), divisions[axis], box[axis]))
      return fail("'{}' does not name points of a lattice", word);
    rest.remove_prefix(end + 1);
  }
  if (!rest.empty()) return fail("'{}' does not name points of a lattice", word);
  std::vector<Index> points;
  for (Index u = box[2].first; u <= std::min(box[2].last, divisions[2] - 1); ++u)
    for (Index t = box[1].first; t <= std::min(box[1].last, divisions[1] - 1); ++t)
      for (Index s = box[0].first; s <= std::min(box[0].last, divisions[0] - 1); ++s)
        points.push_back((u * divisions[1] + t) * divisions[0] + s);
  return Component(ComponentType::Vertex, std::move(points));
}

std::vector<std::string> latticeWords(const Component& points,
                                      const std::array<Index, 3>& divisions) {
  const std::vector<Index> all = points.expanded(divisions[0] * divisions[1] * divisions[2]);
  if (all.empty()) return {};
  const auto placeOf = [&](Index point) {
    const Index row = point / divisions[0];
    return std::array<Index, 3>{point % divisions[0], row % divisions[1], row / divisions[1]};
  };
  std::array<Range, 3> box;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const Index first = placeOf(all.front())[axis];
    box[axis] = {first, first};
    for (const Index point : all) {
      box[axis].first = std::min(box[axis].first, placeOf(point)[axis]);
      box[axis].last = std::max(box[axis].last, placeOf(point)[axis]);
    }
  }
  std::size_t inBox = 1;
  for (const Range& range : box) inBox *= static_cast<std::size_t>(range.last - range.first + 1);
  if (inBox == all.size()) return {"pt" + bracket(box[0]) + bracket(box[1]) + bracket(box[2])};
  std::vector<std::string> words;
  for (std::size_t i = 0; i < all.size();) {
    const auto at = placeOf(all[i]);
    std::size_t end = i + 1;
    while (end < all.size() && all[end] == all[end - 1] + 1 && placeOf(all[end])[1] == at[1] &&
           placeOf(all[end])[2] == at[2])
      ++end;
    const Range run{at[0], placeOf(all[end - 1])[0]};
    words.push_back(fmt::format("pt{}[{}][{}]", bracket(run), at[1], at[2]));
    i = end;
  }
  return words;
}

std::vector<std::string> flatLatticeWords(dg::Node& shape, const Component& component) {
  std::vector<std::string> words;
  const auto divisions = latticeDivisions(shape);
  if (!divisions || component.type() != ComponentType::Vertex) return words;
  for (const Index point : component.expanded((*divisions)[0] * (*divisions)[1] * (*divisions)[2]))
    for (std::string& word :
         latticeWords(Component(ComponentType::Vertex, std::vector<Index>{point}), *divisions))
      words.push_back(std::move(word));
  return words;
}

std::vector<std::string> componentWords(dg::Node& shape, const Component& component) {
  if (component.type() == ComponentType::Vertex)
    if (const auto divisions = latticeDivisions(shape)) return latticeWords(component, *divisions);
  return component.words();
}

}  // namespace host::scene
