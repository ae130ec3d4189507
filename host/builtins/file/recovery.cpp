#include "host/builtins/file/recovery.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>

#include "host/builtins/file/scene_files.h"
#include "host/io/whole_file.h"
#include "host/workspace/workspace.h"

namespace host::builtins {
namespace {

namespace fs = std::filesystem;

fs::path lockOf(const fs::path& scene) {
  return scene.string() + ".lock";
}
fs::path nameOf(const fs::path& scene) {
  return scene.string() + ".name";
}

/// Whether a file is one that this person's program wrote: no link, no device, nobody else's.
bool isOwn(const fs::path& file) {
  struct stat state {};
  return ::lstat(file.c_str(), &state) == 0 && S_ISREG(state.st_mode) &&
         state.st_uid == ::geteuid();
}

/// Whether the run that wrote a file still lives: it holds the lock.
bool isHeld(const fs::path& scene) {
  const int lock = ::open(lockOf(scene).c_str(), O_RDWR | O_CLOEXEC | O_NOFOLLOW);
  if (lock < 0) return false;
  const bool isFree = ::flock(lock, LOCK_EX | LOCK_NB) == 0;
  ::close(lock);
  return !isFree;
}

}  // namespace

fs::path Recovery::defaultFolder() {
  const char* state = std::getenv("XDG_STATE_HOME");
  const char* home = std::getenv("HOME");
  if (state && *state) return fs::path(state) / "qxmt" / "recovery";
  if (home && *home) return fs::path(home) / ".local" / "state" / "qxmt" / "recovery";
  return {};
}

Recovery::~Recovery() {
  drop();
}

Result<void> Recovery::begin() {
  if (!file_.empty()) return {};
  if (folder.empty()) return fail("There is no folder for recovery files");
  std::error_code problem;
  fs::create_directories(folder, problem);
  if (problem) return fail("Cannot make the folder {}: {}", folder.string(), problem.message());
  fs::permissions(folder, fs::perms::owner_all, problem);
  for (int i = 0;; ++i) {
    const fs::path file = folder / fmt::format("scene-{}-{}.ma", ::getpid(), i);
    const int lock = ::open(lockOf(file).c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600);
    if (lock < 0 && errno == EEXIST) continue;
    if (lock < 0 || ::flock(lock, LOCK_EX | LOCK_NB) != 0) {
      if (lock >= 0) ::close(lock);
      return fail("Cannot write into the folder {}", folder.string());
    }
    lock_ = lock;
    file_ = file;
    return {};
  }
}

Result<bool> Recovery::keep(Context& context) {
  if (!context.document.isModified()) {
    drop();
    return false;
  }
  const std::uint64_t now = context.document.hash();
  if (!file_.empty() && now == written_) return true;
  HOST_TRY(begin());
  HOST_TRY(io::writeFileAtomically(nameOf(file_).string(), context.document.fileName()));
  HOST_TRY(workspace::workspaceOf(context.session)
               .fileFormats.native()
               .write(context, file_.string(), {}));
  written_ = now;
  return true;
}

void Recovery::drop() {
  if (file_.empty()) return;
  discard({file_, {}});
  ::close(lock_);
  lock_ = -1;
  file_.clear();
}

std::vector<Leftover> Recovery::leftovers() const {
  std::vector<std::pair<fs::file_time_type, Leftover>> found;
  std::error_code problem;
  for (fs::directory_iterator each(folder, problem), end; !problem && each != end;
       each.increment(problem)) {
    const fs::path& file = each->path();
    if (file.extension() != ".ma" || file == file_ || !isOwn(file) || isHeld(file)) continue;
    Leftover left{file, {}};
    if (isOwn(nameOf(file)))
      if (const auto name = io::FileContent::read(nameOf(file).string()))
        left.original = name->text();
    std::error_code ignored;
    found.emplace_back(fs::last_write_time(file, ignored), std::move(left));
  }
  std::ranges::sort(found, [](const auto& a, const auto& b) { return a.first > b.first; });
  std::vector<Leftover> all;
  for (auto& [time, left] : found) all.push_back(std::move(left));
  return all;
}

Result<void> Recovery::takeUp(Context& context, const Leftover& left) {
  HOST_TRY(openScene(context, {.path = left.scene.string(), .isForced = true}));
  context.document.setFileName(left.original);
  context.document.setModified(true);
  written_ = 0;
  HOST_TRY(keep(context));
  discard(left);
  return {};
}

void Recovery::discard(const Leftover& left) {
  std::error_code ignored;
  for (const fs::path& file : {left.scene, nameOf(left.scene), lockOf(left.scene)})
    fs::remove(file, ignored);
}

}  // namespace host::builtins
