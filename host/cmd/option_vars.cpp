#include "host/cmd/option_vars.h"

namespace host::cmd {

namespace {

template <class T>
void appendTo(OptionVars::Value& slot, const T& value) {
  if (auto* array = std::get_if<std::vector<T>>(&slot)) {
    array->push_back(value);
    return;
  }
  std::vector<T> array;
  if (const T* single = std::get_if<T>(&slot)) array.push_back(*single);
  array.push_back(value);
  slot = std::move(array);
}

template <class T>
void appendNamed(std::map<std::string, OptionVars::Value>& values, const std::string& name,
                 const T& value) {
  const auto [slot, isNew] = values.try_emplace(name, std::vector<T>{});
  appendTo(slot->second, value);
}

}  // namespace

void OptionVars::append(const std::string& name, int value) {
  appendNamed(values_, name, value);
}
void OptionVars::append(const std::string& name, double value) {
  appendNamed(values_, name, value);
}
void OptionVars::append(const std::string& name, const std::string& value) {
  appendNamed(values_, name, value);
}

Result<void> OptionVars::removeElement(const std::string& name, int index) {
  const auto found = values_.find(name);
  if (found == values_.end())
    return fail(ErrorKind::NotFound, "There is no option variable '{}'.", name);
  return std::visit(
      [&](auto& value) -> Result<void> {
        if constexpr (requires {
                        value.begin();
                        value.erase(value.begin());
                        value.push_back(value.front());
                      } &&
                      !std::is_same_v<std::decay_t<decltype(value)>, std::string>) {
          if (index < 0 || static_cast<std::size_t>(index) >= value.size())
            return fail(ErrorKind::NotFound, "Option variable '{}' has no element {}.", name,
                        index);
          value.erase(value.begin() + index);
          return {};
        } else {
          return fail(ErrorKind::BadArgument, "Option variable '{}' is not an array.", name);
        }
      },
      found->second);
}

const OptionVars::Value* OptionVars::find(const std::string& name) const {
  const auto found = values_.find(name);
  return found == values_.end() ? nullptr : &found->second;
}

std::vector<std::string> OptionVars::names() const {
  std::vector<std::string> names;
  for (const auto& [name, value] : values_) names.push_back(name);
  return names;
}

}  // namespace host::cmd
