#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "host/builtins/common/command.h"

namespace host::builtins {

/// Unsaved work that a run of the program left behind.
struct Leftover {
  std::filesystem::path scene;
  std::string original;  ///< the file that it belongs to; empty: the scene had none
};

/// Keeps what would go with the program in a file of its own: written every few minutes while there
/// is unsaved work, taken away when that is saved or given up. A run that ended in a crash leaves
/// its file; the next is told of it.
///
/// The folder is the person's alone. Each run holds a lock there, by which others see that it
/// lives. What is found is read as any scene is: as data, running nothing.
class Recovery {
 public:
  Recovery() = default;
  ~Recovery();
  Recovery(const Recovery&) = delete;
  Recovery& operator=(const Recovery&) = delete;

  bool isEnabled = false;
  double intervalSeconds = 180;
  std::filesystem::path folder = defaultFolder();

  /// Writes the scene if it is unsaved and another than was written last; takes the file away if it
  /// is saved. The scene and its name stay as they are.
  /// @return whether there is a file now, or an error naming it
  Result<bool> keep(Context& context);
  /// Takes the file away.
  void drop();
  /// What runs that are no more left, the latest first.
  [[nodiscard]] std::vector<Leftover> leftovers() const;
  /// Opens what was left: under its own name, unsaved. It stays until this run has a file of it.
  Result<void> takeUp(Context& context, const Leftover& left);
  /// Removes what was left.
  static void discard(const Leftover& left);
  /// `$XDG_STATE_HOME/qxmt/recovery`, or below `~/.local/state`; empty without a home.
  [[nodiscard]] static std::filesystem::path defaultFolder();

 private:
  Result<void> begin();

  std::filesystem::path file_;  ///< empty until this run needs one
  int lock_ = -1;
  std::uint64_t written_ = 0;  ///< the scene that the file has
};

}  // namespace host::builtins
