#pragma once

#include <maya/MMessage.h>

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/api/core/access.h"
#include "host/cmd/loop.h"
#include "host/cmd/session.h"

namespace host::api {

/// What a callback waits for.
enum class CallbackKind {
  AttributeChanged,
  AttributeAddedOrRemoved,
  NodeDirty,
  NodeDirtyPlug,
  NameChanged,
  NodeAboutToDelete,
  NodePreRemoval,
  NodeDestroyed,
  NodeAdded,
  NodeRemoved,
  Connection,
  DagChange,
  SelectionChanged,
  BeforeDuplicate,
  AfterDuplicate,
  NodeAddedToModel,
  NodeRemovedFromModel,
  Event,
  Timer,
  UserEvent,
  Scene,
  SceneCheck,
  SceneText,
  Condition,
  TimeChanged,
  CommandLine,
  CommandOutput,
};

/// One thing that happened, for the callbacks that wait for its kind.
struct Happening {
  dg::Node* node = nullptr;
  dg::Plug plug = {}, other = {};
  int message = 0;        ///< an attribute, DAG or scene message
  std::string text = {};  ///< old name, event or condition
  bool flag = false;      ///< made, state
  double elapsed = 0, since = 0;
  MDagPath child = {}, parent = {};
  void* data = nullptr;
  MDGModifier* modifier = nullptr;  ///< for what is to be done along with a deletion
  bool isRefused = false;           ///< set by a check callback
};

/// The callbacks that plug-ins have registered with one session. Hears of everything as it happens.
///
/// What a callback changes in the document isn't recorded: it follows from the edit that it was
/// told of. A callback may remove itself or others while it runs.
class Callbacks final : public dg::GraphObserver, public scene::DocumentObserver {
 public:
  struct Callback {
    CallbackKind kind = CallbackKind::Event;
    std::weak_ptr<dg::Node> node;
    bool isForOneNode = false;
    std::string subject;  ///< an event, a condition, a node type
    int message = 0;
    std::function<void(Happening&)> call;
    double period = 0;                     ///< timers, seconds
    Timers::Id timer = 0;                  ///< the loop's
    struct PluginRecord* owner = nullptr;  ///< set by `add`
  };

  Callbacks();
  ~Callbacks() override;

  /// `function` tells whose callback it is: the plug-in's module has to take it along when it goes.
  MCallbackId add(Callback callback, const void* function);
  bool remove(MCallbackId id);
  /// Removes those that wait for this about that subject.
  void removeAll(CallbackKind kind, const std::string& subject);
  [[nodiscard]] std::vector<MCallbackId> ofNode(const dg::Node& node) const;
  [[nodiscard]] MCallbackId current() const { return running_.empty() ? 0 : running_.back(); }
  /// Calls those that wait for this, in the order in which they were added.
  void fire(CallbackKind kind, Happening& happening);
  void fire(CallbackKind kind, Happening&& happening) { fire(kind, happening); }

  /// Tells those that wait for the end of a node that has left the undo queue too.
  void reportDestroyed();
  /// User events that plug-ins have defined.
  std::vector<std::string> userEvents;

  /// From the first callback for what is said on, messages come by here.
  void watchMessages();
  /// Tells of a new node that has its place.
  void tellOfNew(dg::Node& node);

  void nodeAdded(dg::Node& node) override;
  void nodeAboutToBeRemoved(dg::Node& node) override;
  void nodeLeaving(dg::Node& node) override;
  void nodeRemoved(dg::Node& node) override;
  void nodeRenamed(dg::Node& node, const std::string& oldName) override;
  void attributeEvent(dg::AttributeEvent event, const dg::Plug& plug,
                      const dg::Plug& other) override;
  void plugDirty(const dg::Plug& plug) override;
  void selectionChanged() override;
  void dagChanged(dg::Node& child, dg::Node* parent, bool added) override;

 private:
  [[nodiscard]] bool waits(CallbackKind kind) const {
    return counts_[static_cast<std::size_t>(kind)] > 0;
  }
  [[nodiscard]] static bool fits(const Callback& callback, const Happening& happening);

  /// @return whether the message may be shown
  bool tellMessage(int kind, std::string_view text);
  void runTimer(MCallbackId id, double now, double elapsed);

  scene::Document& document_;
  std::vector<Connection> connections_;
  std::map<MCallbackId, Callback> callbacks_;
  std::vector<int> counts_;
  std::vector<MCallbackId> running_;
  std::vector<const dg::Node*>
      unlinked_;  ///< DAG nodes that were added and have no place in the hierarchy yet
  MCallbackId next_ = 1;
  bool isTooDeep_ = false;  ///< told of already
  bool watchesMessages_ = false, isTelling_ = false;
  std::shared_ptr<Callbacks*> self_ = std::make_shared<Callbacks*>(this);
};

/// While it lives, nodes that are made are collected instead of told of: a modifier's nodes are
/// there for whoever queues steps on them, and for all others when it does them.
class NewNodesHeld {
 public:
  explicit NewNodesHeld(std::vector<std::weak_ptr<dg::Node>>& into);
  ~NewNodesHeld();
  NewNodesHeld(const NewNodesHeld&) = delete;
  NewNodesHeld& operator=(const NewNodesHeld&) = delete;

 private:
  std::vector<std::weak_ptr<dg::Node>>* outer_;
};
/// Tells the callbacks of nodes that were held back and are still there.
void tellOfNewNodes(const std::vector<std::weak_ptr<dg::Node>>& nodes);

/// This session's; made on first use.
[[nodiscard]] Callbacks& callbacks();

}  // namespace host::api
