#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/base/signal.h"
#include "host/scene/document.h"

namespace host::cmd {

/// What starts a job.
enum class JobTrigger : std::uint8_t {
  Event,
  ConditionTrue,
  ConditionFalse,
  ConditionChange,
  AttributeChange,
  NodeDeleted,
  NodeNameChanged,
  AttributeAdded,
  AttributeDeleted,
  ConnectionChange,
  UiDeleted,
  TimeChange,
  Idle,
};

struct ScriptJob {
  int number = 0;
  JobTrigger trigger = JobTrigger::Event;
  std::string subject;  ///< event, condition, plug, node or control
  std::string script;
  bool runOnce = false, isProtected = false, killWithScene = false, compressUndo = false;
  std::string parentControl;
  dg::Plug plug;  ///< AttributeChange, ConnectionChange
  std::weak_ptr<dg::Node> node;
  bool isPending = false;
};

/// The script jobs and what they wait for. Observes the document; triggers only mark jobs, which
/// run when the program is idle, each once however often it was triggered.
class ScriptJobs final : public dg::GraphObserver, public scene::DocumentObserver {
 public:
  explicit ScriptJobs(scene::Document& document);
  ~ScriptJobs() override;

  /// Fails for an unknown event or condition, a missing attribute or node. Returns the job's
  /// number.
  Result<int> add(ScriptJob job);
  /// False when there is none; protected ones need `force`.
  bool kill(int number, bool force);
  void killAll(bool force);
  [[nodiscard]] bool exists(int number) const;
  /// As `scriptJob -listJobs` shows them.
  [[nodiscard]] std::vector<std::string> list() const;

  [[nodiscard]] const std::vector<std::string>& eventNames() const { return events_; }
  [[nodiscard]] std::vector<std::string> conditionNames() const;
  void setCondition(const std::string& name, bool state);
  [[nodiscard]] bool condition(const std::string& name) const;

  void triggerEvent(std::string_view name);
  // At once: every event, and every condition that changes.
  Signal<std::string_view> eventTriggered;          ///< its name
  Signal<std::string_view, bool> conditionChanged;  ///< its name and state
  void uiDeleted(std::string_view control);
  /// Takes out the scripts that are due, in order of job number; idle jobs are among them.
  [[nodiscard]] std::vector<std::string> takePending();
  [[nodiscard]] bool hasPending() const;
  /// The numbers of the jobs that are due; setting them drops whatever was triggered since they
  /// were read.
  [[nodiscard]] std::vector<int> pending() const;
  void setPending(const std::vector<int>& numbers);

  void nodeAboutToBeRemoved(dg::Node& node) override;
  void nodeRenamed(dg::Node& node, const std::string& oldName) override;
  void attributeEvent(dg::AttributeEvent event, const dg::Plug& plug,
                      const dg::Plug& other) override;
  void selectionChanged() override;
  void dagChanged(dg::Node& child, dg::Node* parent, bool added) override;
  void unitsChanged() override;
  void cleared(bool before) override;

 private:
  void mark(JobTrigger trigger, std::string_view subject);

  scene::Document& document_;
  std::map<int, ScriptJob> jobs_;
  std::map<std::string, bool> conditions_;
  std::vector<std::string> events_;
  int nextNumber_ = 1;
  int watchedPlugs_ =
      0;  ///< jobs that wait for a plug or node: edits are only looked at when there are some
};

}  // namespace host::cmd
