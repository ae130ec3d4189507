#include "host/api/message/callbacks.h"

#include <dlfcn.h>
#include <maya/MDagMessage.h>
#include <maya/MNodeMessage.h>
#include <maya/MSceneMessage.h>

#include <algorithm>
#include <exception>
#include <optional>

#include "host/api/graph/modifier.h"
#include "host/api/plugin/loader.h"
#include "host/api/session/api_state.h"
#include "host/base/messages.h"
#include "host/scene/replay.h"
#include "host/workspace/workspace.h"

namespace host::api {
namespace {

constexpr std::size_t kKindCount = static_cast<std::size_t>(CallbackKind::CommandOutput) + 1;

/// The plug-in whose module holds the function; null for functions of the program.
PluginRecord* ownerOf(const void* function) {
  auto* loader = dynamic_cast<Loader*>(cmd::currentSession().pluginLoader.get());
  Dl_info info{};
  if (!loader || !function || dladdr(function, &info) == 0 || !info.dli_fname)
    return registeringPlugin();
  const auto record = loader->find(info.dli_fname);
  return record ? record.get() : registeringPlugin();
}

std::string registrationName(MCallbackId id) {
  return fmt::format("callback {}", id);
}

int attributeMessage(dg::AttributeEvent event) {
  using E = dg::AttributeEvent;
  switch (event) {
    case E::Set:
      return MNodeMessage::kAttributeSet;
    case E::ConnectionMade:
      return MNodeMessage::kConnectionMade;
    case E::ConnectionBroken:
      return MNodeMessage::kConnectionBroken;
    case E::Locked:
      return MNodeMessage::kAttributeLocked;
    case E::Unlocked:
      return MNodeMessage::kAttributeUnlocked;
    case E::Added:
      return MNodeMessage::kAttributeAdded;
    case E::Removed:
      return MNodeMessage::kAttributeRemoved;
    case E::ArrayElementAdded:
      return MNodeMessage::kAttributeArrayAdded;
    case E::ArrayElementRemoved:
      return MNodeMessage::kAttributeArrayRemoved;
    case E::KeyableChanged:
      return MNodeMessage::kAttributeKeyable;
    case E::Evaluated:
      return MNodeMessage::kAttributeEval;
    case E::Renamed:
      return MNodeMessage::kAttributeRenamed;
  }
  return 0;
}

int messageOf(workspace::SceneStage stage) {
  using S = workspace::SceneStage;
  switch (stage) {
    case S::BeforeNew:
      return MSceneMessage::kBeforeNew;
    case S::AfterNew:
      return MSceneMessage::kAfterNew;
    case S::BeforeOpen:
      return MSceneMessage::kBeforeOpen;
    case S::AfterOpen:
      return MSceneMessage::kAfterOpen;
    case S::BeforeImport:
      return MSceneMessage::kBeforeImport;
    case S::AfterImport:
      return MSceneMessage::kAfterImport;
    case S::BeforeRead:
      return MSceneMessage::kBeforeFileRead;
    case S::AfterRead:
      return MSceneMessage::kAfterFileRead;
    case S::BeforeSave:
      return MSceneMessage::kBeforeSave;
    case S::AfterSave:
      return MSceneMessage::kAfterSave;
    case S::BeforeExport:
      return MSceneMessage::kBeforeExport;
    case S::AfterExport:
      return MSceneMessage::kAfterExport;
  }
  return MSceneMessage::kSceneUpdate;
}

/// The question that comes before a work; -1 for stages that nobody is asked about.
int checkOf(workspace::SceneStage stage) {
  using S = workspace::SceneStage;
  switch (stage) {
    case S::BeforeNew:
      return MSceneMessage::kBeforeNewCheck;
    case S::BeforeOpen:
      return MSceneMessage::kBeforeOpenCheck;
    case S::BeforeImport:
      return MSceneMessage::kBeforeImportCheck;
    case S::BeforeSave:
      return MSceneMessage::kBeforeSaveCheck;
    case S::BeforeExport:
      return MSceneMessage::kBeforeExportCheck;
    default:
      return -1;
  }
}

/// Where new nodes are collected now; null: they are told of.
std::vector<std::weak_ptr<dg::Node>>* heldNodes = nullptr;

/// Callbacks that are called from callbacks end here, long before the stack does.
constexpr std::size_t kDeepestNesting = 50;

/// Says that a plug-in's code is running, for as long as it lives: it can't be unloaded meanwhile.
class EnteredScope {
 public:
  explicit EnteredScope(PluginRecord* record) : record_(record) {
    if (record_) ++record_->entered;
  }
  ~EnteredScope() {
    if (record_) --record_->entered;
  }
  EnteredScope(const EnteredScope&) = delete;
  EnteredScope& operator=(const EnteredScope&) = delete;

 private:
  PluginRecord* record_;
};

/// Where `child` stands, or came to stand under `parent`.
scene::DagPath placeOf(dg::Node& child, dg::Node* parent, bool added) {
  if (scene::dagLinks(child).parents.empty()) return scene::DagPath({&child});
  if (added && parent)
    for (const scene::DagPath& path : scene::allPaths(child))
      if (path.parent().node() == parent) return path;
  return scene::firstPath(child);
}

}  // namespace

NewNodesHeld::NewNodesHeld(std::vector<std::weak_ptr<dg::Node>>& into)
    : outer_(std::exchange(heldNodes, &into)) {}
NewNodesHeld::~NewNodesHeld() {
  heldNodes = outer_;
}

void tellOfNewNodes(const std::vector<std::weak_ptr<dg::Node>>& nodes) {
  for (const auto& each : nodes)
    if (const auto node = each.lock(); node && node->isAlive()) callbacks().tellOfNew(*node);
}

Callbacks& callbacks() {
  auto& made = apiState().callbacks;
  if (!made) made = std::make_unique<Callbacks>();
  return *made;
}

Callbacks::Callbacks() : document_(cmd::currentSession().document()), counts_(kKindCount, 0) {
  document_.graph().addObserver(this);
  document_.addObserver(this);
  cmd::ScriptJobs& jobs = cmd::currentSession().scriptJobs();
  connections_.push_back(jobs.eventTriggered.connect([this](std::string_view name) {
    fire(CallbackKind::Event, {.text = std::string(name)});
    if (name == "timeChanged") fire(CallbackKind::TimeChanged, {});
  }));
  workspace::SceneHooks& hooks = workspace::workspaceOf(cmd::currentSession()).sceneHooks;
  connections_.push_back(
      hooks.reached.connect([this](workspace::SceneStage stage, const std::string& path) {
        const int message = messageOf(stage);
        fire(CallbackKind::Scene, {.message = message, .text = path});
        fire(CallbackKind::SceneText, {.message = message, .text = path});
      }));
  connections_.push_back(hooks.asked.connect(
      [this](workspace::SceneStage stage, const std::string& path, bool& isRefused) {
        Happening asked{.message = checkOf(stage), .text = path};
        fire(CallbackKind::SceneCheck, asked);
        isRefused = isRefused || asked.isRefused;
      }));
  connections_.push_back(jobs.conditionChanged.connect([this](std::string_view name, bool state) {
    fire(CallbackKind::Condition, {.text = std::string(name), .flag = state});
  }));
  connections_.push_back(cmd::currentSession().lineBegins.connect([this](std::string_view line) {
    fire(CallbackKind::CommandLine, {.text = std::string(line)});
  }));
  connections_.push_back(cmd::currentSession().loop().turned.connect([this] {
    reportDestroyed();
    fire(CallbackKind::Event, {.text = "idle"});
  }));
}

Callbacks::~Callbacks() {
  connections_.clear();
  for (const auto& [id, callback] : callbacks_)
    cmd::currentSession().loop().timers().remove(callback.timer);
  document_.graph().removeObserver(this);
  document_.removeObserver(this);
}

MCallbackId Callbacks::add(Callback callback, const void* function) {
  const MCallbackId id = next_++;
  if (callback.kind == CallbackKind::Timer)
    callback.timer = cmd::currentSession().loop().timers().add(
        callback.period, [this, id](double now, double elapsed) { runTimer(id, now, elapsed); });
  ++counts_[static_cast<std::size_t>(callback.kind)];
  callback.owner = ownerOf(function);
  if (callback.owner)
    callback.owner->add(PluginRecord::Registration::Kind::Other, registrationName(id),
                        [id] { (void)callbacks().remove(id); });
  callbacks_.emplace(id, std::move(callback));
  return id;
}

bool Callbacks::remove(MCallbackId id) {
  const auto found = callbacks_.find(id);
  if (found == callbacks_.end()) return false;
  --counts_[static_cast<std::size_t>(found->second.kind)];
  PluginRecord* owner = found->second.owner;
  if (found->second.timer) cmd::currentSession().loop().timers().remove(found->second.timer);
  callbacks_.erase(found);
  if (owner)
    std::erase_if(owner->registrations,
                  [&](const auto& each) { return each.name == registrationName(id); });
  return true;
}

void Callbacks::removeAll(CallbackKind kind, const std::string& subject) {
  std::vector<MCallbackId> ids;
  for (const auto& [id, callback] : callbacks_)
    if (callback.kind == kind && callback.subject == subject) ids.push_back(id);
  for (const MCallbackId id : ids) (void)remove(id);
}

std::vector<MCallbackId> Callbacks::ofNode(const dg::Node& node) const {
  std::vector<MCallbackId> ids;
  for (const auto& [id, callback] : callbacks_)
    if (callback.isForOneNode && callback.node.lock().get() == &node) ids.push_back(id);
  return ids;
}

bool Callbacks::fits(const Callback& callback, const Happening& happening) {
  if (callback.isForOneNode && callback.node.lock().get() != happening.node) return false;
  switch (callback.kind) {
    case CallbackKind::NodeAdded:
    case CallbackKind::NodeRemoved:
      return callback.subject.empty() || callback.subject == "dependNode" ||
             happening.node->type().isA(callback.subject);
    case CallbackKind::Event:
    case CallbackKind::UserEvent:
    case CallbackKind::Condition:
      return callback.subject == happening.text;
    case CallbackKind::Scene:
    case CallbackKind::SceneCheck:
    case CallbackKind::SceneText:
      return callback.message == happening.message;
    case CallbackKind::DagChange:
      return callback.message < 0 || callback.message == happening.message;
    default:
      return true;
  }
}

void Callbacks::fire(CallbackKind kind, Happening& happening) {
  if (!waits(kind)) return;
  std::vector<MCallbackId> due;
  for (const auto& [id, callback] : callbacks_)
    if (callback.kind == kind && fits(callback, happening)) due.push_back(id);
  if (!due.empty() && running_.size() >= kDeepestNesting) {
    if (!std::exchange(isTooDeep_, true))
      postMessage(MessageKind::Error,
                  "Callbacks call each other without end: those that would come next are left out");
    return;
  }
  for (const MCallbackId id : due) {
    const auto found = callbacks_.find(id);
    if (found == callbacks_.end()) continue;  // an earlier one removed it
    const auto call = found->second.call;
    const EnteredScope entered(found->second.owner);
    // What a callback does by the API is its own; within a replay it is kept among the records.
    std::optional<scene::Journal::Scope> unrecorded;
    if (!scene::isReplaying()) unrecorded.emplace(document_.journal(), nullptr);
    running_.push_back(id);
    try {
      call(happening);
    } catch (const std::exception& exception) {
      postMessage(MessageKind::Error,
                  fmt::format("A callback threw an exception: {}", exception.what()));
    } catch (...) {
      postMessage(MessageKind::Error, "A callback threw an exception");
    }
    running_.pop_back();
  }
  if (running_.empty()) isTooDeep_ = false;
}

void Callbacks::runTimer(MCallbackId id, double now, double elapsed) {
  const auto call = callbacks_.at(id).call;  // it may take itself off
  const EnteredScope entered(callbacks_.at(id).owner);
  Happening tick{.elapsed = elapsed, .since = now - elapsed};
  running_.push_back(id);
  try {
    call(tick);
  } catch (const std::exception& exception) {
    postMessage(MessageKind::Error,
                fmt::format("A timer callback threw an exception: {}", exception.what()));
  } catch (...) {
    postMessage(MessageKind::Error, "A timer callback threw an exception");
  }
  running_.pop_back();
}

void Callbacks::reportDestroyed() {
  if (!waits(CallbackKind::NodeDestroyed)) return;
  std::vector<MCallbackId> gone;
  for (const auto& [id, callback] : callbacks_)
    if (callback.kind == CallbackKind::NodeDestroyed && callback.node.expired()) gone.push_back(id);
  for (const MCallbackId id : gone) {
    const auto found = callbacks_.find(id);
    if (found == callbacks_.end()) continue;
    const auto call = found->second.call;
    Happening end;
    call(end);
    (void)remove(id);
  }
}

void Callbacks::nodeAdded(dg::Node& node) {
  if (!waits(CallbackKind::NodeAdded) && !waits(CallbackKind::NodeAddedToModel)) return;
  // A node of the hierarchy is told of once it has its place there, so that a callback can ask for
  // its path.
  if (node.type().isA("dagNode")) {
    unlinked_.push_back(&node);
    return;
  }
  tellOfNew(node);
}
void Callbacks::tellOfNew(dg::Node& node) {
  if (heldNodes) {
    heldNodes->push_back(node.weak_from_this());
    return;
  }
  fire(CallbackKind::NodeAdded, {.node = &node});
  if (scene::isDagNode(node) && node.isAlive())
    fire(CallbackKind::NodeAddedToModel, {.node = &node});
}
void Callbacks::nodeAboutToBeRemoved(dg::Node& node) {
  if (waits(CallbackKind::NodeAboutToDelete)) {
    MDGModifier modifier;
    fire(CallbackKind::NodeAboutToDelete, {.node = &node, .modifier = &modifier});
    // What the callbacks asked for is part of the deletion, and is taken back and done again with
    // it.
    ModifierRep& rep = modifierOf(modifier);
    if (const auto done = rep.run(); !done) postMessage(MessageKind::Error, done.error().message);
    if (document_.journal().isRecording() && !rep.done.isEmpty())
      document_.journal().record(scene::makeChange(std::move(rep.done)));
  }
  fire(CallbackKind::NodePreRemoval, {.node = &node});
}
void Callbacks::nodeLeaving(dg::Node& node) {
  fire(CallbackKind::NodeRemoved, {.node = &node});
  fire(CallbackKind::NodeRemovedFromModel, {.node = &node});
}
void Callbacks::nodeRemoved(dg::Node& node) {
  std::erase(unlinked_, &node);
}
void Callbacks::nodeRenamed(dg::Node& node, const std::string& oldName) {
  fire(CallbackKind::NameChanged, {.node = &node, .text = oldName});
}
void Callbacks::attributeEvent(dg::AttributeEvent event, const dg::Plug& plug,
                               const dg::Plug& other) {
  using E = dg::AttributeEvent;
  const bool isConnection = event == E::ConnectionMade || event == E::ConnectionBroken;
  const int message = attributeMessage(event);
  if (isConnection)
    fire(CallbackKind::Connection,
         {.plug = plug, .other = other, .flag = event == E::ConnectionMade});
  if (event == E::Added || event == E::Removed) {
    fire(CallbackKind::AttributeAddedOrRemoved,
         {.node = plug.node(), .plug = plug, .message = message});
    return;
  }
  if (!waits(CallbackKind::AttributeChanged)) return;
  if (!isConnection) {
    fire(CallbackKind::AttributeChanged,
         {.node = plug.node(), .plug = plug, .other = other, .message = message});
    return;
  }
  // Both ends hear of a connection; the one that it arrives at is told so.
  fire(CallbackKind::AttributeChanged,
       {.node = other.node(), .plug = other, .other = plug, .message = message});
  fire(CallbackKind::AttributeChanged, {.node = plug.node(),
                                        .plug = plug,
                                        .other = other,
                                        .message = message | MNodeMessage::kIncomingDirection});
}
void Callbacks::plugDirty(const dg::Plug& plug) {
  if (!waits(CallbackKind::NodeDirty) && !waits(CallbackKind::NodeDirtyPlug)) return;
  fire(CallbackKind::NodeDirty, {.node = plug.node(), .plug = plug});
  fire(CallbackKind::NodeDirtyPlug, {.node = plug.node(), .plug = plug});
}
void Callbacks::selectionChanged() {
  fire(CallbackKind::SelectionChanged, {});
}
void Callbacks::dagChanged(dg::Node& child, dg::Node* parent, bool added) {
  if (added && std::erase(unlinked_, &child) > 0) tellOfNew(child);
  if (!waits(CallbackKind::DagChange)) return;
  const MDagPath above = parent ? wrap(scene::firstPath(*parent)) : wrap(scene::DagPath());
  const MDagPath below = wrap(placeOf(child, parent, added));
  const bool isInstance = scene::dagLinks(child).parents.size() > (added ? 1u : 0u);
  const auto tell = [&](int message) {
    fire(CallbackKind::DagChange,
         {.node = &child, .message = message, .child = below, .parent = above});
  };
  tell(added ? MDagMessage::kParentAdded : MDagMessage::kParentRemoved);
  tell(added ? MDagMessage::kChildAdded : MDagMessage::kChildRemoved);
  if (isInstance) tell(added ? MDagMessage::kInstanceAdded : MDagMessage::kInstanceRemoved);
}
}  // namespace host::api

using namespace host;

MStatus MMessage::removeCallback(MCallbackId id) {
  return api::callbacks().remove(id) ? MStatus::kSuccess : MStatus::kInvalidParameter;
}
MStatus MMessage::removeCallbacks(const MCallbackIdArray& ids) {
  MStatus status;
  for (unsigned int i = 0; i < ids.length(); ++i)
    if (!removeCallback(ids[i])) status = MStatus::kInvalidParameter;
  return status;
}
MStatus MMessage::nodeCallbacks(const MObject& node, MCallbackIdArray& ids) {
  ids.clear();
  const dg::Node* inner = api::nodeOf(node);
  if (!inner) return MStatus::kInvalidParameter;
  for (const MCallbackId id : api::callbacks().ofNode(*inner)) ids.append(id);
  return MStatus::kSuccess;
}
MCallbackId MMessage::currentCallbackId(MStatus* status) {
  const MCallbackId id = api::callbacks().current();
  api::setStatus(status, id ? MStatus::kSuccess : MStatus::kFailure);
  return id;
}
