#include "host/mel/files.h"

namespace host::mel {

namespace {

int closeEntry(std::FILE* file, bool isPipe) {
  return isPipe ? ::pclose(file) : std::fclose(file);
}

}  // namespace

FileTable::~FileTable() {
  for (const auto& [number, entry] : entries_) closeEntry(entry.file, entry.isPipe);
}

int FileTable::add(std::FILE* file, bool isPipe) {
  if (!file) return 0;
  entries_.emplace(next_, Entry{file, isPipe});
  return next_++;
}

int FileTable::open(const std::string& path, const std::string& mode) {
  return add(std::fopen(path.c_str(), mode.c_str()), false);
}

int FileTable::openPipe(const std::string& command, const std::string& mode) {
  std::fflush(nullptr);
  return add(::popen(command.c_str(), mode.c_str()), true);
}

std::FILE* FileTable::find(int number) const {
  const auto entry = entries_.find(number);
  return entry == entries_.end() ? nullptr : entry->second.file;
}

int FileTable::close(int number) {
  const auto entry = entries_.find(number);
  if (entry == entries_.end()) return -1;
  const int status = closeEntry(entry->second.file, entry->second.isPipe);
  entries_.erase(entry);
  return status;
}

}  // namespace host::mel
