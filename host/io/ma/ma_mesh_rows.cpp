#include "host/io/ma/ma_mesh_rows.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace host::io {
namespace {

// More sets than any mesh has; rows for all of them must not multiply a file into memory.
constexpr Index kMostSets = 256;

tl::unexpected<MaFault> faultAt(std::size_t offset, std::string reason) {
  return tl::unexpected<MaFault>(MaFault{offset, std::move(reason)});
}

std::string_view baseName(std::string_view path) {
  return path.substr(0, std::min(path.find_first_of("[."), path.size()));
}

bool isOneOf(std::string_view name, std::initializer_list<std::string_view> names) {
  return std::ranges::find(names, name) != names.end();
}

/// What stands after the name and the first bracket: "uvst[0].uvsp[1:2]" gives "uvsp[1:2]".
std::string_view childOf(std::string_view path) {
  const std::size_t dot = path.find('.');
  return dot == std::string_view::npos ? std::string_view() : path.substr(dot + 1);
}

/// "[3]" or "[3:7]" after a name; false when it is neither.
bool parseRange(std::string_view brackets, Index& first, Index& last) {
  if (brackets.size() < 3 || brackets.front() != '[' || brackets.back() != ']') return false;
  const char* end = brackets.data() + brackets.size() - 1;
  auto read = std::from_chars(brackets.data() + 1, end, first);
  if (read.ec != std::errc{}) return false;
  last = first;
  if (read.ptr < end && *read.ptr == ':') read = std::from_chars(read.ptr + 1, end, last);
  return read.ec == std::errc{} && read.ptr == end && first >= 0 && last >= first;
}

std::string_view firstText(const MaSetAttr& line) {
  return line.values.empty() ? std::string_view() : line.values.front().text;
}

}  // namespace

MaMeshRows::Kind MaMeshRows::kindOf(std::string_view path) {
  const std::string_view base = baseName(path);
  const std::string_view child = baseName(childOf(path));
  if (isOneOf(base, {"vt", "vrts", "ed", "edge", "n", "normals", "fc", "face"}) && child.empty())
    return Kind::Bulk;
  if (base == "uvst" || base == "uvSet") {
    if (isOneOf(child, {"uvsp", "uvSetPoints"})) return Kind::Bulk;
    return child.empty() || isOneOf(child, {"uvsn", "uvSetName"}) ? Kind::Values : Kind::None;
  }
  if (base == "clst" || base == "colorSet") {
    if (isOneOf(child, {"clsp", "colorSetPoints"})) return Kind::Bulk;
    return Kind::Values;
  }
  return isOneOf(base, {"cuvs", "currentUVSet", "ccls", "currentColorSet", "cd", "cvd", "hfd"})
             ? Kind::Values
             : Kind::None;
}

MaResult<MaMeshRows::Array*> MaMeshRows::arrayOf(std::size_t offset, std::string_view path,
                                                 std::string_view& brackets) {
  const std::string_view base = baseName(path);
  brackets = path.substr(base.size());
  if (isOneOf(base, {"vt", "vrts"})) return &points_;
  if (isOneOf(base, {"ed", "edge"})) return &edges_;
  if (isOneOf(base, {"n", "normals"})) return &normals_;
  if (isOneOf(base, {"fc", "face"})) return &faces_;
  const std::string_view child = childOf(path);
  brackets = child.substr(baseName(child).size());
  Index set = 0, last = 0;
  const std::size_t dot = path.find('.');
  if (!parseRange(path.substr(base.size(), dot - base.size()), set, last) || set != last)
    return faultAt(offset, fmt::format("'{}' does not say which set it belongs to", path));
  if (set >= kMostSets)
    return faultAt(offset, fmt::format("'{}': a mesh has {} sets at most", path, kMostSets));
  const auto count = at(set) + 1;
  if (base.front() == 'u') {
    if (uvSets_.size() < count) uvSets_.resize(count);
    return &uvSets_[count - 1].points;
  }
  if (colorSets_.size() < count) colorSets_.resize(count);
  return &colorSets_[count - 1].colors;
}

MaResult<void> MaMeshRows::addBulk(std::size_t offset, std::string_view path, std::int64_t declared,
                                   std::string_view body) {
  std::string_view brackets;
  const auto array = arrayOf(offset, path, brackets);
  if (!array) return tl::unexpected(array.error());
  isEmpty_ = false;
  if (declared >= 0) {
    (*array)->declared = declared;
    (*array)->declaredAt = offset;
  }
  if (brackets.empty()) {
    if (MaRow(body).isAtEnd()) return {};
    return faultAt(offset,
                   fmt::format("'{}' has values, but does not say of which elements", path));
  }
  Chunk chunk{.offset = offset, .body = body};
  if (!parseRange(brackets, chunk.first, chunk.last))
    return faultAt(offset, fmt::format("'{}' is no range of elements", path));
  (*array)->chunks.push_back(chunk);
  return {};
}

MaResult<void> MaMeshRows::addWeights(const MaSetAttr& line, std::string_view kind,
                                      std::vector<Weight>& weights) {
  // Index_Data <kind> <count> <id> <value> ...; faces come without values.
  const bool hasValues = kind != "Face";
  const std::vector<MaToken>& tokens = line.values;
  Index count = 0;
  if (tokens.size() < 3 || tokens[0].text != "Index_Data" || tokens[1].text != kind ||
      !MaRow(tokens[2].text).read(count) || count < 0)
    return faultAt(line.offset, fmt::format("'{}' does not begin with Index_Data {} and a count",
                                            line.path, kind));
  const std::size_t stride = hasValues ? 2 : 1;
  if (tokens.size() - 3 != at(count) * stride)
    return faultAt(line.offset, fmt::format("'{}' says {} components, but has {} numbers",
                                            line.path, count, tokens.size() - 3));
  for (std::size_t i = 3; i < tokens.size(); i += stride) {
    Weight weight{.offset = line.offset};
    if (!MaRow(tokens[i].text).read(weight.id) ||
        (hasValues && (!MaRow(tokens[i + 1].text).read(weight.value) || weight.value < 0)))
      return faultAt(line.offset,
                     fmt::format("'{}' is not a component and its value: '{} {}'", line.path,
                                 tokens[i].text, hasValues ? tokens[i + 1].text : ""));
    weights.push_back(weight);
  }
  return {};
}

MaResult<void> MaMeshRows::addValues(const MaSetAttr& line) {
  const std::string_view base = baseName(line.path);
  if (base == "cd") return addWeights(line, "Edge", edgeCreases_);
  if (base == "cvd") return addWeights(line, "Vertex", vertexCreases_);
  if (base == "hfd") return addWeights(line, "Face", hiddenFaces_);
  if (line.values.empty()) return {};
  isEmpty_ = false;
  if (isOneOf(base, {"cuvs", "currentUVSet"})) {
    currentUvSet_ = firstText(line);
    return {};
  }
  if (isOneOf(base, {"ccls", "currentColorSet"})) {
    currentColorSet_ = firstText(line);
    return {};
  }
  std::string_view brackets;
  const auto array = arrayOf(line.offset, line.path, brackets);
  if (!array) return tl::unexpected(array.error());
  const std::string_view child = baseName(childOf(line.path));
  if (base.front() == 'u') {
    for (UvSetRows& set : uvSets_)
      if (&set.points == *array) set.name = firstText(line);
    return {};
  }
  for (ColorSetRows& set : colorSets_) {
    if (&set.colors != *array) continue;
    if (isOneOf(child, {"clsn", "colorName"})) set.name = firstText(line);
    if (isOneOf(child, {"clam", "clamped"}))
      set.isClamped = isOneOf(firstText(line), {"yes", "on", "true", "1"});
    Index representation = 0;
    if (isOneOf(child, {"rprt", "representation"}) && MaRow(firstText(line)).read(representation) &&
        representation >= 1 && representation <= 4)
      set.representation = representation;
  }
  return {};
}

}  // namespace host::io
