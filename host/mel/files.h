#pragma once

#include <cstdio>
#include <map>
#include <string>

namespace host::mel {

/// The files that scripts have open, by the integer that fopen gave. What is still open is closed
/// with the engine.
class FileTable {
 public:
  FileTable() = default;
  ~FileTable();
  FileTable(const FileTable&) = delete;
  FileTable& operator=(const FileTable&) = delete;

  /// The new file's number, or 0.
  [[nodiscard]] int open(const std::string& path, const std::string& mode);
  [[nodiscard]] int openPipe(const std::string& command, const std::string& mode);
  /// Null for a number that is not open.
  [[nodiscard]] std::FILE* find(int number) const;
  /// The exit status of a pipe, 0 for a file, -1 for a number that is not open.
  int close(int number);

 private:
  struct Entry {
    std::FILE* file;
    bool isPipe;
  };
  int add(std::FILE* file, bool isPipe);
  std::map<int, Entry> entries_;
  int next_ = 1;
};

}  // namespace host::mel
