#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/dg/node.h"

namespace host::scene {

/// A name with its trailing number taken off: "pCube12" is "pCube", 12; "pCube007" remembers its
/// three digits.
struct NumberedName {
  std::string stem;
  std::int64_t number = 0;  ///< 0 when there is none
  std::size_t width = 0;    ///< digits to pad to; 0 unless the number starts with a zero
  bool hasNumber = false;
};
[[nodiscard]] NumberedName splitNumber(std::string_view name);
[[nodiscard]] std::string joinNumber(const NumberedName& name);

/// Makes a legal node name: characters other than letters, digits, '_' and ':' become '_', a
/// leading digit gets '_' before it.
[[nodiscard]] std::string legalName(std::string_view wanted);
/// The name a shape gets from its transform: "pCube1" makes "pCubeShape1".
[[nodiscard]] std::string shapeNameFor(std::string_view transformName);
/// The reverse, for a shape that comes without a transform; empty when the name is not of that
/// form.
[[nodiscard]] std::string transformNameFor(std::string_view shapeName);

/// Whether `text` matches a pattern of '*' and '?', neither of which crosses a ':'.
[[nodiscard]] bool matchesWildcard(std::string_view pattern, std::string_view text);
[[nodiscard]] inline bool hasWildcard(std::string_view text) {
  return text.find_first_of("*?") != std::string_view::npos;
}

/// Live nodes by name. Look-ups take constant time; so does finding the next free number of a stem.
class NameIndex {
 public:
  void add(dg::Node& node, const std::string& name);
  void remove(const dg::Node& node, const std::string& name);
  void clear();

  /// Nodes of exactly this name, in creation order.
  [[nodiscard]] const std::vector<dg::Node*>& named(std::string_view name) const;
  /// The first name from `start` on, counting up, that no node has (but perhaps `except`).
  [[nodiscard]] std::string firstFree(NumberedName start, const dg::Node* except) const;

 private:
  struct StringHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view s) const { return std::hash<std::string_view>{}(s); }
  };
  template <class T>
  using ByName = std::unordered_map<std::string, T, StringHash, std::equal_to<>>;

  [[nodiscard]] bool isFree(std::string_view name, const dg::Node* except) const;

  ByName<std::vector<dg::Node*>> nodes_;
  /// A stem (with its padding): every number from 1 up to, not including, this one is in use.
  mutable ByName<std::int64_t> usedBelow_;
};

}  // namespace host::scene
