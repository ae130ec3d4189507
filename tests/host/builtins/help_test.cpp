#include <doctest/doctest.h>

#include <string>

#include "host/builtins/register.h"
#include "host/cmd/session.h"

using namespace host;

TEST_CASE("help: every command says what it does, and every flag what it means") {
  const auto session = builtins::makeSession();
  int flags = 0;
  for (const std::string& name : session->commands().names()) {
    CAPTURE(name);
    const auto text = session->executeLine("help " + name);
    REQUIRE(text.has_value());
    const std::string& help = text->string();
    std::size_t at = help.find("\nFlags:\n");
    if (at == std::string::npos) continue;
    for (at += 8; at < help.size();) {
      const std::size_t end = std::min(help.find('\n', at), help.size());
      const std::string line = help.substr(at, end - at);
      at = end + 1;
      if (line.empty() || line == "   -e -edit" || line == "   -q -query") continue;
      ++flags;
      CAPTURE(line);
      CHECK(line.find("  : ") != std::string::npos);
    }
  }
  CHECK(flags > 2000);
}
