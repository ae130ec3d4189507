#pragma once

#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "host/base/result.h"

namespace host::cmd {

/// Named preference values that outlive the scene and, when saved, the program.
class OptionVars {
 public:
  using Value = std::variant<int, double, std::string, std::vector<int>, std::vector<double>,
                             std::vector<std::string>>;

  void set(const std::string& name, Value value) { values_[name] = std::move(value); }
  /// Appends to the array of that name; one value there before, or none, becomes an array.
  void append(const std::string& name, int value);
  void append(const std::string& name, double value);
  void append(const std::string& name, const std::string& value);
  /// Removes one element of an array.
  Result<void> removeElement(const std::string& name, int index);
  bool remove(const std::string& name) { return values_.erase(name) > 0; }
  void clear() { values_.clear(); }
  [[nodiscard]] const Value* find(const std::string& name) const;
  [[nodiscard]] std::vector<std::string> names() const;

 private:
  std::map<std::string, Value> values_;
};

}  // namespace host::cmd
