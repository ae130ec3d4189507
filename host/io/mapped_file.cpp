#include "host/io/mapped_file.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

namespace host::io {
namespace {

class Descriptor {
 public:
  explicit Descriptor(int fd) : fd_(fd) {}
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  ~Descriptor() {
    if (fd_ >= 0) ::close(fd_);
  }
  [[nodiscard]] int get() const { return fd_; }

 private:
  int fd_;
};

tl::unexpected<Error> failOnFile(const char* what, const std::string& path) {
  return fail("Cannot {} \"{}\": {}", what, path, std::strerror(errno));
}

}  // namespace

Result<MappedFile> MappedFile::open(const std::string& path) {
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat status {};
  if (file.get() < 0 || ::fstat(file.get(), &status) != 0) return failOnFile("read", path);
  if (!S_ISREG(status.st_mode)) return fail("Cannot read \"{}\": it is not a file", path);
  const auto size = static_cast<std::size_t>(status.st_size);
  if (size == 0) return MappedFile(nullptr, 0);
  void* data = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.get(), 0);
  if (data == MAP_FAILED) return failOnFile("read", path);
  ::madvise(data, size, MADV_WILLNEED);
  return MappedFile(static_cast<const char*>(data), size);
}

MappedFile::MappedFile(MappedFile&& other) noexcept
    : data_(std::exchange(other.data_, nullptr)), size_(std::exchange(other.size_, 0)) {}

MappedFile& MappedFile::operator=(MappedFile&& other) noexcept {
  std::swap(data_, other.data_);
  std::swap(size_, other.size_);
  return *this;
}

MappedFile::~MappedFile() {
  if (data_ != nullptr) ::munmap(const_cast<char*>(data_), size_);
}

Result<void> writeFileAtomically(const std::string& path, std::string_view content) {
  const std::string partial = path + ".part" + std::to_string(::getpid());
  bool isWritten = false;
  {
    const Descriptor file(::open(partial.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
    if (file.get() < 0) return failOnFile("write", path);
    std::size_t done = 0;
    while (done < content.size()) {
      const ssize_t n = ::write(file.get(), content.data() + done, content.size() - done);
      if (n < 0 && errno == EINTR) continue;
      if (n <= 0) break;
      done += static_cast<std::size_t>(n);
    }
    isWritten = done == content.size();
  }
  if (isWritten && std::rename(partial.c_str(), path.c_str()) == 0) return {};
  const auto error = failOnFile("write", path);
  ::unlink(partial.c_str());
  return error;
}

}  // namespace host::io
