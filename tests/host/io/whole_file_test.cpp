// Files on the disk: what a save keeps of the one it replaces, what it refuses, what it leaves.
#include "host/io/whole_file.h"

#include <doctest/doctest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>

using namespace host::io;
namespace fs = std::filesystem;

namespace {

/// An empty folder for one test.
struct Folder {
  fs::path root = fs::path(QXMT_BINARY_DIR) / "whole_file_test_files";
  Folder() {
    fs::remove_all(root);
    fs::create_directories(root);
  }
  [[nodiscard]] std::string at(const char* name) const { return (root / name).string(); }
  [[nodiscard]] std::size_t count() const {
    return static_cast<std::size_t>(std::distance(fs::directory_iterator(root), {}));
  }
  [[nodiscard]] std::string read(const char* name) const {
    const auto content = FileContent::read(at(name));
    return content ? std::string(content->text()) : "!" + content.error().message;
  }
};

mode_t modeOf(const std::string& path) {
  struct stat status {};
  REQUIRE(::lstat(path.c_str(), &status) == 0);
  return status.st_mode;
}

}  // namespace

TEST_CASE("saving keeps the mode of the file, and a new one gets what the user's mask leaves") {
  const Folder folder;
  const mode_t mask = ::umask(027);
  REQUIRE(writeFileAtomically(folder.at("new"), "a"));
  ::umask(mask);
  CHECK((modeOf(folder.at("new")) & 0777) == 0640);
  REQUIRE(::chmod(folder.at("new").c_str(), 0604) == 0);
  REQUIRE(writeFileAtomically(folder.at("new"), "bc"));
  CHECK((modeOf(folder.at("new")) & 0777) == 0604);
  CHECK(folder.read("new") == "bc");
  CHECK(folder.count() == 1);
}

TEST_CASE("saving follows a symbolic link to its file and keeps the link") {
  const Folder folder;
  fs::create_directory(folder.root / "inner");
  fs::create_symlink("inner/real", folder.root / "link");
  fs::create_symlink("link", folder.root / "link to it");
  REQUIRE(writeFileAtomically(folder.at("link to it"), "one"));
  CHECK(folder.read("inner/real") == "one");
  CHECK(fs::is_symlink(folder.root / "link"));
  CHECK(fs::is_symlink(folder.root / "link to it"));
  fs::create_symlink("circle b", folder.root / "circle a");
  fs::create_symlink("circle a", folder.root / "circle b");
  const auto refused = writeFileAtomically(folder.at("circle a"), "x");
  REQUIRE_FALSE(refused);
  CHECK(refused.error().message.find("circle") != std::string::npos);
}

TEST_CASE("devices, pipes and folders are refused by what they are, and a pipe is not waited for") {
  const Folder folder;
  REQUIRE(::mkfifo(folder.at("pipe").c_str(), 0600) == 0);
  for (const auto& [path, kind] : {std::pair{std::string("/dev/full"), "a device"},
                                   {std::string("/dev/null"), "a device"},
                                   {folder.at("pipe"), "a pipe"},
                                   {folder.at("."), "a folder"}}) {
    CAPTURE(path);
    const mode_t before = modeOf(path);
    const auto written = writeFileAtomically(path, "x");
    REQUIRE_FALSE(written);
    CHECK(written.error().message.find(path) != std::string::npos);
    CHECK(written.error().message.find(kind) != std::string::npos);
    CHECK(modeOf(path) == before);
    const auto read = FileContent::read(path);
    REQUIRE_FALSE(read);
    CHECK(read.error().message.find(kind) != std::string::npos);
  }
  CHECK(folder.count() == 1);
}

TEST_CASE("a file that may not grow so large is an error, and the old one stays") {
  const Folder folder;
  REQUIRE(writeFileAtomically(folder.at("scene"), "old"));
  struct rlimit before {};
  REQUIRE(::getrlimit(RLIMIT_FSIZE, &before) == 0);
  struct rlimit small = before;
  small.rlim_cur = 1000;
  REQUIRE(::setrlimit(RLIMIT_FSIZE, &small) == 0);
  const auto written = writeFileAtomically(folder.at("scene"), std::string(5000, 'x'));
  REQUIRE(::setrlimit(RLIMIT_FSIZE, &before) == 0);
  REQUIRE_FALSE(written);
  CHECK(folder.read("scene") == "old");
  CHECK(folder.count() == 1);
}

TEST_CASE("what a killed save left is removed by the next one, what a running one writes is not") {
  const Folder folder;
  const std::string content(200'000, 'n');
  for (int round = 0; round < 20; ++round) {
    const pid_t child = ::fork();
    if (child == 0) {
      for (;;) (void)writeFileAtomically(folder.at("scene"), content, {.syncs = false});
    }
    ::usleep(static_cast<useconds_t>(1000 + 700 * round));
    ::kill(child, SIGKILL);
    ::waitpid(child, nullptr, 0);
    const std::string left = folder.read("scene");
    CHECK((left == content || left.starts_with("!")));
    // Whether or not this one was killed between two saves.
    for (const char* end : {".part", "-1.part"})
      std::ofstream(folder.at((".scene." + std::to_string(child) + end).c_str())) << "half";
  }
  std::ofstream(folder.at((".scene." + std::to_string(::getppid()) + ".part").c_str())) << "theirs";
  std::ofstream(folder.at(".scene.backup.part")) << "somebody's own";
  REQUIRE(writeFileAtomically(folder.at("scene"), "done"));
  CHECK(folder.read("scene") == "done");
  CHECK(folder.count() == 3);
}

TEST_CASE("a file that is cut off while it is looked at is what was read, never a fault") {
  const Folder folder;
  std::ofstream(folder.at("mesh")) << std::string(1 << 20, 'v');
  const auto content = FileContent::read(folder.at("mesh"));
  REQUIRE(content);
  fs::resize_file(folder.at("mesh"), 10);
  std::size_t count = 0;
  for (const char c : content->text()) count += c == 'v';
  CHECK(count == std::size_t{1} << 20);
}
