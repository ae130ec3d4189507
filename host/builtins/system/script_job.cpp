#include "host/builtins/common/command.h"

namespace host::builtins {

namespace {

using cmd::JobTrigger;

struct TriggerFlag {
  const char *shortName, *longName;
  JobTrigger trigger;
  bool hasSubject;
};
constexpr TriggerFlag kTriggers[] = {
    {"e", "event", JobTrigger::Event, true},
    {"ct", "conditionTrue", JobTrigger::ConditionTrue, true},
    {"cf", "conditionFalse", JobTrigger::ConditionFalse, true},
    {"cc", "conditionChange", JobTrigger::ConditionChange, true},
    {"ac", "attributeChange", JobTrigger::AttributeChange, true},
    {"aa", "attributeAdded", JobTrigger::AttributeAdded, true},
    {"ad", "attributeDeleted", JobTrigger::AttributeDeleted, true},
    {"con", "connectionChange", JobTrigger::ConnectionChange, true},
    {"nd", "nodeDeleted", JobTrigger::NodeDeleted, true},
    {"nnc", "nodeNameChanged", JobTrigger::NodeNameChanged, true},
    {"uid", "uiDeleted", JobTrigger::UiDeleted, true},
    {"tc", "timeChange", JobTrigger::TimeChange, false},
    {"ie", "idleEvent", JobTrigger::Idle, false},
};

CommandResult addJob(cmd::ScriptJobs& jobs, const ParsedArgs& args) {
  for (const TriggerFlag& flag : kTriggers) {
    if (!args.has(flag.longName)) continue;
    cmd::ScriptJob job;
    job.trigger = flag.trigger;
    if (flag.hasSubject) job.subject = args.text(flag.longName);
    job.script = args.text(flag.longName, {}, flag.hasSubject ? 1 : 0);
    job.runOnce = args.boolean("runOnce");
    job.isProtected = args.has("protected");
    job.killWithScene = args.has("killWithScene");
    job.parentControl = args.text("parent");
    if (args.has("replacePrevious") && !job.parentControl.empty())
      jobs.uiDeleted(job.parentControl);
    auto number = jobs.add(std::move(job));
    if (!number) return failWith(std::move(number.error()));
    return mel::Value(*number);
  }
  return fail(
      "scriptJob: say what the script waits for, as in -event \"SelectionChanged\" \"...\".");
}

CommandResult scriptJob(Context& context, const ParsedArgs& args) {
  cmd::ScriptJobs& jobs = context.session.scriptJobs();
  const bool isForced = args.has("force");
  if (args.has("listEvents")) return toValue(jobs.eventNames());
  if (args.has("listConditions")) return toValue(jobs.conditionNames());
  if (args.has("listJobs")) return toValue(jobs.list());
  if (args.has("exists")) return mel::Value(jobs.exists(args.integer("exists")));
  if (args.has("killAll")) {
    jobs.killAll(isForced);
    return mel::Value();
  }
  if (args.has("kill")) {
    for (int use = 0; use < args.uses("kill"); ++use) {
      const int number = args.values("kill", use).front().intValue();
      if (!jobs.kill(number, isForced) && jobs.exists(number))
        return fail("scriptJob: job {} is protected: use -force to end it.", number);
    }
    return mel::Value();
  }
  return addJob(jobs, args);
}

}  // namespace

void registerScriptJob(CommandRegistry& registry) {
  Syntax syntax;
  for (const TriggerFlag& flag : kTriggers)
    syntax.flag(flag.shortName, flag.longName,
                flag.hasSubject ? std::vector<ArgType>{ArgType::String, ArgType::Script}
                                : std::vector<ArgType>{ArgType::Script});
  syntax.flag("ro", "runOnce", {ArgType::Bool})
      .flag("pro", "protected")
      .flag("kws", "killWithScene")
      .flag("cu", "compressUndo", {ArgType::Bool})
      .flag("p", "parent", {ArgType::String})
      .flag("rp", "replacePrevious")
      .flag("per", "permanent")
      .flag("k", "kill", {ArgType::Int})
      .multiUse()
      .flag("ka", "killAll")
      .flag("f", "force")
      .flag("ex", "exists", {ArgType::Int})
      .flag("le", "listEvents")
      .flag("lc", "listConditions")
      .flag("lj", "listJobs");
  defineQuery(registry, "scriptJob", syntax, scriptJob);
}

}  // namespace host::builtins
