#include "host/builtins/file/recovery.h"

#include <doctest/doctest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "host/builtins/register.h"
#include "host/workspace/workspace.h"

using namespace host;
using builtins::Leftover;
using builtins::Recovery;

namespace {

namespace fs = std::filesystem;

const fs::path kFolder = fs::path(QXMT_BINARY_DIR) / "recovery_test_files";

struct Run {
  std::unique_ptr<cmd::Session> session = builtins::makeSession();
  cmd::Context context{*session, session->document()};
  Recovery recovery;

  Run() { recovery.folder = kFolder; }
  [[nodiscard]] bool has(const std::string& name) const {
    return session->document().node(name).has_value();
  }
};

std::size_t fileCount() {
  std::error_code none;
  std::size_t count = 0;
  for (fs::directory_iterator each(kFolder, none), end; each != end; ++each) ++count;
  return count;
}

/// A run of the program that ends without a word, with a box of that name unsaved.
void crashWith(const std::string& box) {
  const pid_t child = ::fork();
  REQUIRE(child >= 0);
  if (child == 0) {
    Run run;
    const bool isMade = run.session->executeLine("file -rename \"/work of mine/house.ma\"") &&
                        run.session->executeLine("polyCube -n " + box);
    const auto kept = run.recovery.keep(run.context);
    ::_exit(isMade && kept && *kept ? 0 : 1);
  }
  int status = 0;
  ::waitpid(child, &status, 0);
  REQUIRE(WIFEXITED(status));
  REQUIRE(WEXITSTATUS(status) == 0);
}

}  // namespace

TEST_CASE("recovery: what a crash left is found, opened under its own name, unsaved") {
  fs::remove_all(kFolder);
  crashWith("lost");
  Run run;
  const std::vector<Leftover> left = run.recovery.leftovers();
  REQUIRE(left.size() == 1);
  CHECK(left.front().original == "/work of mine/house.ma");
  REQUIRE(run.recovery.takeUp(run.context, left.front()));
  CHECK(run.has("lost"));
  CHECK(run.session->document().fileName() == "/work of mine/house.ma");
  CHECK(run.session->document().isModified());
  // It was handed over: there is a file of this run, and the other is gone.
  CHECK_FALSE(fs::exists(left.front().scene));
  CHECK(fileCount() == 3);
  run.recovery.drop();
  CHECK(fileCount() == 0);
}

TEST_CASE("recovery: a run that lives keeps its file to itself, and takes it away with the need") {
  fs::remove_all(kFolder);
  Recovery other;
  other.folder = kFolder;
  {
    Run run;
    CHECK_FALSE(run.recovery.keep(run.context).value());
    CHECK(fileCount() == 0);
    REQUIRE(run.session->executeLine("polyCube -n box"));
    CHECK(run.recovery.keep(run.context).value());
    CHECK(other.leftovers().empty());
    CHECK(run.recovery.leftovers().empty());
    CHECK(run.session->document().fileName().empty());
    CHECK(run.session->document().isModified());
    // Written again when there is more to lose.
    REQUIRE(run.session->executeLine("move 1 2 3 box; polySphere -n ball"));
    CHECK(run.recovery.keep(run.context).value());
    run.session->document().setModified(false);
    CHECK_FALSE(run.recovery.keep(run.context).value());
    CHECK(fileCount() == 0);
    REQUIRE(run.session->executeLine("polyCube"));
    CHECK(run.recovery.keep(run.context).value());
  }
  CHECK(fileCount() == 0);
}

TEST_CASE("recovery: links and damaged files are no way in") {
  fs::remove_all(kFolder);
  fs::create_directories(kFolder);
  const fs::path outside = fs::path(QXMT_BINARY_DIR) / "recovery_test_outside.ma";
  std::ofstream(outside) << "//Maya ASCII 2018 scene\n";
  fs::create_symlink(outside, kFolder / "scene-1-0.ma");
  std::ofstream(kFolder / "scene-2-0.ma") << "createNode mesh -n \"broken";
  Run run;
  REQUIRE(run.session->executeLine("polyCube -n mine"));
  const std::vector<Leftover> left = run.recovery.leftovers();
  REQUIRE(left.size() == 1);
  // What can't be read stays where it is, and so does the scene.
  CHECK_FALSE(run.recovery.takeUp(run.context, left.front()));
  CHECK(run.has("mine"));
  CHECK(fs::exists(left.front().scene));
  Recovery::discard(left.front());
  CHECK(run.recovery.leftovers().empty());
  CHECK(fs::exists(outside));
}
