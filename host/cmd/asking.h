#pragma once

namespace host::cmd {

/// Says that the built-in command that is running only asks, though it is not in query mode: it
/// makes no step of undo. For commands of which some flags change something and others don't.
void askOnly();

/// While one command runs: whether it said so. Commands inside it speak for themselves.
class AskingScope {
 public:
  AskingScope();
  ~AskingScope();
  AskingScope(const AskingScope&) = delete;
  AskingScope& operator=(const AskingScope&) = delete;
  [[nodiscard]] bool asksOnly() const { return asksOnly_; }

 private:
  friend void askOnly();
  bool asksOnly_ = false;
  AskingScope* outer_;
};

}  // namespace host::cmd
