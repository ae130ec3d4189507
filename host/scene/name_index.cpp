#include "host/scene/name_index.h"

#include <algorithm>
#include <charconv>

namespace host::scene {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isNameChar(char c) {
  return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':';
}
std::string stemKey(const NumberedName& name) {
  return name.stem + '#' + std::to_string(name.width);
}

}  // namespace

NumberedName splitNumber(std::string_view name) {
  std::size_t digits = 0;
  while (digits < name.size() && isDigit(name[name.size() - digits - 1])) ++digits;
  NumberedName result;
  // A number too long to count with is a part of the stem.
  if (digits == 0 || digits > 15) {
    result.stem = name;
    return result;
  }
  const std::string_view number = name.substr(name.size() - digits);
  result.stem = name.substr(0, name.size() - digits);
  std::from_chars(number.data(), number.data() + number.size(), result.number);
  result.width = number.front() == '0' ? digits : 0;
  result.hasNumber = true;
  return result;
}

std::string joinNumber(const NumberedName& name) {
  if (!name.hasNumber) return name.stem;
  std::string digits = std::to_string(name.number);
  if (digits.size() < name.width) digits.insert(0, name.width - digits.size(), '0');
  return name.stem + digits;
}

std::string legalName(std::string_view wanted) {
  std::string legal;
  while (!wanted.empty() && wanted.front() == ':') wanted.remove_prefix(1);
  // A namespace has a name, and so has what is in it.
  if (wanted.ends_with(':') || wanted.find("::") != std::string_view::npos) return {};
  for (const char c : wanted) {
    if (isDigit(c) && (legal.empty() || legal.back() == ':')) legal += '_';
    legal += isNameChar(c) ? c : '_';
  }
  return legal;
}

std::string shapeNameFor(std::string_view transformName) {
  NumberedName name = splitNumber(transformName);
  name.stem += "Shape";
  return joinNumber(name);
}

std::string transformNameFor(std::string_view shapeName) {
  NumberedName name = splitNumber(shapeName);
  if (!name.stem.ends_with("Shape") || name.stem.size() == 5) return {};
  name.stem.resize(name.stem.size() - 5);
  return joinNumber(name);
}

bool matchesWildcard(std::string_view pattern, std::string_view text) {
  std::size_t p = 0, t = 0, starAt = std::string_view::npos, starText = 0;
  while (t < text.size()) {
    if (p < pattern.size() && (pattern[p] == text[t] || (pattern[p] == '?' && text[t] != ':'))) {
      ++p;
      ++t;
    } else if (p < pattern.size() && pattern[p] == '*') {
      starAt = p++;
      starText = t;
    } else if (starAt != std::string_view::npos && text[starText] != ':') {
      p = starAt + 1;
      t = ++starText;
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == '*') ++p;
  return p == pattern.size();
}

void NameIndex::add(dg::Node& node, const std::string& name) {
  std::vector<dg::Node*>& bucket = nodes_[name];
  const auto later = [](const dg::Node* a, const dg::Node* b) { return a->serial() < b->serial(); };
  bucket.insert(std::upper_bound(bucket.begin(), bucket.end(), &node, later), &node);
}

void NameIndex::remove(const dg::Node& node, const std::string& name) {
  const auto bucket = nodes_.find(name);
  if (bucket == nodes_.end()) return;
  std::erase(bucket->second, &node);
  if (!bucket->second.empty()) return;
  nodes_.erase(bucket);
  const NumberedName parts = splitNumber(name);
  if (!parts.hasNumber) return;
  const auto used = usedBelow_.find(stemKey(parts));
  if (used != usedBelow_.end())
    used->second = std::min(used->second, std::max<std::int64_t>(parts.number, 1));
}

void NameIndex::clear() {
  nodes_.clear();
  usedBelow_.clear();
}

const std::vector<dg::Node*>& NameIndex::named(std::string_view name) const {
  static const std::vector<dg::Node*> none;
  const auto bucket = nodes_.find(name);
  return bucket == nodes_.end() ? none : bucket->second;
}

bool NameIndex::isFree(std::string_view name, const dg::Node* except) const {
  const std::vector<dg::Node*>& bucket = named(name);
  return bucket.empty() || (bucket.size() == 1 && bucket.front() == except);
}

std::string NameIndex::firstFree(NumberedName start, const dg::Node* except) const {
  start.hasNumber = true;
  if (except) {
    while (!isFree(joinNumber(start), except)) ++start.number;
    return joinNumber(start);
  }
  std::int64_t& usedBelow = usedBelow_.try_emplace(stemKey(start), 1).first->second;
  const bool fromTheFirst = start.number <= usedBelow;
  if (fromTheFirst) start.number = usedBelow;
  while (!isFree(joinNumber(start), nullptr)) ++start.number;
  if (fromTheFirst) usedBelow = start.number;
  return joinNumber(start);
}

}  // namespace host::scene
