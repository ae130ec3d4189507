// keyframe, findKeyframe and keyTangent: what is on animation curves, and changes of it.
#include <algorithm>
#include <cmath>

#include "host/builtins/anim/key_args.h"
#include "host/edits/time.h"
#include "host/nodes/anim/anim_curve.h"

namespace host::builtins {

namespace {

using math::Key;
using math::KeyCurve;

/// A curve with what the flags name of it.
struct Picked {
  dg::Node* node = nullptr;
  KeyCurve keys;
  std::vector<std::size_t> which;
};

Result<std::vector<Picked>> pick(Context& context, const ParsedArgs& args) {
  const auto curves = keyedCurves(context, args);
  if (!curves) return failWith(curves.error());
  const auto range = keyRange(context, args);
  if (!range) return failWith(range.error());
  std::vector<Picked> all;
  for (dg::Node* curve : *curves) {
    auto keys = nodes::readKeys(*curve);
    if (!keys) return failWith(keys.error());
    Picked& picked = all.emplace_back(Picked{curve, *std::move(keys), {}});
    picked.which = range->of(picked.keys);
  }
  return all;
}

mel::Value countOf(const std::vector<Picked>& all) {
  std::size_t count = 0;
  for (const Picked& picked : all) count += picked.which.size();
  return mel::Value(static_cast<std::int32_t>(count));
}

CommandResult evaluated(Context& context, const ParsedArgs& args, const std::vector<Picked>& all) {
  const auto range = keyRange(context, args);
  if (!range) return failWith(range.error());
  const auto now = edits::currentTime(context.document);
  if (!now) return failWith(now.error());
  mel::FloatArray values;
  for (const Picked& picked : all) {
    const double factor = valueFactor(*picked.node, context.document.units());
    if (range->times.empty()) values.push_back(picked.keys.at(*now) / factor);
    for (const edits::KeyRange::Times& time : range->times)
      values.push_back(picked.keys.at(time.first) / factor);
  }
  return mel::Value(std::move(values));
}

CommandResult queryKeys(Context& context, const ParsedArgs& args, const std::vector<Picked>& all) {
  const scene::Units& units = context.document.units();
  if (args.has("name")) {
    std::vector<std::string> names;
    for (const Picked& picked : all) names.push_back(picked.node->name());
    return toValue(std::move(names));
  }
  if (args.has("eval")) return evaluated(context, args, all);
  if (args.has("timeChange") || args.has("floatChange") || args.has("valueChange")) {
    mel::FloatArray numbers;
    for (const Picked& picked : all)
      for (const std::size_t index : picked.which) {
        if (args.has(nodes::isOverTime(*picked.node) ? "timeChange" : "floatChange"))
          numbers.push_back(picked.keys.keys[index].time / timeFactor(*picked.node, units));
        if (args.has("valueChange"))
          numbers.push_back(picked.keys.keys[index].value / valueFactor(*picked.node, units));
      }
    return mel::Value(std::move(numbers));
  }
  if (args.has("indexValue")) {
    mel::IntArray numbers;
    for (const Picked& picked : all)
      for (const std::size_t index : picked.which)
        numbers.push_back(static_cast<std::int32_t>(index));
    return mel::Value(std::move(numbers));
  }
  return countOf(all);
}

/// Moves keys in time and value; those that land on others take their place.
Result<void> moveKeys(const ParsedArgs& args, const scene::Units& units, Picked& picked) {
  const bool isRelative = args.has("relative");
  std::vector<Key> moved, rest;
  for (std::size_t i = 0; i < picked.keys.keys.size(); ++i) {
    Key key = picked.keys.keys[i];
    if (!std::ranges::binary_search(picked.which, i)) {
      rest.push_back(key);
      continue;
    }
    const auto change = [&](const char* flag, double& number, double factor) {
      if (args.has(flag)) number = args.real(flag) * factor + (isRelative ? number : 0);
    };
    const bool isOverTime = nodes::isOverTime(*picked.node);
    change(isOverTime ? "timeChange" : "floatChange", key.time, timeFactor(*picked.node, units));
    change("valueChange", key.value, valueFactor(*picked.node, units));
    moved.push_back(key);
  }
  std::erase_if(rest, [&](const Key& key) {
    return std::ranges::any_of(
        moved, [&](const Key& other) { return std::abs(other.time - key.time) < 1e-7; });
  });
  rest.insert(rest.end(), moved.begin(), moved.end());
  std::ranges::stable_sort(rest, {}, &Key::time);
  picked.keys.keys = std::move(rest);
  return nodes::writeKeys(*picked.node, picked.keys);
}

CommandResult keyframe(Context& context, const ParsedArgs& args) {
  auto all = pick(context, args);
  if (!all) return fail("keyframe: {}", all.error().message);
  if (args.isQuery()) return queryKeys(context, args, *all);
  if (!args.has("timeChange") && !args.has("floatChange") && !args.has("valueChange"))
    return countOf(*all);
  int count = 0;
  for (Picked& picked : *all) {
    if (picked.which.empty()) continue;
    HOST_TRY(moveKeys(args, context.document.units(), picked));
    ++count;
  }
  return mel::Value(count);
}

CommandResult findKeyframe(Context& context, const ParsedArgs& args) {
  scene::Document& document = context.document;
  const auto now = edits::currentTime(document);
  if (!now) return failWith(now.error());
  const auto curves = keyedCurves(context, args);
  if (!curves) return failWith(curves.error());
  if (args.has("curve")) {
    std::vector<std::string> names;
    for (const dg::Node* curve : *curves) names.push_back(curve->name());
    return toValue(std::move(names));
  }
  std::vector<double> times;
  for (dg::Node* curve : *curves) {
    const auto keys = nodes::readKeys(*curve);
    if (!keys) return failWith(keys.error());
    for (const Key& key : keys->keys) times.push_back(key.time);
  }
  std::ranges::sort(times);
  const auto range = keyRange(context, args);
  if (!range) return fail("findKeyframe: {}", range.error().message);
  const double from = range->times.empty() ? *now : range->times.front().first;
  const std::string which = args.text("which", "next");
  const double rate = document.units().framesPerSecond();
  if (times.empty()) return mel::Value(from * rate);
  constexpr double kSlack = 1e-7;
  double found = from;
  if (which == "first" || which == "last") {
    found = which == "first" ? times.front() : times.back();
  } else if (which == "next") {
    const auto after = std::ranges::upper_bound(times, from + kSlack);
    found = after == times.end() ? times.front() : *after;  // round again
  } else if (which == "previous") {
    const auto at = std::ranges::lower_bound(times, from - kSlack);
    found = at == times.begin() ? times.back() : *std::prev(at);
  } else {
    return fail("findKeyframe: -which is next, previous, first or last, not '{}'.", which);
  }
  return mel::Value(found * rate);
}

CommandResult keyTangent(Context& context, const ParsedArgs& args) {
  auto all = pick(context, args);
  if (!all) return fail("keyTangent: {}", all.error().message);
  if (args.isQuery()) {
    const bool asksIn = args.has("inTangentType");
    std::vector<std::string> names;
    for (const Picked& picked : *all)
      for (const std::size_t index : picked.which) {
        const Key& key = picked.keys.keys[index];
        if (asksIn) names.push_back(tangentName(key.in));
        if (args.has("outTangentType")) names.push_back(tangentName(key.out));
      }
    if (args.has("weightedTangents")) {
      mel::IntArray flags;
      for (const Picked& picked : *all) flags.push_back(picked.keys.isWeighted ? 1 : 0);
      return mel::Value(std::move(flags));
    }
    return toValue(std::move(names));
  }
  int count = 0;
  for (Picked& picked : *all) {
    for (const std::size_t index : picked.which) {
      Key& key = picked.keys.keys[index];
      for (const auto& [flag, slot] :
           {std::pair{"inTangentType", &key.in}, std::pair{"outTangentType", &key.out}}) {
        if (!args.has(flag)) continue;
        const auto tangent = tangentNamed(args.text(flag));
        if (!tangent) return fail("keyTangent: {}", tangent.error().message);
        *slot = *tangent;
      }
      ++count;
    }
    if (args.has("weightedTangents")) picked.keys.isWeighted = args.boolean("weightedTangents");
    HOST_TRY(nodes::writeKeys(*picked.node, picked.keys));
  }
  return mel::Value(count);
}

/// Over which curves go on outside their keys.
CommandResult setInfinity(Context& context, const ParsedArgs& args) {
  constexpr std::pair<const char*, math::KeyInfinity> kWays[] = {
      {"constant", math::KeyInfinity::Constant},
      {"linear", math::KeyInfinity::Linear},
      {"cycle", math::KeyInfinity::Cycle},
      {"cycleRelative", math::KeyInfinity::CycleRelative},
      {"oscillate", math::KeyInfinity::Oscillate}};
  auto all = pick(context, args);
  if (!all) return fail("setInfinity: {}", all.error().message);
  if (args.isQuery()) {
    std::vector<std::string> names;
    for (const Picked& picked : *all)
      for (const auto& [word, way] : kWays)
        if (way == (args.has("preInfinite") ? picked.keys.before : picked.keys.after))
          names.emplace_back(word);
    return toValue(std::move(names));
  }
  for (Picked& picked : *all) {
    for (const auto& [flag, slot] : {std::pair{"preInfinite", &picked.keys.before},
                                     std::pair{"postInfinite", &picked.keys.after}}) {
      if (!args.has(flag)) continue;
      const auto* found = std::ranges::find_if(
          kWays, [&](const auto& each) { return args.text(flag) == each.first; });
      if (found == std::end(kWays))
        return fail("setInfinity: '{}' is not constant, linear, cycle, cycleRelative or oscillate.",
                    args.text(flag));
      *slot = found->second;
    }
    HOST_TRY(nodes::writeKeys(*picked.node, picked.keys));
  }
  return mel::Value(static_cast<std::int32_t>(all->size()));
}

}  // namespace

void registerKeyframe(CommandRegistry& registry) {
  define(registry, "keyframe",
         keySyntax()
             .flag("kc", "keyframeCount")
             .flag("tc", "timeChange", {ArgType::Double})
             .flag("fc", "floatChange", {ArgType::Double})
             .flag("vc", "valueChange", {ArgType::Double})
             .flag("iv", "indexValue")
             .flag("ev", "eval")
             .flag("n", "name")
             .flag("r", "relative")
             .flag("a", "absolute")
             .flag("sl", "selected")
             .flag("lsl", "lastSelected")
             .flag("o", "option", {ArgType::String})
             .flag("an", "animation", {ArgType::String})
             .editable()
             .queryable(),
         keyframe);
  defineQuery(registry, "findKeyframe",
              keySyntax()
                  .flag("w", "which", {ArgType::String})
                  .flag("c", "curve")
                  .flag("ts", "timeSlider")
                  .flag("an", "animation", {ArgType::String})
                  .flag("iub", "includeUpperBound", {ArgType::Bool}),
              findKeyframe);
  define(registry, "keyTangent",
         keySyntax()
             .flag("itt", "inTangentType", {ArgType::String})
             .flag("ott", "outTangentType", {ArgType::String})
             .flag("wt", "weightedTangents", {ArgType::Bool})
             .flag("a", "absolute")
             .flag("r", "relative")
             .editable()
             .queryable(),
         keyTangent);
  define(registry, "setInfinity",
         keySyntax()
             .flag("pri", "preInfinite", {ArgType::String})
             .flag("poi", "postInfinite", {ArgType::String})
             .queryable(),
         setInfinity);
}

}  // namespace host::builtins
