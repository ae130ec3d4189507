// copyKey, pasteKey, scaleKey and snapKey: keys moved about in bulk.
#include <algorithm>
#include <cmath>

#include "host/builtins/anim/key_args.h"
#include "host/cmd/plug_values.h"
#include "host/edits/keys.h"
#include "host/edits/time.h"
#include "host/nodes/anim/anim_curve.h"
#include "host/workspace/workspace.h"

namespace host::builtins {

namespace {

using math::Key;
using math::KeyCurve;
using workspace::workspaceOf;

/// What was copied, a curve an attribute in the order in which they were named.
struct KeyClipboard {
  struct Clip {
    std::string attribute;
    KeyCurve keys;
  };
  std::vector<Clip> clips;
};

CommandResult copyKey(Context& context, const ParsedArgs& args) {
  const auto plugs = keyedPlugs(context, args);
  if (!plugs) return failAt("copyKey", plugs.error());
  const auto range = keyRange(context, args);
  if (!range) return failAt("copyKey", range.error());
  std::vector<KeyClipboard::Clip> clips;
  for (const dg::Plug& plug : *plugs) {
    dg::Node* curve = edits::curveOf(context.document, plug);
    if (!curve || !nodes::isOverTime(*curve)) continue;
    auto keys = nodes::readKeys(*curve);
    if (!keys) return failWith(keys.error());
    KeyCurve copied = *keys;
    copied.keys.clear();
    for (const std::size_t index : range->of(*keys)) copied.keys.push_back(keys->keys[index]);
    if (!copied.keys.empty()) clips.push_back({attributeName(plug), std::move(copied)});
  }
  if (clips.empty()) return fail("copyKey: there are no keys there to copy.");
  const auto count = static_cast<std::int32_t>(clips.size());
  workspaceOf(context.session).kept<KeyClipboard>().clips = std::move(clips);
  return mel::Value(count);
}

constexpr double kSameTime = 1e-7;

void moveInTime(KeyCurve& keys, double by) {
  for (Key& key : keys.keys) key.time += by;
}

/// Joins keys with those of a curve as -option says.
Result<KeyCurve> joined(const std::string& option, KeyCurve there, const KeyCurve& clip) {
  const double first = clip.keys.front().time, last = clip.keys.back().time;
  if (option == "replaceCompletely") {
    there.keys.clear();
  } else if (option == "replace") {
    std::erase_if(there.keys, [&](const Key& key) {
      return key.time >= first - kSameTime && key.time <= last + kSameTime;
    });
  } else if (option == "insert") {
    for (Key& key : there.keys)
      if (key.time >= first - kSameTime) key.time += last - first;
  } else if (option != "merge") {
    return fail("'{}' is not insert, replace, replaceCompletely or merge.", option);
  }
  for (const Key& key : clip.keys) {
    std::erase_if(there.keys,
                  [&](const Key& other) { return std::abs(other.time - key.time) <= kSameTime; });
    there.keys.push_back(key);
  }
  std::ranges::stable_sort(there.keys, {}, &Key::time);
  return there;
}

Result<void> pasteInto(Context& context, const dg::Plug& plug, const KeyCurve& clip,
                       const std::string& option) {
  dg::Node* curve = edits::curveOf(context.document, plug);
  if (curve && !nodes::isOverTime(*curve))
    return fail("'{}' is driven by another attribute, not by time.", plugName(plug));
  if (!curve) {
    // The first key makes the curve; all of them are written then.
    const auto made = edits::setKey(
        context.document, plug, {.time = clip.keys.front().time, .value = clip.keys.front().value});
    if (!made) return failWith(made.error());
    curve = edits::curveOf(context.document, plug);
    return nodes::writeKeys(*curve, clip);
  }
  auto there = nodes::readKeys(*curve);
  if (!there) return failWith(there.error());
  auto all = joined(option, *std::move(there), clip);
  if (!all) return failWith(all.error());
  return nodes::writeKeys(*curve, *all);
}

/// Clips go to the attributes of their names; where the attributes are named, one clip goes to all
/// and several in turn.
CommandResult pasteKey(Context& context, const ParsedArgs& args) {
  const auto& clips = workspaceOf(context.session).kept<KeyClipboard>().clips;
  if (clips.empty()) return fail("pasteKey: copy keys first.");
  const auto plugs = keyedPlugs(context, args);
  if (!plugs) return failAt("pasteKey", plugs.error());
  auto range = keyRange(context, args);
  if (!range) return failAt("pasteKey", range.error());
  double start = 0;
  if (range->times.empty()) {
    const auto now = edits::currentTime(context.document);
    if (!now) return failWith(now.error());
    start = *now;
  } else {
    start = range->times.front().first;
  }
  const double offset = args.real("timeOffset"), change = args.real("valueOffset");
  const bool isNamed =
      args.has("attribute") || std::ranges::any_of(args.objectNames(), [](const std::string& name) {
        return name.find('.') != std::string::npos;
      });
  int count = 0;
  double earliest = clips.front().keys.keys.front().time;
  for (const KeyClipboard::Clip& clip : clips)
    earliest = std::min(earliest, clip.keys.keys.front().time);
  for (std::size_t i = 0; i < plugs->size(); ++i) {
    const dg::Plug& plug = (*plugs)[i];
    const KeyClipboard::Clip* clip = nullptr;
    if (isNamed) {
      clip = &clips[i % clips.size()];
    } else {
      const auto found =
          std::ranges::find(clips, attributeName(plug), &KeyClipboard::Clip::attribute);
      if (found != clips.end()) clip = &*found;
    }
    if (!clip) continue;
    KeyCurve keys = clip->keys;
    moveInTime(keys, start - earliest + offset);
    const double factor = cmd::unitFactor(plug.attribute()->type, context.document.units());
    for (Key& key : keys.keys) key.value += change * factor;
    auto done = pasteInto(context, plug, keys, args.text("option", "insert"));
    if (!done) return failAt("pasteKey", done.error());
    ++count;
  }
  if (count == 0) return fail("pasteKey: nothing there takes what was copied.");
  return mel::Value(count);
}

/// Changes the keys that the flags name, curve by curve; keys that land on others take their place.
template <class Change>
CommandResult changeKeys(Context& context, const ParsedArgs& args, const char* command,
                         const Change& change) {
  const auto curves = keyedCurves(context, args);
  if (!curves) return failAt(command, curves.error());
  const auto range = keyRange(context, args);
  if (!range) return failAt(command, range.error());
  int count = 0;
  for (dg::Node* curve : *curves) {
    auto keys = nodes::readKeys(*curve);
    if (!keys) return failWith(keys.error());
    const std::vector<std::size_t> which = range->of(*keys);
    if (which.empty()) continue;
    KeyCurve moved = *keys, rest = *keys;
    moved.keys.clear();
    rest.keys.clear();
    for (std::size_t i = 0; i < keys->keys.size(); ++i) {
      Key key = keys->keys[i];
      if (!std::ranges::binary_search(which, i)) {
        rest.keys.push_back(key);
        continue;
      }
      change(*curve, key);
      // Of several that land on one time the last one stays.
      std::erase_if(moved.keys,
                    [&](const Key& other) { return std::abs(other.time - key.time) <= kSameTime; });
      moved.keys.push_back(key);
    }
    std::ranges::stable_sort(moved.keys, {}, &Key::time);
    auto all = joined("merge", std::move(rest), moved);
    if (!all) return failWith(all.error());
    HOST_TRY(nodes::writeKeys(*curve, *all));
    ++count;
  }
  return mel::Value(count);
}

CommandResult scaleKey(Context& context, const ParsedArgs& args) {
  const scene::Units& units = context.document.units();
  const double timeScale = args.real("timeScale", 1), valueScale = args.real("valueScale", 1);
  if (!(timeScale > 0) || !std::isfinite(timeScale) || !std::isfinite(valueScale))
    return fail("scaleKey: -timeScale is above 0, and both scales are numbers.");
  return changeKeys(context, args, "scaleKey", [&](dg::Node& curve, Key& key) {
    const double time = args.real("timePivot") * timeFactor(curve, units);
    const double value = args.real("valuePivot") * valueFactor(curve, units);
    key.time = time + (key.time - time) * timeScale;
    key.value = value + (key.value - value) * valueScale;
    key.inX *= timeScale;
    key.outX *= timeScale;
    key.inY *= valueScale;
    key.outY *= valueScale;
  });
}

CommandResult snapKey(Context& context, const ParsedArgs& args) {
  const scene::Units& units = context.document.units();
  for (const char* flag : {"timeMultiple", "valueMultiple"})
    if (args.has(flag) && !(args.real(flag) > 0)) return fail("snapKey: -{} is above 0.", flag);
  const bool snapsTime = args.has("timeMultiple") || !args.has("valueMultiple");
  return changeKeys(context, args, "snapKey", [&](dg::Node& curve, Key& key) {
    const auto snap = [](double& number, double step) {
      number = std::round(number / step) * step;
    };
    if (snapsTime) snap(key.time, args.real("timeMultiple", 1) * timeFactor(curve, units));
    if (args.has("valueMultiple"))
      snap(key.value, args.real("valueMultiple") * valueFactor(curve, units));
  });
}

}  // namespace

void registerKeyClipboard(CommandRegistry& registry) {
  defineQuery(registry, "copyKey", keySyntax().flag("an", "animation", {ArgType::String}), copyKey);
  define(registry, "pasteKey",
         keySyntax()
             .flag("o", "option", {ArgType::String})
             .flag("to", "timeOffset", {ArgType::Time})
             .flag("vo", "valueOffset", {ArgType::Double})
             .flag("an", "animation", {ArgType::String}),
         pasteKey);
  define(registry, "scaleKey",
         keySyntax()
             .flag("ts", "timeScale", {ArgType::Double})
             .flag("tp", "timePivot", {ArgType::Double})
             .flag("vs", "valueScale", {ArgType::Double})
             .flag("vp", "valuePivot", {ArgType::Double})
             .flag("an", "animation", {ArgType::String}),
         scaleKey);
  define(registry, "snapKey",
         keySyntax()
             .flag("tm", "timeMultiple", {ArgType::Double})
             .flag("vm", "valueMultiple", {ArgType::Double})
             .flag("an", "animation", {ArgType::String}),
         snapKey);
}

}  // namespace host::builtins
