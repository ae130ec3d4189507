#include "host/modelling/declare/reference.h"

#include <doctest/doctest.h>

#include <fstream>
#include <sstream>

using namespace host;

TEST_CASE("docs/modelling.md has the rows that the declarations give") {
  std::ifstream file(std::string(QXMT_SOURCE_DIR) + "/docs/modelling.md");
  REQUIRE(file);
  std::stringstream page;
  page << file.rdbuf();
  const std::string text = page.str(),
                    begin = "<!-- docs/scripts/modelling.sh writes what follows -->\n",
                    end = "<!-- docs/scripts/modelling.sh wrote this -->\n";
  const std::size_t from = text.find(begin), to = text.find(end);
  REQUIRE(from != std::string::npos);
  REQUIRE(to != std::string::npos);
  const std::string rows = text.substr(from + begin.size(), to - from - begin.size());
  const bool isCurrent = rows == modelling::referenceRows(modelling::declarations());
  CHECK_MESSAGE(isCurrent, "run docs/scripts/modelling.sh: the page is older than the commands");
}
