#include <maya/MFnAnimCurve.h>
#include <maya/MIntArray.h>

#include <algorithm>
#include <cmath>

#include "host/api/core/access.h"
#include "host/api/data/time_value.h"
#include "host/nodes/anim/anim_curve.h"

using namespace host;
using api::setStatus;
using math::Key;
using math::KeyCurve;
using math::KeyTangent;

struct MAnimCurveChange::Steps {
  struct Step {
    std::weak_ptr<dg::Node> curve;
    KeyCurve before, after;
  };
  std::vector<Step> all;
};

MAnimCurveChange::MAnimCurveChange(MStatus* status) : steps_(std::make_unique<Steps>()) {
  setStatus(status, MStatus::kSuccess);
}
MAnimCurveChange::~MAnimCurveChange() = default;
bool MAnimCurveChange::isInteractive() const {
  return isInteractive_;
}
void MAnimCurveChange::setInteractive(bool isInteractive) {
  isInteractive_ = isInteractive;
}
MStatus MAnimCurveChange::undoIt() {
  bool isFine = true;
  for (auto step = steps_->all.rbegin(); step != steps_->all.rend(); ++step)
    if (const auto curve = step->curve.lock(); curve && curve->isAlive())
      isFine = nodes::writeKeys(*curve, step->before) && isFine;
  return isFine ? MStatus::kSuccess : MStatus::kFailure;
}
MStatus MAnimCurveChange::redoIt() {
  bool isFine = true;
  for (const Steps::Step& step : steps_->all)
    if (const auto curve = step.curve.lock(); curve && curve->isAlive())
      isFine = nodes::writeKeys(*curve, step.after) && isFine;
  return isFine ? MStatus::kSuccess : MStatus::kFailure;
}

namespace {

/// Node types in the order of the types of curves.
constexpr const char* kTypes[] = {"animCurveTA", "animCurveTL", "animCurveTT", "animCurveTU",
                                  "animCurveUA", "animCurveUL", "animCurveUT", "animCurveUU"};
constexpr KeyTangent kTangents[] = {KeyTangent::Auto,    KeyTangent::Fixed,    KeyTangent::Linear,
                                    KeyTangent::Flat,    KeyTangent::Smooth,   KeyTangent::Step,
                                    KeyTangent::Slow,    KeyTangent::Fast,     KeyTangent::Clamped,
                                    KeyTangent::Plateau, KeyTangent::StepNext, KeyTangent::Auto};
constexpr double kSameTime = 1e-9;

dg::Node* curveIn(const MObject& object, MStatus* status) {
  dg::Node* node = api::nodeOf(object);
  const bool isCurve = node && node->isAlive() && nodes::isAnimCurve(*node);
  setStatus(status, isCurve ? MStatus::kSuccess : MStatus::kFailure);
  return isCurve ? node : nullptr;
}

KeyCurve keysOf(const MObject& object, MStatus* status) {
  dg::Node* node = curveIn(object, status);
  if (!node) return {};
  auto keys = nodes::readKeys(*node);
  if (!keys) setStatus(status, MStatus::kFailure);
  return keys ? *std::move(keys) : KeyCurve();
}

/// One key; null beyond the last, with a status that says so.
const Key* keyAt(const KeyCurve& curve, unsigned int index, MStatus* status) {
  if (index < curve.keys.size()) return &curve.keys[index];
  setStatus(status, MStatus::kInvalidParameter);
  return nullptr;
}

/// Changes the keys by `edit`, which returns false to leave them.
template <class Edit>
MStatus change(const MObject& object, MAnimCurveChange* kept, const Edit& edit) {
  MStatus status;
  dg::Node* node = curveIn(object, &status);
  if (!node) return status;
  const KeyCurve before = keysOf(object, &status);
  KeyCurve after = before;
  if (!status || !edit(after)) return MStatus::kInvalidParameter;
  if (!nodes::writeKeys(*node, after)) return MStatus::kFailure;
  if (kept) kept->steps().all.push_back({node->weak_from_this(), before, std::move(after)});
  return MStatus::kSuccess;
}

KeyTangent tangentFrom(MFnAnimCurve::TangentType type) {
  const auto index = static_cast<std::size_t>(type);
  return index < std::size(kTangents) ? kTangents[index] : KeyTangent::Auto;
}
MFnAnimCurve::TangentType tangentTo(KeyTangent tangent) {
  // A spline runs as a smooth tangent does.
  if (tangent == KeyTangent::Spline) return MFnAnimCurve::kTangentSmooth;
  const auto* found = std::find(std::begin(kTangents) + 1, std::end(kTangents), tangent);
  return static_cast<MFnAnimCurve::TangentType>(found - std::begin(kTangents));
}

unsigned int indexOf(const KeyCurve& curve, double at) {
  const auto place = std::lower_bound(curve.keys.begin(), curve.keys.end(), at - kSameTime,
                                      [](const Key& key, double time) { return key.time < time; });
  return static_cast<unsigned int>(place - curve.keys.begin());
}
bool hasKeyAt(const KeyCurve& curve, unsigned int index, double at) {
  return index < curve.keys.size() && std::abs(curve.keys[index].time - at) <= kSameTime;
}

unsigned int put(KeyCurve& curve, double at, double value, KeyTangent in, KeyTangent out) {
  const unsigned int index = indexOf(curve, at);
  if (!hasKeyAt(curve, index, at))
    curve.keys.insert(curve.keys.begin() + static_cast<std::ptrdiff_t>(index), Key{});
  Key& key = curve.keys[index];
  key.time = at;
  key.value = value;
  key.in = in;
  key.out = out;
  return index;
}

unsigned int nearest(const KeyCurve& curve, double at) {
  unsigned int best = 0;
  for (unsigned int i = 1; i < curve.keys.size(); ++i)
    if (std::abs(curve.keys[i].time - at) < std::abs(curve.keys[best].time - at)) best = i;
  return best;
}

MStatus moveKey(const MObject& object, unsigned int index, double at, MAnimCurveChange* kept) {
  return change(object, kept, [&](KeyCurve& curve) {
    const bool isBelow = index + 1 >= curve.keys.size() || at < curve.keys[index + 1].time;
    const bool isAbove = index == 0 || at > curve.keys[index - 1].time;
    if (index >= curve.keys.size() || !isBelow || !isAbove) return false;
    curve.keys[index].time = at;
    return true;
  });
}

double seconds(const MTime& time) {
  return time.as(MTime::kSeconds);
}

MFnAnimCurve::AnimCurveType typeNamed(std::string_view name) {
  const auto* found = std::ranges::find(kTypes, name);
  return static_cast<MFnAnimCurve::AnimCurveType>(found - std::begin(kTypes));
}

MFnAnimCurve::AnimCurveType typeForPlug(const MPlug& plug, MStatus* status) {
  const dg::Plug own = api::plugOf(plug);
  setStatus(status, own.isNull() ? MStatus::kInvalidParameter : MStatus::kSuccess);
  return own.isNull() ? MFnAnimCurve::kAnimCurveUnknown
                      : typeNamed(nodes::curveTypeFor(*own.attribute()));
}

}  // namespace

MFnAnimCurve::MFnAnimCurve(const MPlug& plug, MStatus* status) {
  const dg::Plug own = api::plugOf(plug);
  dg::Plug source = own.isNull() ? dg::Plug() : own.node()->graph().source(own);
  // Between a curve and what counts in other units stands a conversion.
  if (!source.isNull() && source.node()->type().isA("unitConversion"))
    source = source.node()->graph().source(source.node()->plug("input"));
  if (source.isNull() || !nodes::isAnimCurve(*source.node())) {
    setStatus(status, MStatus::kFailure);
    return;
  }
  attach(api::wrap(source.node()), status);
}

MObject MFnAnimCurve::create(AnimCurveType type, MDGModifier* modifier, MStatus* status) {
  setStatus(status, MStatus::kInvalidParameter);
  if (type < 0 || type >= kAnimCurveUnknown) return {};
  MObject made;
  MStatus done;
  if (modifier)
    made = modifier->createNode(MString(kTypes[type]), &done);
  else
    made = MFnDependencyNode().create(MString(kTypes[type]), &done);
  if (status) *status = done;
  if (done) attach(made, status);
  return made;
}

MObject MFnAnimCurve::create(const MPlug& plug, AnimCurveType type, MDGModifier* modifier,
                             MStatus* status) {
  const dg::Plug own = api::plugOf(plug);
  if (own.isNull() || !own.attribute()->isNumeric()) {
    setStatus(status, MStatus::kInvalidParameter);
    return {};
  }
  MStatus done;
  const MObject made = create(type, modifier, &done);
  if (done && modifier) {
    done = modifier->connect(MFnDependencyNode(made).findPlug("output", true), plug);
  } else if (done) {
    dg::Node& curve = *api::nodeOf(made);
    if (!own.node()->graph().connect(curve.plug("output"), own)) done = MStatus::kFailure;
  }
  if (status) *status = done;
  return done ? made : MObject();
}
MObject MFnAnimCurve::create(const MPlug& plug, MDGModifier* modifier, MStatus* status) {
  return create(plug, typeForPlug(plug, nullptr), modifier, status);
}
MObject MFnAnimCurve::create(const MObject& node, const MObject& attribute, MDGModifier* modifier,
                             MStatus* status) {
  return create(MPlug(node, attribute), modifier, status);
}
MObject MFnAnimCurve::create(const MObject& node, const MObject& attribute, AnimCurveType type,
                             MDGModifier* modifier, MStatus* status) {
  return create(MPlug(node, attribute), type, modifier, status);
}

MFnAnimCurve::AnimCurveType MFnAnimCurve::animCurveType(MStatus* status) const {
  const dg::Node* node = curveIn(object_, status);
  return node ? typeNamed(node->type().name) : kAnimCurveUnknown;
}
MFnAnimCurve::AnimCurveType MFnAnimCurve::timedAnimCurveTypeForPlug(const MPlug& plug,
                                                                    MStatus* status) const {
  return typeForPlug(plug, status);
}
MFnAnimCurve::AnimCurveType MFnAnimCurve::unitlessAnimCurveTypeForPlug(const MPlug& plug,
                                                                       MStatus* status) const {
  const AnimCurveType timed = typeForPlug(plug, status);
  return timed == kAnimCurveUnknown ? timed : static_cast<AnimCurveType>(timed + 4);
}
bool MFnAnimCurve::isTimeInput(MStatus* status) const {
  const dg::Node* node = curveIn(object_, status);
  return node && nodes::isOverTime(*node);
}
bool MFnAnimCurve::isUnitlessInput(MStatus* status) const {
  const dg::Node* node = curveIn(object_, status);
  return node && !nodes::isOverTime(*node);
}
bool MFnAnimCurve::isStatic(MStatus* status) const {
  const KeyCurve curve = keysOf(object_, status);
  for (std::size_t i = 0; i < curve.keys.size(); ++i)
    if (curve.keys[i].value != curve.keys.front().value || curve.slope(i, true) != 0 ||
        curve.slope(i, false) != 0)
      return false;
  return true;
}

double MFnAnimCurve::evaluate(const MTime& atTime, MStatus* status) const {
  return keysOf(object_, status).at(seconds(atTime));
}
MStatus MFnAnimCurve::evaluate(const MTime& atTime, double& value) const {
  MStatus status;
  value = evaluate(atTime, &status);
  return status;
}
MStatus MFnAnimCurve::evaluate(const MTime& atTime, MTime& timeValue) const {
  MStatus status;
  timeValue = api::timeOf(evaluate(atTime, &status));
  return status;
}
MStatus MFnAnimCurve::evaluate(double atUnitlessInput, double& value) const {
  MStatus status;
  value = keysOf(object_, &status).at(atUnitlessInput);
  return status;
}
MStatus MFnAnimCurve::evaluate(double atUnitlessInput, MTime& timeValue) const {
  double value = 0;
  const MStatus status = evaluate(atUnitlessInput, value);
  timeValue = api::timeOf(value);
  return status;
}

unsigned int MFnAnimCurve::numKeys(MStatus* status) const {
  return static_cast<unsigned int>(keysOf(object_, status).keys.size());
}
MStatus MFnAnimCurve::remove(unsigned int index, MAnimCurveChange* kept) {
  return change(object_, kept, [&](KeyCurve& curve) {
    if (index >= curve.keys.size()) return false;
    curve.keys.erase(curve.keys.begin() + static_cast<std::ptrdiff_t>(index));
    return true;
  });
}

unsigned int MFnAnimCurve::addKey(double unitlessInput, double value, TangentType tangentIn,
                                  TangentType tangentOut, MAnimCurveChange* kept, MStatus* status) {
  unsigned int index = 0;
  const MStatus done = change(object_, kept, [&](KeyCurve& curve) {
    if (!std::isfinite(unitlessInput) || !std::isfinite(value)) return false;
    index = put(curve, unitlessInput, value, tangentFrom(tangentIn), tangentFrom(tangentOut));
    return true;
  });
  if (status) *status = done;
  return index;
}
unsigned int MFnAnimCurve::addKey(const MTime& time, double value, TangentType tangentIn,
                                  TangentType tangentOut, MAnimCurveChange* kept, MStatus* status) {
  return addKey(seconds(time), value, tangentIn, tangentOut, kept, status);
}
unsigned int MFnAnimCurve::addKey(const MTime& time, const MTime& timeValue, TangentType tangentIn,
                                  TangentType tangentOut, MAnimCurveChange* kept, MStatus* status) {
  return addKey(seconds(time), seconds(timeValue), tangentIn, tangentOut, kept, status);
}
MStatus MFnAnimCurve::addKeyframe(const MTime& time, double value, MAnimCurveChange* kept) {
  return addKeyframe(time, value, kTangentGlobal, kTangentGlobal, kept);
}
MStatus MFnAnimCurve::addKeyframe(const MTime& time, double value, TangentType tangentIn,
                                  TangentType tangentOut, MAnimCurveChange* kept) {
  MStatus status;
  addKey(time, value, tangentIn, tangentOut, kept, &status);
  return status;
}
MStatus MFnAnimCurve::addKeys(const MTimeArray* times, const MDoubleArray* values,
                              TangentType tangentIn, TangentType tangentOut, bool keepExistingKeys,
                              MAnimCurveChange* kept) {
  if (!times || !values || times->length() != values->length()) return MStatus::kInvalidParameter;
  return change(object_, kept, [&](KeyCurve& curve) {
    const auto count = times->length();
    // What lies between the first and the last of the new ones makes room for them.
    if (!keepExistingKeys && count > 0) {
      double first = seconds((*times)[0]), last = first;
      for (unsigned int i = 1; i < count; ++i) {
        first = std::min(first, seconds((*times)[i]));
        last = std::max(last, seconds((*times)[i]));
      }
      std::erase_if(curve.keys,
                    [&](const Key& key) { return key.time >= first && key.time <= last; });
    }
    for (unsigned int i = 0; i < count; ++i)
      put(curve, seconds((*times)[i]), (*values)[i], tangentFrom(tangentIn),
          tangentFrom(tangentOut));
    return true;
  });
}

bool MFnAnimCurve::find(double unitlessInput, unsigned int& index, MStatus* status) const {
  const KeyCurve curve = keysOf(object_, status);
  const unsigned int found = indexOf(curve, unitlessInput);
  if (!hasKeyAt(curve, found, unitlessInput)) return false;
  index = found;
  return true;
}
bool MFnAnimCurve::find(const MTime& time, unsigned int& index, MStatus* status) const {
  return find(seconds(time), index, status);
}
unsigned int MFnAnimCurve::findClosest(double unitlessInput, MStatus* status) const {
  return nearest(keysOf(object_, status), unitlessInput);
}
unsigned int MFnAnimCurve::findClosest(const MTime& time, MStatus* status) const {
  return findClosest(seconds(time), status);
}

MTime MFnAnimCurve::time(unsigned int index, MStatus* status) const {
  return api::timeOf(unitlessInput(index, status));
}
double MFnAnimCurve::unitlessInput(unsigned int index, MStatus* status) const {
  const KeyCurve curve = keysOf(object_, status);
  const Key* key = keyAt(curve, index, status);
  return key ? key->time : 0;
}
double MFnAnimCurve::value(unsigned int index, MStatus* status) const {
  const KeyCurve curve = keysOf(object_, status);
  const Key* key = keyAt(curve, index, status);
  return key ? key->value : 0;
}
MTime MFnAnimCurve::timeValue(unsigned int index, MStatus* status) const {
  return api::timeOf(value(index, status));
}
MStatus MFnAnimCurve::setTime(unsigned int index, const MTime& time, MAnimCurveChange* kept) {
  return moveKey(object_, index, seconds(time), kept);
}
MStatus MFnAnimCurve::setUnitlessInput(unsigned int index, double input, MAnimCurveChange* kept) {
  return moveKey(object_, index, input, kept);
}
MStatus MFnAnimCurve::setValue(unsigned int index, double value, MAnimCurveChange* kept) {
  return change(object_, kept, [&](KeyCurve& curve) {
    if (index >= curve.keys.size() || !std::isfinite(value)) return false;
    curve.keys[index].value = value;
    return true;
  });
}
MStatus MFnAnimCurve::setTimeValue(unsigned int index, const MTime& value, MAnimCurveChange* kept) {
  return setValue(index, seconds(value), kept);
}

MFnAnimCurve::TangentType MFnAnimCurve::inTangentType(unsigned int index, MStatus* status) const {
  const KeyCurve curve = keysOf(object_, status);
  const Key* key = keyAt(curve, index, status);
  return key ? tangentTo(key->in) : kTangentGlobal;
}
MFnAnimCurve::TangentType MFnAnimCurve::outTangentType(unsigned int index, MStatus* status) const {
  const KeyCurve curve = keysOf(object_, status);
  const Key* key = keyAt(curve, index, status);
  return key ? tangentTo(key->out) : kTangentGlobal;
}
MStatus MFnAnimCurve::setInTangentType(unsigned int index, TangentType type,
                                       MAnimCurveChange* kept) {
  return change(object_, kept, [&](KeyCurve& curve) {
    if (index >= curve.keys.size()) return false;
    curve.keys[index].in = tangentFrom(type);
    return true;
  });
}
MStatus MFnAnimCurve::setOutTangentType(unsigned int index, TangentType type,
                                        MAnimCurveChange* kept) {
  return change(object_, kept, [&](KeyCurve& curve) {
    if (index >= curve.keys.size()) return false;
    curve.keys[index].out = tangentFrom(type);
    return true;
  });
}
MStatus MFnAnimCurve::setTangentTypes(const MIntArray* indices, TangentType tangentIn,
                                      TangentType tangentOut, MAnimCurveChange* kept) {
  if (!indices) return MStatus::kInvalidParameter;
  return change(object_, kept, [&](KeyCurve& curve) {
    for (const int index : *indices) {
      if (index < 0 || at(index) >= curve.keys.size()) return false;
      curve.keys[at(index)].in = tangentFrom(tangentIn);
      curve.keys[at(index)].out = tangentFrom(tangentOut);
    }
    return true;
  });
}

MStatus MFnAnimCurve::getTangent(unsigned int index, float& x, float& y, bool inTangent) const {
  MStatus status;
  const KeyCurve curve = keysOf(object_, &status);
  const Key* key = keyAt(curve, index, &status);
  if (!key) return status;
  const bool isFixed = (inTangent ? key->in : key->out) == KeyTangent::Fixed;
  // Without a fixed tangent its slope over a second.
  x = static_cast<float>(!isFixed ? 1 : inTangent ? key->inX : key->outX);
  y = static_cast<float>(!isFixed    ? curve.slope(index, inTangent)
                         : inTangent ? key->inY
                                     : key->outY);
  return status;
}
MStatus MFnAnimCurve::getTangent(unsigned int index, MAngle& angle, double& weight,
                                 bool inTangent) const {
  float x = 1, y = 0;
  const MStatus status = getTangent(index, x, y, inTangent);
  if (!status) return status;
  const auto run = static_cast<double>(x), rise = static_cast<double>(y);
  angle = MAngle(std::atan2(rise, run), MAngle::kRadians);
  weight = std::hypot(run, rise);
  return status;
}
MStatus MFnAnimCurve::setTangent(unsigned int index, float x, float y, bool inTangent,
                                 MAnimCurveChange* kept, bool) {
  return change(object_, kept, [&](KeyCurve& curve) {
    if (index >= curve.keys.size() || !std::isfinite(x) || !std::isfinite(y) || !(x >= 0))
      return false;
    Key& key = curve.keys[index];
    (inTangent ? key.in : key.out) = KeyTangent::Fixed;
    (inTangent ? key.inX : key.outX) = static_cast<double>(x);
    (inTangent ? key.inY : key.outY) = static_cast<double>(y);
    return true;
  });
}
MStatus MFnAnimCurve::setTangent(unsigned int index, const MAngle& angle, double weight,
                                 bool inTangent, MAnimCurveChange* kept, bool convertUnits) {
  const double radians = angle.asRadians();
  return setTangent(index, static_cast<float>(weight * std::cos(radians)),
                    static_cast<float>(weight * std::sin(radians)), inTangent, kept, convertUnits);
}
MStatus MFnAnimCurve::setAngle(unsigned int index, const MAngle& angle, bool inTangent,
                               MAnimCurveChange* kept) {
  MAngle before;
  double weight = 1;
  const MStatus status = getTangent(index, before, weight, inTangent);
  return status ? setTangent(index, angle, weight, inTangent, kept) : status;
}
bool MFnAnimCurve::isWeighted(MStatus* status) const {
  return keysOf(object_, status).isWeighted;
}
MStatus MFnAnimCurve::setIsWeighted(bool isWeighted, MAnimCurveChange* kept) {
  return change(object_, kept, [&](KeyCurve& curve) {
    curve.isWeighted = isWeighted;
    return true;
  });
}

MFnAnimCurve::InfinityType MFnAnimCurve::preInfinityType(MStatus* status) const {
  return static_cast<InfinityType>(keysOf(object_, status).before);
}
MFnAnimCurve::InfinityType MFnAnimCurve::postInfinityType(MStatus* status) const {
  return static_cast<InfinityType>(keysOf(object_, status).after);
}
MStatus MFnAnimCurve::setPreInfinityType(InfinityType type, MAnimCurveChange* kept) {
  return change(object_, kept, [&](KeyCurve& curve) {
    curve.before = static_cast<math::KeyInfinity>(type);
    return true;
  });
}
MStatus MFnAnimCurve::setPostInfinityType(InfinityType type, MAnimCurveChange* kept) {
  return change(object_, kept, [&](KeyCurve& curve) {
    curve.after = static_cast<math::KeyInfinity>(type);
    return true;
  });
}
