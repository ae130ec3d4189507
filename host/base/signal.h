#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace host {

/// Holds a listener on its signal, and takes it off when it goes. Outliving the signal is fine.
class Connection {
 public:
  Connection() = default;
  explicit Connection(std::function<void()> disconnect) : disconnect_(std::move(disconnect)) {}
  Connection(Connection&& other) noexcept : disconnect_(std::exchange(other.disconnect_, {})) {}
  Connection& operator=(Connection&& other) noexcept {
    if (this != &other) {
      disconnect();
      disconnect_ = std::exchange(other.disconnect_, {});
    }
    return *this;
  }
  Connection(const Connection&) = delete;
  Connection& operator=(const Connection&) = delete;
  ~Connection() { disconnect(); }

  void disconnect() {
    if (const auto call = std::exchange(disconnect_, {})) call();
  }

 private:
  std::function<void()> disconnect_;
};

/// Tells any number of listeners of something that happened, in the order in which they were
/// connected. One thread.
///
/// While they are told, listeners may come and go, themselves included: one that is taken off isn't
/// called any more, one that is added hears of the next time. The signal itself may be destroyed.
template <class... Arguments>
class Signal {
 public:
  using Listener = std::function<void(Arguments...)>;

  Signal() = default;
  Signal(const Signal&) = delete;
  Signal& operator=(const Signal&) = delete;

  /// The listener is called until the connection goes.
  [[nodiscard]] Connection connect(Listener listener) {
    const std::uint64_t id = ++state_->lastId;
    state_->slots.push_back({id, std::make_shared<Listener>(std::move(listener))});
    return Connection([state = std::weak_ptr<State>(state_), id] {
      if (const auto alive = state.lock())
        std::erase_if(alive->slots, [id](const Slot& slot) { return slot.id == id; });
    });
  }

  void operator()(Arguments... arguments) const {
    const std::shared_ptr<State> state = state_;
    const std::uint64_t newest = state->lastId;
    std::uint64_t told = 0;
    while (const std::shared_ptr<Listener> next = state->after(told, newest)) (*next)(arguments...);
  }

  [[nodiscard]] bool hasListeners() const { return !state_->slots.empty(); }

 private:
  struct Slot {
    std::uint64_t id = 0;
    std::shared_ptr<Listener> listener;  ///< a listener that takes itself off still runs to its end
  };
  struct State {
    std::vector<Slot> slots;  ///< by rising id
    std::uint64_t lastId = 0;

    /// The first listener that came after `told`, up to `newest`; `told` becomes its id.
    [[nodiscard]] std::shared_ptr<Listener> after(std::uint64_t& told, std::uint64_t newest) const {
      for (const Slot& slot : slots) {
        if (slot.id <= told) continue;
        if (slot.id > newest) break;
        told = slot.id;
        return slot.listener;
      }
      return nullptr;
    }
  };
  std::shared_ptr<State> state_ = std::make_shared<State>();
};

}  // namespace host
