#include "host/edits/keys.h"

#include <algorithm>
#include <cmath>

#include "host/edits/atomically.h"
#include "host/edits/connect.h"
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

Result<dg::Node*> makeCurve(scene::Document& document, const dg::Plug& plug, bool isOverTime) {
  HOST_TRY(document.graph().settable(plug));
  // animCurveTL over time is animCurveUL over a number.
  std::string type(nodes::curveTypeFor(*plug.attribute()));
  if (!isOverTime) type[type.size() - 2] = 'U';
  auto made = document.createNode(type, curveName(plug));
  if (!made) return failWith(std::move(made.error()));
  math::KeyCurve empty;
  HOST_TRY(nodes::writeKeys(**made, empty));
  return made->get();
}

/// In place of a key at the same time, if there is one.
void putKey(math::KeyCurve& keys, math::Key key) {
  const auto place =
      std::ranges::lower_bound(keys.keys, key.time - kSameTime, {}, &math::Key::time);
  if (place == keys.keys.end() || std::abs(place->time - key.time) > kSameTime) {
    keys.keys.insert(place, key);
    return;
  }
  key.time = place->time;
  *place = key;
}

Result<void> setDrivenNow(scene::Document& document, const dg::Plug& plug, const dg::Plug& driver,
                          const KeyOptions& options) {
  if (!plug.attribute()->isNumeric() || plug.isArray())
    return fail("'{}' is no number and takes no keys", scene::plugName(plug));
  if (plug == driver) return fail("'{}' can't drive itself", scene::plugName(plug));
  dg::Graph& graph = document.graph();
  dg::Node* curve = curveOf(document, plug);
  if (curve && nodes::isOverTime(*curve))
    return fail("'{}' has keys over time: cut them before something else drives it",
                scene::plugName(plug));
  if (const dg::Plug other = driverOf(document, plug); other && other != driver)
    return fail("'{}' is driven by '{}' already", scene::plugName(plug), scene::plugName(other));
  const auto seen = shown(graph, plug);
  if (!seen) return failWith(seen.error());
  const bool isNew = !curve;
  if (isNew) {
    auto made = makeCurve(document, plug, false);
    if (!made) return failWith(std::move(made.error()));
    curve = *made;
  }
  if (!driverOf(document, plug)) HOST_TRY(connect(document, driver, curve->plug("input")));
  auto keys = nodes::readKeys(*curve);
  if (!keys) return failWith(keys.error());
  double place = options.time.value_or(0);
  if (!options.time) {
    const auto now = shown(graph, curve->plug("input"));
    if (!now) return failWith(now.error());
    place = *now;
  }
  math::Key key;
  key.time = place;
  key.value = options.value.value_or(*seen);
  key.in = options.in;
  key.out = options.out;
  putKey(*keys, key);
  HOST_TRY(nodes::writeKeys(*curve, *keys));
  if (isNew) HOST_TRY(graph.connect(curve->plug("output"), plug));
  return {};
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
    auto made = makeCurve(document, plug, true);
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
  putKey(*keys, key);
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

dg::Plug driverOf(scene::Document& document, const dg::Plug& plug) {
  dg::Node* curve = curveOf(document, plug);
  if (!curve || nodes::isOverTime(*curve)) return {};
  dg::Plug source = document.graph().source(curve->plug("input"));
  if (source && source.node()->type().name == "unitConversion")
    source = document.graph().source(source.node()->plug("input"));
  return source;
}

Result<void> setDrivenKey(scene::Document& document, const dg::Plug& plug, const dg::Plug& driver,
                          const KeyOptions& options) {
  return atomically(document, [&] { return setDrivenNow(document, plug, driver, options); });
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
