#include <doctest/doctest.h>

#include <QApplication>
#include <QMouseEvent>
#include <QPointingDevice>
#include <QTabletEvent>
#include <vector>

#include "host/api/session/host_session.h"
#include "host/window/person.h"
#include "host/window/view_widget.h"
#include "host/workspace/workspace.h"
#include "tests/host/window/offscreen.h"

// A pen's events as Qt hands them to a widget: each tablet event first and, where the widget leaves
// it, the mouse event that Qt makes of it. What a driver does before that is not here.
namespace {

using namespace host;

class Listener : public tools::ToolContext {
 public:
  explicit Listener(std::vector<tools::InputEvent>& heard)
      : ToolContext("listener"), heard_(heard) {}
  void press(const tools::InputEvent& event) override { heard_.push_back(event); }
  void drag(const tools::InputEvent& event) override { heard_.push_back(event); }
  void release(const tools::InputEvent& event) override { heard_.push_back(event); }

 private:
  std::vector<tools::InputEvent>& heard_;
};

struct Desk {
  Desk() {
    test::offscreenApplication();
    auto& tools = workspace::workspaceOf(*session).toolbox;
    REQUIRE(tools.add("listener", std::make_shared<Listener>(heard)));
    REQUIRE(tools.setCurrent("listener"));
    person = std::make_unique<window::Person>(*session);
    view = std::make_unique<window::ViewWidget>(*person, "modelPanel4");
    view->resize(400, 300);
  }
  /// @return whether Qt would make a mouse event of it
  bool pen(QEvent::Type type, QPointF at, double pressure, float tiltX, float tiltY) {
    const bool isDown = type != QEvent::TabletRelease && pressure > 0;
    QTabletEvent event(type, &stylus, at, at, pressure, tiltX, tiltY, 0, 0, 0, Qt::NoModifier,
                       type == QEvent::TabletMove ? Qt::NoButton : Qt::LeftButton,
                       isDown ? Qt::LeftButton : Qt::NoButton);
    event.accept();
    QApplication::sendEvent(view.get(), &event);
    return !event.isAccepted();
  }
  void mouse(QEvent::Type type, QPointF at) {
    const bool isMove = type == QEvent::MouseMove;
    QMouseEvent event(type, at, at, isMove ? Qt::NoButton : Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(view.get(), &event);
  }

  std::unique_ptr<cmd::Session> session = api::makeHostSession();
  std::vector<tools::InputEvent> heard;
  std::unique_ptr<window::Person> person;
  std::unique_ptr<window::ViewWidget> view;
  QPointingDevice stylus{"pen",
                         7,
                         QInputDevice::DeviceType::Stylus,
                         QPointingDevice::PointerType::Pen,
                         QInputDevice::Capability::Pressure | QInputDevice::Capability::XTilt |
                             QInputDevice::Capability::YTilt,
                         1,
                         1};
};

}  // namespace

TEST_CASE(
    "tablet: a stroke's pressure and tilt reach the tool, and a mouse after it presses fully") {
  Desk desk;
  REQUIRE(desk.pen(QEvent::TabletPress, {100, 100}, 0.25, 20, -10));
  desk.mouse(QEvent::MouseButtonPress, {100, 100});
  REQUIRE(desk.pen(QEvent::TabletMove, {140, 100}, 0.75, 30, 0));
  desk.mouse(QEvent::MouseMove, {140, 100});
  REQUIRE(desk.pen(QEvent::TabletRelease, {150, 110}, 0, 30, 0));
  desk.mouse(QEvent::MouseButtonRelease, {150, 110});
  REQUIRE(desk.heard.size() == 3);
  CHECK(desk.heard[0].pressure == doctest::Approx(0.25));
  CHECK(desk.heard[0].tiltX == doctest::Approx(20));
  CHECK(desk.heard[0].tiltY == doctest::Approx(10));  // away from the hand is up here
  CHECK(desk.heard[1].pressure == doctest::Approx(0.75));
  CHECK(desk.heard[1].tiltX == doctest::Approx(30));
  // A pen that lifts reports nothing any more; the stroke ends as it was pressed last.
  CHECK(desk.heard[2].pressure == doctest::Approx(0.75));
  CHECK(desk.heard[2].position.y == 300 - 1 - 110);

  desk.mouse(QEvent::MouseButtonPress, {50, 50});
  desk.mouse(QEvent::MouseButtonRelease, {50, 50});
  REQUIRE(desk.heard.size() == 5);
  CHECK(desk.heard[3].pressure == 1);
  CHECK(desk.heard[3].tiltX == 0);
}

TEST_CASE("tablet: a pen that hovers is no soft mouse") {
  Desk desk;
  desk.pen(QEvent::TabletMove, {100, 100}, 0, 15, 15);
  desk.mouse(QEvent::MouseButtonPress, {100, 100});
  desk.mouse(QEvent::MouseButtonRelease, {100, 100});
  REQUIRE(desk.heard.size() == 2);
  CHECK(desk.heard[0].pressure == 1);
}

TEST_CASE("a gesture whose view goes away is ended, and the next one begins anew") {
  Desk desk;
  desk.view->show();
  desk.mouse(QEvent::MouseButtonPress, {100, 100});
  desk.mouse(QEvent::MouseMove, {120, 100});
  desk.view->hide();
  REQUIRE(desk.heard.size() == 3);
  CHECK(desk.heard[2].kind == tools::InputKind::Release);
  CHECK(desk.heard[2].position.x == 120);
  CHECK_FALSE(desk.person->hand().isDown());
  desk.view->show();
  desk.mouse(QEvent::MouseButtonPress, {60, 60});
  desk.mouse(QEvent::MouseButtonRelease, {60, 60});
  CHECK(desk.heard.size() == 5);
}
