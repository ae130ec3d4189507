#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host::mel {

/// Looks among names for the one that a person most likely meant: differing in case alone, or by
/// one slip of the hand (two in names of eight letters or more), a slip being a letter too many,
/// too few, wrong, or two that changed places.
class NearestName {
 public:
  /// @param typed must outlive this
  explicit NearestName(std::string_view typed);
  void offer(std::string_view name);
  /// The nearest, of equals the first by the alphabet; empty when none is near.
  [[nodiscard]] const std::string& found() const { return found_; }

 private:
  std::size_t slipsTo(std::string_view name);

  std::string_view typed_;
  std::size_t least_;
  std::string found_;
  std::vector<std::size_t> before_, last_, row_;  ///< of the table of slips, as wide as a name
};

}  // namespace host::mel
