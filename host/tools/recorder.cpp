#include "host/tools/recorder.h"

#include <algorithm>
#include <utility>

#include "host/base/messages.h"
#include "host/cmd/loop.h"

namespace host::tools {

Recorder::Recorder(cmd::Session& session, ToolRegistry& tools, Recording begun)
    : session_(session), tools_(tools), recording_(std::move(begun)), start_(session.loop().now()) {
  connections_.push_back(tools.received.connect([this](const InputEvent& event) {
    if (!isCause()) return;
    add(RecordedStep::Kind::Event);
    recording_.steps.back().event = event;
  }));
  connections_.push_back(tools.currentChanged.connect([this] {
    if (isCause()) add(RecordedStep::Kind::Tool, toolWords(tools_));
  }));
  connections_.push_back(session.loop().worked.connect([this] { add(RecordedStep::Kind::Turn); }));
  connections_.push_back(session.lineBegins.connect([this](std::string_view) {
    if (isCause()) lineStart_ = recording_.steps.size();
  }));
  connections_.push_back(session.lineRun.connect([this](std::string_view text) {
    if (isCause()) endLine(text);
  }));
}

bool Recorder::isCause() const {
  return !tools_.isHandling() && !session_.loop().isTurning();
}

void Recorder::add(RecordedStep::Kind kind, std::string text) {
  RecordedStep step;
  step.kind = kind;
  step.time = session_.loop().now() - start_;
  step.text = std::move(text);
  recording_.steps.push_back(std::move(step));
}

/// A line that makes input itself, or lets time go by, is told of by what it made.
void Recorder::endLine(std::string_view text) {
  const auto start = std::exchange(lineStart_, std::nullopt);
  if (!start) return;  // it began before the recording did
  auto& steps = recording_.steps;
  const auto begin = steps.begin() + static_cast<std::ptrdiff_t>(*start);
  const bool hasInput = std::any_of(begin, steps.end(), [](const RecordedStep& step) {
    return step.kind == RecordedStep::Kind::Event || step.kind == RecordedStep::Kind::Turn;
  });
  if (hasInput) return;
  steps.erase(begin, steps.end());  // the tools that it chose
  add(RecordedStep::Kind::Line, std::string(text));
}

std::string toolWords(const ToolRegistry& tools) {
  const std::string maker = tools.current()->maker();
  return maker.empty() ? tools.currentName() : tools.currentName() + " " + maker;
}

Result<void> runLine(cmd::Session& session, const std::string& line) {
  const auto done = session.executeLine(line, {.undo = false, .postErrors = false});
  return done ? Result<void>() : failWith(done.error());
}

Result<void> chooseTool(cmd::Session& session, ToolRegistry& tools, const std::string& words) {
  const std::size_t end = words.find(' ');
  const std::string name = words.substr(0, end);
  const std::string maker = end == std::string::npos ? std::string() : words.substr(end + 1);
  if (!tools.find(name) && !maker.empty()) HOST_TRY(runLine(session, maker + " " + name));
  HOST_TRY(tools.setCurrent(name));
  session.scriptJobs().triggerEvent("PostToolChanged");
  return {};
}

void playSteps(cmd::Session& session, ToolRegistry& tools, const Recording& recording, double start,
               std::size_t first, std::size_t end) {
  cmd::Loop& loop = session.loop();
  for (std::size_t i = first; i < std::min(end, recording.steps.size()); ++i) {
    if (session.isQuitting || session.interpreter().isInterrupted()) return;
    const RecordedStep& step = recording.steps[i];
    if (step.kind == RecordedStep::Kind::Turn) {
      session.runByHand([&] { loop.turnAt(start + step.time); });
      continue;
    }
    // Time goes on. Where the recording had a timer that was called, it has a turn.
    if (start + step.time > loop.now())
      session.runByHand([&] { loop.timers().step(start + step.time); });
    session.runByHand([&] {
      if (step.kind == RecordedStep::Kind::Event) {
        (void)tools.handle(step.event);
      } else if (step.kind == RecordedStep::Kind::Line) {
        (void)session.executeLine(step.text);
      } else if (const auto done = chooseTool(session, tools, step.text); !done) {
        postMessage(MessageKind::Error, done.error().message);
      }
    });
  }
}

std::size_t stepsUntil(const Recording& recording, std::size_t events) {
  std::size_t done = 0, step = 0;
  for (; step < recording.steps.size(); ++step)
    if (recording.steps[step].kind != RecordedStep::Kind::Turn && done++ == events) break;
  return step;
}

namespace {

using Steps = std::vector<RecordedStep>;
using Chunks = std::vector<Steps>;

bool isEvent(const RecordedStep& step, InputKind kind) {
  return step.kind == RecordedStep::Kind::Event && step.event.kind == kind;
}

/// What goes together when gestures are left out: a press with all up to its release, a key down
/// with its release, any other step by itself.
Chunks gesturesOf(const Steps& steps) {
  Chunks chunks;
  bool isDown = false, isKeyDown = false;
  for (const RecordedStep& step : steps) {
    if (!isDown && !isKeyDown) chunks.emplace_back();
    chunks.back().push_back(step);
    if (isEvent(step, InputKind::Press)) isDown = true;
    if (isEvent(step, InputKind::Release)) isDown = false;
    if (isEvent(step, InputKind::KeyPress)) isKeyDown = true;
    if (isEvent(step, InputKind::KeyRelease)) isKeyDown = false;
  }
  return chunks;
}

/// The same with each step by itself but what a hand can't do without: the ends of a gesture stand
/// together with what can't be left out alone.
bool canGoAlone(const RecordedStep& step) {
  return !isEvent(step, InputKind::Press) && !isEvent(step, InputKind::Release) &&
         !isEvent(step, InputKind::KeyPress) && !isEvent(step, InputKind::KeyRelease);
}

/// Leaves out chunks for which `isOptional`, in ever smaller runs, until none can go.
Chunks reduceChunks(Chunks chunks, const std::function<bool(const Steps&)>& isOptional,
                    const std::function<bool(const Chunks&)>& holds) {
  std::size_t run = std::max<std::size_t>(chunks.size() / 2, 1);
  while (true) {
    bool hasShrunk = false;
    for (std::size_t at = 0; at < chunks.size();) {
      Chunks fewer;
      for (std::size_t i = 0; i < chunks.size(); ++i)
        if (i < at || i >= at + run || !isOptional(chunks[i])) fewer.push_back(chunks[i]);
      if (fewer.size() < chunks.size() && holds(fewer)) {
        chunks = std::move(fewer);
        hasShrunk = true;
      } else {
        at += run;
      }
    }
    if (run > 1)
      run /= 2;
    else if (!hasShrunk)
      return chunks;
  }
}

Steps joined(const Chunks& chunks) {
  Steps steps;
  for (const Steps& chunk : chunks) steps.insert(steps.end(), chunk.begin(), chunk.end());
  return steps;
}

}  // namespace

Recording reduceRecording(const Recording& recording,
                          const std::function<bool(const Recording&)>& holds) {
  Recording reduced = recording;
  const auto holdsFor = [&](const Chunks& chunks) {
    Recording tried = recording;
    tried.steps = joined(chunks);
    return holds(tried);
  };
  reduced.steps = joined(reduceChunks(
      gesturesOf(reduced.steps), [](const Steps&) { return true; }, holdsFor));
  Chunks single;
  for (const RecordedStep& step : reduced.steps) single.push_back({step});
  reduced.steps = joined(reduceChunks(
      std::move(single), [](const Steps& chunk) { return canGoAlone(chunk.front()); }, holdsFor));
  return reduced;
}

}  // namespace host::tools
