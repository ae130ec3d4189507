#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/base/signal.h"
#include "host/cmd/session.h"
#include "host/tools/hand.h"

namespace host::window {

/// The person at the window, for the parts of the window: what they do goes down the same roads as
/// scripts' gestures do, each act as an item of undo of its own. Nothing of the window keeps a
/// state that a script could not see.
class Person {
 public:
  explicit Person(cmd::Session& session);
  Person(const Person&) = delete;
  Person& operator=(const Person&) = delete;

  [[nodiscard]] cmd::Session& session() { return session_; }
  [[nodiscard]] scene::Document& document() { return session_.document(); }

  /// Does edits as one step of undo of that name. A failure is shown.
  bool edit(std::string_view name, const std::function<Result<void>()>& edits);
  /// Runs what a control's action set off; an error is shown.
  void runCallbacks(const std::vector<std::string>& scripts);
  /// Runs a command of the hot key table; an error is shown.
  void runNamed(const std::string& command);
  /// Takes back, or does again.
  void undo();
  void redo();
  /// The mouse and the keys in a view.
  [[nodiscard]] tools::Hand& hand() { return hand_; }
  /// Ends a gesture where it is, when the button can't come up in its view any more: the view went,
  /// or a dialog took the mouse away.
  void letGo();

  /// Which parts of the window look at the session anew.
  enum Parts : std::uint8_t { kViews = 1, kPanels = 2, kAll = 3 };
  /// Something may have changed: those parts look, soon and once. Looking at what is under the
  /// cursor changes nothing; tools that show it ask for a redraw themselves.
  void lookSoon(Parts parts = kAll);
  Signal<Parts> looked;
  /// Whether nothing waits to be looked at.
  [[nodiscard]] bool isQuiet() const { return looking_ == 0; }
  /// Something works just now and lets the screen be drawn meanwhile: what is shown stays as it is.
  bool isBusy = false;
  std::string lastMessage;  ///< that the help line shows
  /// A text of a script over the views, by its section: 0 to 4 above, 5 to 9 below.
  struct HeadsUpText {
    int section = 0;
    std::string text;
  };
  std::vector<HeadsUpText> headsUpTexts;
  /// Counts what was looked at, for programs that wait for the window.
  [[nodiscard]] std::uint64_t lookCount() const { return lookCount_; }

 private:
  cmd::Session& session_;
  tools::Hand hand_;
  std::vector<Connection> connections_;
  std::shared_ptr<bool> isAlive_ = std::make_shared<bool>(true);
  std::uint8_t looking_ = 0;  ///< the parts that will look
  std::uint64_t lookCount_ = 0;
};

}  // namespace host::window
