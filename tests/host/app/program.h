#pragma once

#include <filesystem>
#include <string>
#include <vector>

/// The built program, run as a person or another program runs it.
namespace program_test {

struct Outcome {
  int status = -1;  ///< the exit status; -1 when a signal ended it
  std::string output, errors;

  [[nodiscard]] bool says(const std::string& text) const {
    return errors.find(text) != std::string::npos;
  }
};

/// Runs it to its end with `input` as its standard input. `interruptAfter`: sends SIGINT once that
/// text was printed.
Outcome run(const std::vector<std::string>& words, const std::string& input = {},
            const std::string& interruptAfter = {});

/// A prompt on a terminal, or at the end of another program's pipe.
class Terminal {
 public:
  explicit Terminal(const std::vector<std::string>& words, bool isTerminal = true);
  ~Terminal();
  Terminal(const Terminal&) = delete;
  Terminal& operator=(const Terminal&) = delete;

  void type(const std::string& text) const;
  /// Reads until this shows. @return what was shown until then; without the text when it does not
  /// come.
  std::string readTo(const std::string& text);
  /// Reads to the end of the program. @return its exit status
  int finish();

 private:
  int terminal_ = -1, process_ = -1;
  std::string unread_;
};

/// A folder for a test's files, empty at first.
std::filesystem::path scratchFolder(const std::string& name);
std::string writeFile(const std::filesystem::path& file, const std::string& text);

}  // namespace program_test
