#pragma once

#include <functional>
#include <optional>
#include <string>

#include "host/base/result.h"
#include "host/tools/input_event.h"

namespace host::tools {

/// How a hand does what it does next; what is left out stays as it was while a button is down, and
/// is as with a plain left click otherwise.
struct HandOptions {
  std::string panel = {};  ///< must be given before the first event
  std::optional<MouseButton> button = {};
  std::optional<bool> shift = {}, control = {}, alt = {};
  std::optional<double> pressure = {};           ///< 0..1
  std::optional<double> tiltX = {}, tiltY = {};  ///< degrees
};

/// A hand that a script moves: makes the events that a person's mouse would make, in an order in
/// which a mouse can make them.
class Hand {
 public:
  using Send = std::function<void(const InputEvent&)>;
  explicit Hand(Send send) : send_(std::move(send)) {}

  /// Fails for another button or view than those of the press while the button is down.
  Result<void> use(const HandOptions& options);
  Result<void> hover(viewport::ViewPoint to);
  Result<void> press(viewport::ViewPoint at);
  Result<void> drag(viewport::ViewPoint to);
  Result<void> release(viewport::ViewPoint at);
  /// Strikes a key where the pointer is.
  void strike(const std::string& key);

  [[nodiscard]] bool isDown() const { return isDown_; }
  [[nodiscard]] const std::string& panel() const { return state_.panel; }
  /// The pen as it was last: of a mouse, full pressure and no tilt.
  [[nodiscard]] const InputEvent& state() const { return state_; }

 private:
  void send(InputKind kind, viewport::ViewPoint at);

  Send send_;
  InputEvent state_;
  std::string over_;  ///< the view that the pointer was over last
  bool isDown_ = false;
};

/// 1, 2, 3 for left, middle, right; 0 for none.
[[nodiscard]] int buttonNumber(MouseButton button);
[[nodiscard]] MouseButton buttonOf(int number);

}  // namespace host::tools
