#include "host/cmd/script_jobs.h"

#include <algorithm>

namespace host::cmd {

namespace {

constexpr std::string_view kEvents[] = {
    "dbTraceChanged",
    "resourceLimitStateChange",
    "linearUnitChanged",
    "timeUnitChanged",
    "angularUnitChanged",
    "Undo",
    "Redo",
    "customEvaluatorChanged",
    "idle",
    "idleVeryLow",
    "timeChanged",
    "playbackRangeChanged",
    "SelectionChanged",
    "SelectModeChanged",
    "SelectTypeChanged",
    "SelectPriorityChanged",
    "ToolChanged",
    "PostToolChanged",
    "PreSelectionChangedTriggered",
    "NameChanged",
    "DagObjectCreated",
    "NewSceneOpened",
    "PostSceneRead",
    "SceneOpened",
    "SceneSaved",
    "SceneImported",
    "SceneSegmentChanged",
    "deleteAll",
    "flushingScene",
    "quitApplication",
    "workspaceChanged",
    "cameraChange",
    "cameraDisplayAttributesChange",
    "MenuModeChanged",
    "ColorIndexChanged",
    "polyUVSetChanged",
    "polyColorSetChanged",
    "currentSoundNodeChanged",
    "RecentCommandChanged",
    "displayLayerChange",
    "setModified",
    "SetModified",
    "gridDisplayChanged",
    "interactionStyleChanged",
    "hotkeyListChange",
    "modelEditorChanged",
    "activeViewChanged",
    "freezeOptionsChanged",
    "snapModeChanged",
    "symmetricModellingOptionsChanged",
};

constexpr std::string_view kConditions[] = {
    "SomethingSelected",   "UndoAvailable",    "RedoAvailable",     "busy",
    "playingBack",         "readingFile",      "writingFile",       "flushing",
    "deleteUndoAvailable", "GoButtonEnabled",  "ChannelBoxVisible", "MainWindowVisible",
    "PaneMaximized",       "SomethingHilited",
};

bool waitsForPlug(JobTrigger trigger) {
  return trigger == JobTrigger::AttributeChange || trigger == JobTrigger::ConnectionChange ||
         trigger == JobTrigger::AttributeAdded || trigger == JobTrigger::AttributeDeleted;
}

/// Whether a change of `changed` concerns a job that watches `watched`: the plug itself, one below
/// or one above it.
bool concerns(dg::Plug changed, const dg::Plug& watched) {
  if (changed.node() != watched.node()) return false;
  for (dg::Plug plug = watched; plug; plug = plug.isElement() ? plug.array() : plug.parent())
    if (plug == changed) return true;
  for (dg::Plug plug = changed; plug; plug = plug.isElement() ? plug.array() : plug.parent())
    if (plug == watched) return true;
  return false;
}

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + "\"";
}

constexpr std::string_view kTriggerFlags[] = {
    "-event",       "-conditionTrue",   "-conditionFalse", "-conditionChange",  "-attributeChange",
    "-nodeDeleted", "-nodeNameChanged", "-attributeAdded", "-attributeDeleted", "-connectionChange",
    "-uiDeleted",   "-timeChange",      "-idleEvent",
};

}  // namespace

ScriptJobs::ScriptJobs(scene::Document& document) : document_(document) {
  for (const std::string_view event : kEvents) events_.emplace_back(event);
  for (const std::string_view name : kConditions) conditions_.emplace(name, false);
  document.graph().addObserver(this);
  document.addObserver(this);
}

ScriptJobs::~ScriptJobs() {
  document_.graph().removeObserver(this);
  document_.removeObserver(this);
}

Result<int> ScriptJobs::add(ScriptJob job) {
  switch (job.trigger) {
    case JobTrigger::Event:
      if (std::find(events_.begin(), events_.end(), job.subject) == events_.end())
        return fail(ErrorKind::NotFound, "There is no event called '{}'.", job.subject);
      break;
    case JobTrigger::ConditionTrue:
    case JobTrigger::ConditionFalse:
    case JobTrigger::ConditionChange:
      if (!conditions_.count(job.subject))
        return fail(ErrorKind::NotFound, "There is no condition called '{}'.", job.subject);
      break;
    case JobTrigger::AttributeChange:
    case JobTrigger::ConnectionChange:
    case JobTrigger::AttributeAdded:
    case JobTrigger::AttributeDeleted: {
      auto plug = document_.plug(job.subject);
      if (plug) {
        job.plug = *plug;
        job.node = plug->node()->weak_from_this();
        break;
      }
      // A job may wait for an attribute that is still to be added.
      if (job.trigger != JobTrigger::AttributeAdded) return failWith(std::move(plug.error()));
      auto node = document_.node(std::string_view(job.subject).substr(0, job.subject.find('.')));
      if (!node) return failWith(std::move(node.error()));
      job.node = (*node)->weak_from_this();
      break;
    }
    case JobTrigger::NodeDeleted:
    case JobTrigger::NodeNameChanged: {
      auto node = document_.node(job.subject);
      if (!node) return failWith(std::move(node.error()));
      job.node = (*node)->weak_from_this();
      break;
    }
    case JobTrigger::UiDeleted:
    case JobTrigger::TimeChange:
    case JobTrigger::Idle:
      break;
  }
  job.number = nextNumber_++;
  if (waitsForPlug(job.trigger)) ++watchedPlugs_;
  const int number = job.number;
  jobs_.emplace(number, std::move(job));
  return number;
}

bool ScriptJobs::kill(int number, bool force) {
  const auto found = jobs_.find(number);
  if (found == jobs_.end() || (found->second.isProtected && !force)) return false;
  if (waitsForPlug(found->second.trigger)) --watchedPlugs_;
  jobs_.erase(found);
  return true;
}

void ScriptJobs::killAll(bool force) {
  std::vector<int> numbers;
  for (const auto& [number, job] : jobs_) numbers.push_back(number);
  for (const int number : numbers) kill(number, force);
}

bool ScriptJobs::exists(int number) const {
  return jobs_.count(number) > 0;
}

std::vector<std::string> ScriptJobs::list() const {
  std::vector<std::string> lines;
  for (const auto& [number, job] : jobs_) {
    std::string line = fmt::format("{}: ", number);
    if (job.runOnce) line += "-runOnce ";
    if (job.isProtected) line += "-protected ";
    if (job.killWithScene) line += "-killWithScene ";
    if (!job.parentControl.empty()) line += fmt::format("-parent {} ", quoted(job.parentControl));
    line += kTriggerFlags[static_cast<std::size_t>(job.trigger)];
    if (!job.subject.empty()) line += " " + quoted(job.subject);
    lines.push_back(line + " " + quoted(job.script));
  }
  return lines;
}

std::vector<std::string> ScriptJobs::conditionNames() const {
  std::vector<std::string> names;
  for (const auto& [name, state] : conditions_) names.push_back(name);
  return names;
}

void ScriptJobs::setCondition(const std::string& name, bool state) {
  const auto [slot, isNew] = conditions_.try_emplace(name, state);
  if (!isNew && slot->second == state) return;
  slot->second = state;
  if (isNew) return;
  mark(JobTrigger::ConditionChange, name);
  mark(state ? JobTrigger::ConditionTrue : JobTrigger::ConditionFalse, name);
  conditionChanged(name, state);
}

bool ScriptJobs::condition(const std::string& name) const {
  const auto found = conditions_.find(name);
  return found != conditions_.end() && found->second;
}

void ScriptJobs::mark(JobTrigger trigger, std::string_view subject) {
  for (auto& [number, job] : jobs_)
    if (job.trigger == trigger && job.subject == subject) job.isPending = true;
}

void ScriptJobs::triggerEvent(std::string_view name) {
  mark(JobTrigger::Event, name);
  if (name == "timeChanged")
    for (auto& [number, job] : jobs_)
      if (job.trigger == JobTrigger::TimeChange) job.isPending = true;
  eventTriggered(name);
}

void ScriptJobs::uiDeleted(std::string_view control) {
  mark(JobTrigger::UiDeleted, control);
  for (auto& [number, job] : jobs_)
    if (job.trigger == JobTrigger::UiDeleted && job.isPending) job.runOnce = true;
  for (auto job = jobs_.begin(); job != jobs_.end();) {
    const int number = job->first;
    const bool goes = !job->second.parentControl.empty() && job->second.parentControl == control;
    ++job;
    if (goes) kill(number, true);
  }
}

bool ScriptJobs::hasPending() const {
  return std::any_of(jobs_.begin(), jobs_.end(),
                     [](const auto& entry) { return entry.second.isPending; });
}

std::vector<int> ScriptJobs::pending() const {
  std::vector<int> numbers;
  for (const auto& [number, job] : jobs_)
    if (job.isPending) numbers.push_back(number);
  return numbers;
}

void ScriptJobs::setPending(const std::vector<int>& numbers) {
  for (auto& [number, job] : jobs_)
    job.isPending = std::binary_search(numbers.begin(), numbers.end(), number);
}

std::vector<std::string> ScriptJobs::takePending() {
  std::vector<std::string> scripts;
  std::vector<int> finished;
  for (auto& [number, job] : jobs_) {
    if (!job.isPending && job.trigger != JobTrigger::Idle) continue;
    job.isPending = false;
    scripts.push_back(job.script);
    const bool isOver =
        job.trigger == JobTrigger::NodeDeleted || (waitsForPlug(job.trigger) && job.node.expired());
    if (job.runOnce || isOver) finished.push_back(number);
  }
  for (const int number : finished) kill(number, true);
  return scripts;
}

void ScriptJobs::nodeAboutToBeRemoved(dg::Node& node) {
  for (auto& [number, job] : jobs_)
    if (job.trigger == JobTrigger::NodeDeleted && job.node.lock().get() == &node)
      job.isPending = true;
}

void ScriptJobs::nodeRenamed(dg::Node& node, const std::string&) {
  for (auto& [number, job] : jobs_)
    if (job.trigger == JobTrigger::NodeNameChanged && job.node.lock().get() == &node)
      job.isPending = true;
  triggerEvent("NameChanged");
}

void ScriptJobs::attributeEvent(dg::AttributeEvent event, const dg::Plug& plug, const dg::Plug&) {
  if (watchedPlugs_ == 0) return;
  for (auto& [number, job] : jobs_) {
    if (!waitsForPlug(job.trigger) || job.node.lock().get() != plug.node()) continue;
    bool isDue = false;
    switch (job.trigger) {
      case JobTrigger::AttributeChange:
        isDue = event == dg::AttributeEvent::Set && concerns(plug, job.plug);
        break;
      case JobTrigger::ConnectionChange:
        isDue = (event == dg::AttributeEvent::ConnectionMade ||
                 event == dg::AttributeEvent::ConnectionBroken) &&
                concerns(plug, job.plug);
        break;
      case JobTrigger::AttributeAdded:
        isDue = event == dg::AttributeEvent::Added;
        break;
      case JobTrigger::AttributeDeleted:
        isDue = event == dg::AttributeEvent::Removed && plug == job.plug;
        break;
      default:
        break;
    }
    if (isDue) job.isPending = true;
  }
}

void ScriptJobs::selectionChanged() {
  triggerEvent("SelectionChanged");
  setCondition("SomethingSelected", !document_.selection().isEmpty());
}

void ScriptJobs::dagChanged(dg::Node&, dg::Node*, bool added) {
  if (added) triggerEvent("DagObjectCreated");
}

void ScriptJobs::unitsChanged() {
  triggerEvent("linearUnitChanged");
  triggerEvent("angularUnitChanged");
  triggerEvent("timeUnitChanged");
}

void ScriptJobs::cleared(bool before) {
  if (!before) return;
  std::vector<int> numbers;
  for (auto& [number, job] : jobs_) {
    const bool watchesScene = waitsForPlug(job.trigger) || job.trigger == JobTrigger::NodeDeleted ||
                              job.trigger == JobTrigger::NodeNameChanged;
    if (job.killWithScene || watchesScene) numbers.push_back(number);
  }
  for (const int number : numbers) kill(number, true);
}

}  // namespace host::cmd
