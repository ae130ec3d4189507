#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/dg/data.h"

namespace host::dg {

/// A payload of a type that somebody outside of the host defines, who also knows how to write it.
class ForeignData : public Data {
 public:
  /// Its words as they stand in scene files behind the type; nothing when it can't be written.
  [[nodiscard]] virtual std::optional<std::string> written() const = 0;
};

/// A word of a written payload: numbers and texts are told apart.
struct ForeignWord {
  std::string text;
  bool isNumber = false;
};
using ForeignReader = std::function<Result<DataPtr>(const std::vector<ForeignWord>& words)>;

/// Says how payloads of a type are read; an empty reader takes that back.
void setForeignReader(std::string_view type, ForeignReader reader);
[[nodiscard]] bool hasForeignReader(std::string_view type);
/// @return an error when the type is not known or refuses the words
[[nodiscard]] Result<DataPtr> readForeign(std::string_view type,
                                          const std::vector<ForeignWord>& words);

}  // namespace host::dg
