#include "host/edits/keys.h"

#include <algorithm>
#include <cmath>

#include "host/edits/atomically.h"
#include "host/edits/time.h"
#include "host/nodes/anim/anim_curve.h"
#include "host/scene/node_names.h"

namespace host::edits {

namespace {

// Nearer than this many seconds two times are one.
constexpr double kSameTime = 1e-7;

Result<double> shown(dg::Graph& graph, const dg::Plug& plug) {
  const auto value = graph.get(plug);
  if (!value) return failWith(value.error());
  if (const auto* real = std::get_if<double>(&*value)) return *real;
  if (const auto* whole = std::get_if<std::int64_t>(&*value)) return static_cast<double>(*whole);
  return fail("'{}' is no number and takes no keys", plug.name());
}

std::string curveName(const dg::Plug& plug) {
  std::string name = plug.node()->name() + "_" + scene::attributeName(plug);
  for (char& c : name)
    if (c == '.' || c == '[' || c == ']') c = '_';
  return name;
}

Result<dg::Node*> makeCurve(scene::Document& document, const dg::Plug& plug) {
  HOST_TRY(document.graph().settable(plug));
  auto made = document.createNode(nodes::curveTypeFor(*plug.attribute()), curveName(plug));
  if (!made) return failWith(std::move(made.error()));
  math::KeyCurve empty;
  HOST_TRY(nodes::writeKeys(**made, empty));
  return made->get();
}

Result<bool> setKeyNow(scene::Document& document, const dg::Plug& plug, const KeyOptions& options) {
  if (!plug.attribute()->isNumeric() || plug.isArray())
    return fail("'{}' is no number and takes no keys", plug.name());
  dg::Graph& graph = document.graph();
  dg::Node* curve = curveOf(document, plug);
  if (!curve && (options.inserts || options.onlyAnimated)) return false;
  double time = options.time.value_or(0);
  if (!options.time) {
    const auto now = currentTime(document);
    if (!now) return failWith(now.error());
    time = *now;
  }
  const auto seen = shown(graph, plug);
  if (!seen) return failWith(seen.error());
  const bool isNew = !curve;
  if (isNew) {
    auto made = makeCurve(document, plug);
    if (!made) return failWith(std::move(made.error()));
    curve = *made;
  }
  auto keys = nodes::readKeys(*curve);
  if (!keys) return failWith(keys.error());
  math::Key key;
  key.time = time;
  key.in = options.in;
  key.out = options.out;
  key.value = options.value.value_or(options.inserts ? keys->at(time) : *seen);
  const auto place = std::ranges::lower_bound(keys->keys, time - kSameTime, {}, &math::Key::time);
  const bool isThere = place != keys->keys.end() && std::abs(place->time - time) <= kSameTime;
  if (options.inserts && isThere) return false;
  if (options.inserts) {
    // The tangents of the curve as it is, so that the new key changes nothing.
    constexpr double kStep = 1e-5;
    const double rate = (keys->at(time + kStep) - keys->at(time - kStep)) / (2 * kStep);
    key.in = key.out = math::KeyTangent::Fixed;
    key.inY = key.outY = rate;
  }
  if (isThere) {
    key.time = place->time;
    *place = key;
  } else {
    keys->keys.insert(place, key);
  }
  HOST_TRY(nodes::writeKeys(*curve, *keys));
  if (isNew) HOST_TRY(graph.connect(curve->plug("output"), plug));
  return true;
}

Result<std::size_t> cutNow(scene::Document& document, dg::Node& curve, const KeyRange& range) {
  auto keys = nodes::readKeys(curve);
  if (!keys) return failWith(keys.error());
  const std::vector<std::size_t> gone = range.of(*keys);
  if (gone.empty()) return std::size_t{0};
  if (gone.size() < keys->keys.size()) {
    for (auto index = gone.rbegin(); index != gone.rend(); ++index)
      keys->keys.erase(keys->keys.begin() + static_cast<std::ptrdiff_t>(*index));
    HOST_TRY(nodes::writeKeys(curve, *keys));
    return gone.size();
  }
  dg::Graph& graph = document.graph();
  for (const dg::Plug& driven : graph.destinations(curve.plug("output"))) {
    const auto value = graph.get(driven);
    HOST_TRY(graph.disconnect(curve.plug("output"), driven));
    if (value && graph.settable(driven)) HOST_TRY(graph.set(driven, *value));
  }
  HOST_TRY(document.deleteNodes({&curve}));
  return gone.size();
}

}  // namespace

dg::Node* curveOf(scene::Document& document, const dg::Plug& plug) {
  dg::Plug source = document.graph().source(plug);
  if (source && source.node()->type().name == "unitConversion")
    source = document.graph().source(source.node()->plug("input"));
  return source && nodes::isAnimCurve(*source.node()) ? source.node() : nullptr;
}

std::vector<std::size_t> KeyRange::of(const math::KeyCurve& keys) const {
  std::vector<std::size_t> found;
  const auto isIn = [](const std::vector<Times>& ranges, double number, double slack) {
    return std::ranges::any_of(ranges, [&](const Times& range) {
      return number >= range.first - slack && number <= range.last + slack;
    });
  };
  for (std::size_t i = 0; i < keys.keys.size(); ++i) {
    const bool isAll = times.empty() && indices.empty();
    if (isAll || isIn(times, keys.keys[i].time, kSameTime) ||
        isIn(indices, static_cast<double>(i), 0))
      found.push_back(i);
  }
  return found;
}

Result<bool> setKey(scene::Document& document, const dg::Plug& plug, const KeyOptions& options) {
  return atomically(document, [&] { return setKeyNow(document, plug, options); });
}

Result<std::size_t> cutKeys(scene::Document& document, dg::Node& curve, const KeyRange& range) {
  return atomically(document, [&] { return cutNow(document, curve, range); });
}

}  // namespace host::edits
