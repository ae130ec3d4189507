#include "host/io/whole_file.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <new>
#include <utility>

namespace host::io {
namespace {

namespace fs = std::filesystem;

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() { (void)close(); }
  [[nodiscard]] int get() const { return fd_; }
  /// Whether all that was written has arrived as far as the system tells.
  bool close() {
    const int fd = std::exchange(fd_, -1);
    return fd < 0 || ::close(fd) == 0;
  }

 private:
  int fd_;
};

tl::unexpected<Error> failOnFile(const char* what, const std::string& path) {
  return fail("Cannot {} \"{}\": {}", what, path, std::strerror(errno));
}

const char* kindOf(mode_t mode) {
  if (S_ISDIR(mode)) return "a folder";
  if (S_ISFIFO(mode)) return "a pipe";
  if (S_ISCHR(mode) || S_ISBLK(mode)) return "a device";
  return S_ISSOCK(mode) ? "a socket" : "not a file";
}

/// While it lives, a file that grows beyond what the user may write is an error, not a signal that
/// ends the program.
class SizeLimitIsAnError {
 public:
  SizeLimitIsAnError() {
    struct sigaction ignore {};
    ignore.sa_handler = SIG_IGN;
    ::sigaction(SIGXFSZ, &ignore, &before_);
  }
  ~SizeLimitIsAnError() { ::sigaction(SIGXFSZ, &before_, nullptr); }
  SizeLimitIsAnError(const SizeLimitIsAnError&) = delete;
  SizeLimitIsAnError& operator=(const SizeLimitIsAnError&) = delete;

 private:
  struct sigaction before_ {};
};

bool writeAll(int file, std::string_view content) {
  while (!content.empty()) {
    const ssize_t n = ::write(file, content.data(), content.size());
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return false;
    if (n == 0) {
      errno = ENOSPC;
      return false;
    }
    content.remove_prefix(static_cast<std::size_t>(n));
  }
  return true;
}

/// The file that a name leads to over symbolic links, whether it is there or not.
Result<fs::path> fileBehind(const std::string& path) {
  fs::path file(path);
  std::error_code failure;
  for (int links = 0; fs::is_symlink(fs::symlink_status(file, failure)); ++links) {
    if (links == 40) return fail("Cannot write \"{}\": its links lead in a circle", path);
    const fs::path target = fs::read_symlink(file, failure);
    if (failure) return fail("Cannot write \"{}\": {}", path, failure.message());
    file = target.is_absolute() ? target : file.parent_path() / target;
  }
  return file;
}

/// What the new content of `file` is written to first: ".name.PID.part", and a number while such a
/// file is there.
std::string partialPrefix(const fs::path& file) {
  return "." + file.filename().string() + ".";
}
constexpr std::string_view kPartialSuffix = ".part";

/// Removes what programs that do not run any more have left of writing `file`.
void removeLeftovers(const fs::path& folder, const std::string& prefix) {
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder, ignored)) {
    const std::string name = entry.path().filename().string();
    if (!name.starts_with(prefix) || !name.ends_with(kPartialSuffix)) continue;
    const std::string_view number =
        std::string_view(name).substr(prefix.size(), name.size() - prefix.size());
    pid_t writer = 0;
    const auto read = std::from_chars(number.data(), number.data() + number.size(), writer);
    const bool isOurs = read.ec == std::errc() && (*read.ptr == '.' || *read.ptr == '-');
    const bool isDone = writer == ::getpid() || (::kill(writer, 0) != 0 && errno == ESRCH);
    if (isOurs && writer > 0 && isDone && entry.is_regular_file(ignored))
      ::unlink(entry.path().c_str());
  }
}

/// Mode and owner of the file that is there; a new one gets what the user's mask leaves.
void giveLooks(int file, const struct stat* before) {
  if (!before) return;
  // Only root may give a file away; a member may give it to the group. The mode comes second: a
  // change of owner clears what lets others run it as the owner.
  if (::fchown(file, before->st_uid, before->st_gid) != 0)
    (void)!::fchown(file, static_cast<uid_t>(-1), before->st_gid);
  struct stat now {};
  mode_t mode = before->st_mode & 07777;
  if (::fstat(file, &now) == 0 && now.st_uid != before->st_uid) mode &= 0777;
  (void)::fchmod(file, mode);
}

bool syncFolder(const fs::path& folder) {
  const Descriptor descriptor(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Some file systems have nothing to sync in a folder; that is no reason to refuse.
  return descriptor.get() >= 0 && (::fsync(descriptor.get()) == 0 || errno == EINVAL);
}

}  // namespace

Result<FileContent> FileContent::read(const std::string& path) {
  // Without O_NONBLOCK opening a pipe waits for somebody who writes to it.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
  struct stat status {};
  if (file.get() < 0 || ::fstat(file.get(), &status) != 0) return failOnFile("read", path);
  if (!S_ISREG(status.st_mode))
    return fail("Cannot read \"{}\": it is {}", path, kindOf(status.st_mode));
  const auto size = static_cast<std::size_t>(status.st_size);
  FileContent content;
  content.data_.reset(new (std::nothrow) char[size > 0 ? size : 1]);
  if (!content.data_)
    return fail(ErrorKind::OutOfMemory, "Cannot read \"{}\": not enough memory", path);
  while (content.size_ < size) {
    const ssize_t n = ::read(file.get(), content.data_.get() + content.size_, size - content.size_);
    if (n < 0 && errno == EINTR) continue;
    if (n < 0) return failOnFile("read", path);
    if (n == 0) break;  // cut off meanwhile: what is there is judged by who reads it
    content.size_ += static_cast<std::size_t>(n);
  }
  return content;
}

Result<void> writeFileAtomically(const std::string& path, std::string_view content,
                                 const FileWriteSafety& safety) {
  const auto behind = fileBehind(path);
  if (!behind) return failWith(behind.error());
  const fs::path& target = *behind;
  struct stat before {};
  const bool isThere = ::stat(target.c_str(), &before) == 0;
  if (isThere && !S_ISREG(before.st_mode))
    return fail("Cannot write \"{}\": it is {}", path, kindOf(before.st_mode));
  const fs::path folder = target.has_parent_path() ? target.parent_path() : fs::path(".");
  const std::string prefix = partialPrefix(target);
  removeLeftovers(folder, prefix);

  const SizeLimitIsAnError guarded;
  std::string partial;
  int opened = -1;
  for (int attempt = 0; opened < 0 && attempt < 100; ++attempt) {
    partial = (folder /
               (prefix + std::to_string(::getpid()) +
                (attempt > 0 ? "-" + std::to_string(attempt) : "") + std::string(kPartialSuffix)))
                  .string();
    opened = ::open(partial.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (opened < 0 && errno != EEXIST) break;
  }
  Descriptor file(opened);
  if (file.get() < 0) return failOnFile("write", path);
  giveLooks(file.get(), isThere ? &before : nullptr);
  const bool isWritten = writeAll(file.get(), content) &&
                         (!safety.syncs || ::fsync(file.get()) == 0) && file.close() &&
                         std::rename(partial.c_str(), target.c_str()) == 0;
  if (!isWritten) {
    const auto error = failOnFile("write", path);
    ::unlink(partial.c_str());
    return error;
  }
  if (safety.syncs && !syncFolder(folder)) return failOnFile("make sure of", path);
  return {};
}

}  // namespace host::io
