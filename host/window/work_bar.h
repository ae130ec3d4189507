#pragma once

#include <QEvent>
#include <QObject>
#include <atomic>
#include <chrono>
#include <string_view>
#include <thread>

#include "host/window/person.h"

class QLabel;
class QProgressBar;
class QPushButton;
class QStatusBar;

namespace host::window {

/// Whether an event is something that a person does.
[[nodiscard]] bool isPersonsEvent(const QEvent& event);

/// Shows what takes long, operations as well as scripts that run away, and a button that stops it.
///
/// While something works the window's own loop stands still. From within the work this lets through
/// what the screen needs and what reaches the button or is the Escape key; all else that a person
/// does meanwhile is dropped, so that nothing starts in the middle of something.
class WorkBar : public QObject {
 public:
  WorkBar(Person& person, QStatusBar& bar);
  ~WorkBar() override;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;

 private:
  using Clock = std::chrono::steady_clock;
  void listen();
  void show(std::string_view what, double part, bool hasEnded);
  void showWorking();
  void hide();
  void letThrough();
  void stop();
  [[nodiscard]] bool isLate() const;

  Person& person_;
  QLabel* what_ = nullptr;
  QProgressBar* bar_ = nullptr;
  QPushButton* stop_ = nullptr;
  std::atomic<Clock::rep> lastIdle_;
  std::atomic<bool> isWaiting_ = false;  ///< the window's loop waits for a person
  bool isListening_ = false;
  std::jthread bell_;
};

}  // namespace host::window
