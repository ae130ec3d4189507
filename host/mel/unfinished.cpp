#include "host/mel/unfinished.h"

#include "host/mel/parser.h"

namespace host::mel {

bool isUnfinished(std::string_view text) {
  Arena arena;
  Parser parser(text, arena);
  return !parser.parse() && parser.endedTooSoon();
}

}  // namespace host::mel
