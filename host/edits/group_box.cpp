#include "host/edits/group_box.h"

#include <memory>
#include <utility>

namespace host::edits {

namespace {

/// Watches the group's graph for as long as the box holds.
class LastGroup final : public dg::GraphObserver {
 public:
  void keep(dg::Node& group, const math::Box& box) {
    forget();
    group_ = group.weak_from_this();
    box_ = box;
    group.graph().addObserver(this);
  }
  [[nodiscard]] math::Box take(const dg::Node& group) {
    const math::Box box = group_.lock().get() == &group ? box_ : math::Box();
    forget();
    return box;
  }

  void nodeAdded(dg::Node&) override { forget(); }
  void nodeAboutToBeRemoved(dg::Node&) override { forget(); }
  void attributeEvent(dg::AttributeEvent, const dg::Plug&, const dg::Plug&) override { forget(); }
  void plugDirty(const dg::Plug&) override { forget(); }

 private:
  void forget() {
    // A group that is in no scene any more says nothing of whether its graph is there.
    const dg::NodePtr group = std::exchange(group_, {}).lock();
    if (group && group->isAlive()) group->graph().removeObserver(this);
  }
  std::weak_ptr<dg::Node> group_;
  math::Box box_;
};

LastGroup& lastGroup() {
  // Never destroyed: a scene that ends with the program may still tell of its changes.
  static LastGroup& last = *new LastGroup;
  return last;
}

}  // namespace

math::Box takeLastGroupBox(const dg::Node& group) {
  return lastGroup().take(group);
}
void keepLastGroupBox(dg::Node& group, const math::Box& box) {
  lastGroup().keep(group, box);
}

}  // namespace host::edits
