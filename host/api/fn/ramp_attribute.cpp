#include <maya/MRampAttribute.h>

#include <algorithm>

#include "host/api/core/access.h"
#include "host/math/ramp.h"

using namespace host;
using api::setStatus;

namespace {

/// The array's plug when it has a ramp's children: position, value, interpolation.
dg::Plug rampOf(const MPlug& plug, MStatus* status) {
  const dg::Plug own = api::plugOf(plug);
  const bool isRamp = own && own.isArray() && own.attribute()->isCompound() &&
                      own.attribute()->children.size() == 3;
  setStatus(status, isRamp ? MStatus::kSuccess : MStatus::kInvalidParameter);
  return isRamp ? own : dg::Plug();
}

bool hasColors(const dg::Plug& ramp) {
  return ramp && ramp.attribute()->children[1]->isCompound();
}

double numberOf(dg::Graph& graph, const dg::Plug& plug) {
  const auto value = graph.get(plug);
  if (!value) return 0;
  if (const auto* real = std::get_if<double>(&*value)) return *real;
  const auto* whole = std::get_if<std::int64_t>(&*value);
  return whole ? static_cast<double>(*whole) : 0;
}

struct Entry {
  Index index = 0;
  math::RampEntry entry;
};

std::vector<Entry> entriesOf(const dg::Plug& ramp) {
  std::vector<Entry> entries;
  if (!ramp) return entries;
  dg::Graph& graph = ramp.node()->graph();
  for (const Index index : graph.elementIndices(ramp)) {
    const dg::Plug element = ramp.element(index);
    Entry& made = entries.emplace_back();
    made.index = index;
    made.entry.position = numberOf(graph, element.child(0));
    if (hasColors(ramp)) {
      const auto color = graph.getVec3(element.child(1));
      for (std::size_t i = 0; color && i < 3; ++i)
        made.entry.value[i] = (*color)[static_cast<int>(i)];
    } else {
      made.entry.value[0] = numberOf(graph, element.child(1));
    }
    made.entry.interpolation =
        static_cast<math::RampInterpolation>(static_cast<int>(numberOf(graph, element.child(2))));
  }
  return entries;
}

std::array<double, 3> valueAt(const dg::Plug& ramp, double position) {
  std::vector<math::RampEntry> all;
  for (const Entry& each : entriesOf(ramp)) all.push_back(each.entry);
  return math::rampAt(std::move(all), position);
}

Result<void> write(const dg::Plug& ramp, Index index, const math::RampEntry& entry) {
  dg::Graph& graph = ramp.node()->graph();
  const dg::Plug element = ramp.element(index);
  HOST_TRY(graph.set(element.child(0), entry.position));
  if (hasColors(ramp)) {
    HOST_TRY(graph.setVec3(element.child(1), {entry.value[0], entry.value[1], entry.value[2]}));
  } else {
    HOST_TRY(graph.set(element.child(1), entry.value[0]));
  }
  return graph.set(element.child(2), static_cast<std::int64_t>(entry.interpolation));
}

Result<void> replaceAll(const dg::Plug& ramp, const std::vector<math::RampEntry>& entries) {
  dg::Graph& graph = ramp.node()->graph();
  for (const Index index : graph.elementIndices(ramp))
    HOST_TRY(graph.removeElement(ramp.element(index), true));
  for (std::size_t i = 0; i < entries.size(); ++i)
    HOST_TRY(write(ramp, static_cast<Index>(i), entries[i]));
  return {};
}

std::array<double, 3> parts(float value) {
  return {static_cast<double>(value), 0, 0};
}
std::array<double, 3> parts(const MColor& color) {
  return {static_cast<double>(color.r), static_cast<double>(color.g), static_cast<double>(color.b)};
}

/// Entries of the shortest of the arrays; what has no interpolation is linear.
template <class Values>
std::vector<math::RampEntry> entriesFrom(const Values& values, const MFloatArray& positions,
                                         const MIntArray& interps) {
  std::vector<math::RampEntry> entries;
  for (unsigned int i = 0; i < std::min(values.length(), positions.length()); ++i)
    entries.push_back(
        {static_cast<double>(positions[i]), parts(values[i]),
         static_cast<math::RampInterpolation>(i < interps.length() ? interps[i] : 1)});
  return entries;
}

Index nextFree(const dg::Plug& ramp) {
  const auto indices = ramp.node()->graph().elementIndices(ramp);
  return indices.empty() ? 0 : indices.back() + 1;
}

MObject makeRamp(const MString& longName, const MString& shortName, bool isColor, MStatus* status) {
  const std::string name = api::toStd(longName), brief = api::toStd(shortName);
  setStatus(status, name.empty() ? MStatus::kInvalidParameter : MStatus::kSuccess);
  if (name.empty()) return {};
  dg::AttributePtr position =
      dg::makeAttribute(name + "_Position", brief + "p", dg::AttributeType::Float, 0.0);
  dg::AttributePtr value =
      isColor
          ? dg::makeTriple(name + "_Color", brief + "c", dg::AttributeType::Float, "float3")
          : dg::makeAttribute(name + "_FloatValue", brief + "fv", dg::AttributeType::Float, 0.0);
  if (isColor) {
    value->usedAsColor = true;
    for (std::size_t i = 0; i < 3; ++i) {
      value->children[i]->longName = name + "_Color" + "RGB"[i];
      value->children[i]->shortName = brief + "c" + "rgb"[i];
    }
  }
  dg::AttributePtr interpolation = dg::makeEnum(
      name + "_Interp", brief + "i", {{"None", 0}, {"Linear", 1}, {"Smooth", 2}, {"Spline", 3}}, 1);
  dg::AttributePtr ramp = dg::makeCompound(name, brief, {position, value, interpolation});
  ramp->isArray = true;
  ramp->usesArrayDataBuilder = true;
  return api::Access::make<MObject>(new api::AttributeRep(std::move(ramp)));
}

}  // namespace

MRampAttribute::MRampAttribute() = default;
MRampAttribute::MRampAttribute(const MPlug& plug, MStatus* status) : plug_(plug) {
  (void)rampOf(plug_, status);
}
MRampAttribute::MRampAttribute(const MObject& node, const MObject& attribute, MStatus* status)
    : plug_(node, attribute) {
  (void)rampOf(plug_, status);
}
MRampAttribute::MRampAttribute(const MRampAttribute& other) = default;
MRampAttribute::~MRampAttribute() = default;
MRampAttribute& MRampAttribute::operator=(const MRampAttribute& other) = default;

MObject MRampAttribute::createColorRamp(const MString& attrLongName, const MString& attrShortName,
                                        MStatus* status) {
  return makeRamp(attrLongName, attrShortName, true, status);
}
MObject MRampAttribute::createRamp(const MString& attrLongName, const MString& attrShortName,
                                   MStatus* status) {
  return makeRamp(attrLongName, attrShortName, true, status);
}
MObject MRampAttribute::createCurveRamp(const MString& attrLongName, const MString& attrShortName,
                                        MStatus* status) {
  return makeRamp(attrLongName, attrShortName, false, status);
}

unsigned int MRampAttribute::getNumEntries(MStatus* status) {
  return static_cast<unsigned int>(entriesOf(rampOf(plug_, status)).size());
}
void MRampAttribute::getEntries(MIntArray& indexes, MFloatArray& positions, MColorArray& colors,
                                MIntArray& interps, MStatus* status) {
  indexes.clear();
  positions.clear();
  colors.clear();
  interps.clear();
  for (const Entry& each : entriesOf(rampOf(plug_, status))) {
    indexes.append(each.index);
    positions.append(static_cast<float>(each.entry.position));
    colors.append(MColor(static_cast<float>(each.entry.value[0]),
                         static_cast<float>(each.entry.value[1]),
                         static_cast<float>(each.entry.value[2])));
    interps.append(static_cast<int>(each.entry.interpolation));
  }
}
void MRampAttribute::getEntries(MIntArray& indexes, MFloatArray& positions, MFloatArray& values,
                                MIntArray& interps, MStatus* status) {
  indexes.clear();
  positions.clear();
  values.clear();
  interps.clear();
  for (const Entry& each : entriesOf(rampOf(plug_, status))) {
    indexes.append(each.index);
    positions.append(static_cast<float>(each.entry.position));
    values.append(static_cast<float>(each.entry.value[0]));
    interps.append(static_cast<int>(each.entry.interpolation));
  }
}
void MRampAttribute::addEntries(MFloatArray& positions, MColorArray& colors, MIntArray& interps,
                                MStatus* status) {
  const dg::Plug ramp = rampOf(plug_, status);
  if (!ramp) return;
  for (const math::RampEntry& entry : entriesFrom(colors, positions, interps))
    setStatus(status, api::toStatus(write(ramp, nextFree(ramp), entry)).statusCode());
}
void MRampAttribute::addEntries(MFloatArray& positions, MFloatArray& values, MIntArray& interps,
                                MStatus* status) {
  const dg::Plug ramp = rampOf(plug_, status);
  if (!ramp) return;
  for (const math::RampEntry& entry : entriesFrom(values, positions, interps))
    setStatus(status, api::toStatus(write(ramp, nextFree(ramp), entry)).statusCode());
}
void MRampAttribute::deleteEntries(MIntArray& indexes, MStatus* status) {
  const dg::Plug ramp = rampOf(plug_, status);
  if (!ramp) return;
  for (unsigned int i = 0; i < indexes.length(); ++i) {
    const auto removed = ramp.node()->graph().removeElement(ramp.element(indexes[i]), true);
    if (!removed) setStatus(status, api::toStatus(removed).statusCode());
  }
}

namespace {

/// Changes one entry that is there.
template <class Change>
void changeEntry(const MPlug& plug, unsigned int index, MStatus* status, const Change& change) {
  const dg::Plug ramp = rampOf(plug, status);
  for (Entry& each : entriesOf(ramp)) {
    if (each.index != static_cast<Index>(index)) continue;
    change(each.entry);
    setStatus(status, api::toStatus(write(ramp, each.index, each.entry)).statusCode());
    return;
  }
  setStatus(status, MStatus::kInvalidParameter);
}

}  // namespace

void MRampAttribute::setColorAtIndex(MColor& color, unsigned int index, MStatus* status) {
  changeEntry(plug_, index, status, [&](math::RampEntry& entry) { entry.value = parts(color); });
}
void MRampAttribute::setValueAtIndex(float value, unsigned int index, MStatus* status) {
  changeEntry(plug_, index, status, [&](math::RampEntry& entry) { entry.value = parts(value); });
}
void MRampAttribute::setPositionAtIndex(float position, unsigned int index, MStatus* status) {
  changeEntry(plug_, index, status,
              [&](math::RampEntry& entry) { entry.position = static_cast<double>(position); });
}
void MRampAttribute::setInterpolationAtIndex(MInterpolation interp, unsigned int index,
                                             MStatus* status) {
  changeEntry(plug_, index, status, [&](math::RampEntry& entry) {
    entry.interpolation = static_cast<math::RampInterpolation>(interp);
  });
}
void MRampAttribute::getColorAtPosition(float position, MColor& color, MStatus* status) {
  const auto value = valueAt(rampOf(plug_, status), static_cast<double>(position));
  color = MColor(static_cast<float>(value[0]), static_cast<float>(value[1]),
                 static_cast<float>(value[2]));
}
void MRampAttribute::getValueAtPosition(float position, float& value, MStatus* status) {
  value = static_cast<float>(valueAt(rampOf(plug_, status), static_cast<double>(position))[0]);
}
MStatus MRampAttribute::setRamp(const MFloatArray& values, const MFloatArray& positions,
                                const MIntArray& interps) {
  MStatus status;
  const dg::Plug ramp = rampOf(plug_, &status);
  return ramp ? api::toStatus(replaceAll(ramp, entriesFrom(values, positions, interps))) : status;
}
MStatus MRampAttribute::setRamp(const MColorArray& colors, const MFloatArray& positions,
                                const MIntArray& interps) {
  MStatus status;
  const dg::Plug ramp = rampOf(plug_, &status);
  return ramp ? api::toStatus(replaceAll(ramp, entriesFrom(colors, positions, interps))) : status;
}
void MRampAttribute::sort(bool ascending, MStatus* status) {
  const dg::Plug ramp = rampOf(plug_, status);
  if (!ramp) return;
  std::vector<math::RampEntry> entries;
  for (const Entry& each : entriesOf(ramp)) entries.push_back(each.entry);
  std::ranges::stable_sort(entries, {}, [&](const math::RampEntry& entry) {
    return ascending ? entry.position : -entry.position;
  });
  setStatus(status, api::toStatus(replaceAll(ramp, entries)).statusCode());
}
void MRampAttribute::pack(MStatus* status) {
  const dg::Plug ramp = rampOf(plug_, status);
  if (!ramp) return;
  std::vector<math::RampEntry> entries;
  for (const Entry& each : entriesOf(ramp)) entries.push_back(each.entry);
  setStatus(status, api::toStatus(replaceAll(ramp, entries)).statusCode());
}
bool MRampAttribute::hasIndex(unsigned int index, MStatus* status) {
  const auto entries = entriesOf(rampOf(plug_, status));
  return std::ranges::any_of(
      entries, [&](const Entry& each) { return each.index == static_cast<Index>(index); });
}
bool MRampAttribute::isColorRamp(MStatus* status) {
  return hasColors(rampOf(plug_, status));
}
bool MRampAttribute::isCurveRamp(MStatus* status) {
  const dg::Plug ramp = rampOf(plug_, status);
  return ramp && !hasColors(ramp);
}
MStatus MRampAttribute::sampleColorRamp(unsigned int numSamples, MColorArray& samples) {
  if (!isColorRamp() || numSamples < 2) return MStatus::kInvalidParameter;
  samples.setLength(numSamples);
  for (unsigned int i = 0; i < numSamples; ++i)
    getColorAtPosition(static_cast<float>(i) / static_cast<float>(numSamples - 1), samples[i]);
  return MStatus::kSuccess;
}
MStatus MRampAttribute::sampleValueRamp(unsigned int numSamples, MFloatArray& samples) {
  if (!isCurveRamp() || numSamples < 2) return MStatus::kInvalidParameter;
  samples.setLength(numSamples);
  for (unsigned int i = 0; i < numSamples; ++i)
    getValueAtPosition(static_cast<float>(i) / static_cast<float>(numSamples - 1), samples[i]);
  return MStatus::kSuccess;
}
