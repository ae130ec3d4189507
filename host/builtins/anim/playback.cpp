// playbackOptions and play: what part of the animation is played.
#include "host/workspace/playback.h"

#include <algorithm>

#include "host/builtins/common/command.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using workspace::Playback;

constexpr const char* kLoops[] = {"once", "continuous", "oscillate"};
constexpr const char* kViews[] = {"active", "all"};

Result<int> wordIn(std::span<const char* const> words, const std::string& word) {
  for (std::size_t i = 0; i < words.size(); ++i)
    if (word == words[i]) return static_cast<int>(i);
  std::string all;
  for (const char* each : words) all += (all.empty() ? "" : ", ") + std::string(each);
  return fail("playbackOptions: '{}' is not one of {}.", word, all);
}

CommandResult queryPlayback(const ParsedArgs& args, const Playback& now, double rate) {
  if (args.has("minTime")) return mel::Value(now.minimum * rate);
  if (args.has("maxTime")) return mel::Value(now.maximum * rate);
  if (args.has("animationStartTime")) return mel::Value(now.start * rate);
  if (args.has("animationEndTime")) return mel::Value(now.end * rate);
  if (args.has("by")) return mel::Value(now.by);
  if (args.has("playbackSpeed")) return mel::Value(now.speed);
  if (args.has("maxPlaybackSpeed")) return mel::Value(now.fastest);
  if (args.has("framesPerSecond")) return mel::Value(rate);
  if (args.has("loop")) return mel::Value(kLoops[now.loop]);
  if (args.has("view")) return mel::Value(kViews[now.view]);
  return fail("playbackOptions: say which option to query.");
}

CommandResult playbackOptions(Context& context, const ParsedArgs& args) {
  auto& kept = workspace::workspaceOf(context.session).kept<Playback>();
  const double rate = context.document.units().framesPerSecond();
  if (args.isQuery()) return queryPlayback(args, kept, rate);
  Playback wanted = kept;
  if (args.has("loop")) {
    const auto loop = wordIn(kLoops, args.text("loop"));
    if (!loop) return failWith(loop.error());
    wanted.loop = *loop;
  }
  if (args.has("view")) {
    const auto view = wordIn(kViews, args.text("view"));
    if (!view) return failWith(view.error());
    wanted.view = *view;
  }
  wanted.by = args.real("by", wanted.by);
  wanted.speed = args.real("playbackSpeed", wanted.speed);
  wanted.fastest = args.real("maxPlaybackSpeed", wanted.fastest);
  // The part that plays lies within the whole: what was set last moves the other along.
  if (args.has("animationStartTime")) {
    wanted.start = args.real("animationStartTime");
    wanted.minimum = std::max(wanted.minimum, wanted.start);
  }
  if (args.has("animationEndTime")) {
    wanted.end = args.real("animationEndTime");
    wanted.maximum = std::min(wanted.maximum, wanted.end);
  }
  if (args.has("minTime")) {
    wanted.minimum = args.real("minTime");
    wanted.start = std::min(wanted.start, wanted.minimum);
  }
  if (args.has("maxTime")) {
    wanted.maximum = args.real("maxTime");
    wanted.end = std::max(wanted.end, wanted.maximum);
  }
  if (wanted.maximum < wanted.minimum || wanted.end < wanted.start)
    return fail("playbackOptions: the range would end before it begins.");
  kept = wanted;
  return mel::Value();
}

}  // namespace

void registerPlayback(CommandRegistry& registry) {
  defineQuery(registry, "playbackOptions",
              Syntax()
                  .flag("min", "minTime", {ArgType::Time})
                  .flag("max", "maxTime", {ArgType::Time})
                  .flag("ast", "animationStartTime", {ArgType::Time})
                  .flag("aet", "animationEndTime", {ArgType::Time})
                  .flag("by", "by", {ArgType::Double})
                  .flag("ps", "playbackSpeed", {ArgType::Double})
                  .flag("mps", "maxPlaybackSpeed", {ArgType::Double})
                  .flag("fps", "framesPerSecond")
                  .flag("l", "loop", {ArgType::String})
                  .flag("v", "view", {ArgType::String})
                  .editable()
                  .queryable(),
              playbackOptions);
}

}  // namespace host::builtins
