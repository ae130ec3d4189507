#include <fmt/format.h>
#include <maya/MPlug.h>
#include <maya/MStringArray.h>
#include <maya/MTime.h>

#include <optional>

#include "host/api/data/data_handle.h"
#include "host/edits/at_time.h"

namespace host::api {
namespace {

std::string escaped(const std::string& text) {
  std::string result = "\"";
  for (const char each : text) {
    if (each == '"' || each == '\\') result += '\\';
    if (each == '\n')
      result += "\\n";
    else
      result += each;
  }
  return result + '"';
}

double inScriptUnits(const dg::Attribute& attribute, double value) {
  const scene::Units& units = document().units();
  switch (attribute.type) {
    case dg::AttributeType::Distance:
      return units.fromCentimeters(value);
    case dg::AttributeType::Angle:
      return units.fromRadians(value);
    case dg::AttributeType::Time:
      return value * units.framesPerSecond();
    default:
      return value;
  }
}

/// The words after the plug's name that set a stored value; empty for values that no command line
/// holds.
std::string valueWords(const dg::Attribute& attribute, const dg::Value& value) {
  if (const auto* integer = std::get_if<std::int64_t>(&value)) return fmt::format(" {}", *integer);
  if (const auto* real = std::get_if<double>(&value))
    return fmt::format(" {}", inScriptUnits(attribute, *real));
  if (const auto* text = std::get_if<std::string>(&value))
    return " -type \"string\" " + escaped(*text);
  if (const auto* matrix = dg::dataAs<dg::MatrixData>(value)) {
    std::string words = " -type \"matrix\"";
    for (const auto& row : matrix->value.m)
      for (const double number : row) words += fmt::format(" {}", number);
    return words;
  }
  return {};
}

void collectSetAttr(const dg::Plug& plug, MPlug::MValueSelector selector, bool useLongNames,
                    MStringArray& commands) {
  dg::Graph& graph = plug.node()->graph();
  if (plug.isArray()) {
    for (const Index index : graph.elementIndices(plug))
      collectSetAttr(plug.element(index), selector, useLongNames, commands);
    return;
  }
  if (plug.isCompound()) {
    for (const dg::AttributePtr& child : plug.attribute()->children)
      collectSetAttr(plug.child(child.get()), selector, useLongNames, commands);
    return;
  }
  if (!plug.attribute()->storable || graph.isDriven(plug)) return;
  const dg::Value value = graph.stored(plug);
  if (selector != MPlug::kAll && dg::equal(value, plug.attribute()->initialValue())) return;
  const std::string words = valueWords(*plug.attribute(), value);
  if (!words.empty())
    commands.append(
        toMString(fmt::format("setAttr \".{}\"{};", plug.attributePath(!useLongNames), words)));
}

}  // namespace
}  // namespace host::api

using namespace host;
using api::plugOf;
using api::setStatus;

MDataHandle MPlug::asMDataHandle(MStatus* status) const {
  const dg::Plug plug = plugOf(*this);
  setStatus(status, plug.isNull() ? MStatus::kFailure : MStatus::kSuccess);
  return plug.isNull() ? MDataHandle() : api::copyOfPlug(plug);
}
MDataHandle MPlug::asMDataHandle(MDGContext& context, MStatus* status) const {
  MTime when;
  std::optional<edits::AtTime> then;
  if (!context.isNormal() && context.getTime(when))
    then.emplace(api::document(), when.as(MTime::kSeconds));
  return asMDataHandle(status);
}
void MPlug::destructHandle(MDataHandle& handle) const {
  handle = MDataHandle();
}
MDataHandle MPlug::constructHandle(MDataBlock&) const {
  const dg::Plug plug = plugOf(*this);
  if (plug.isNull()) return {};
  return api::wrapHandle(new api::HandleRep(std::make_shared<api::LooseStore>(), plug, true));
}
MStatus MPlug::setMDataHandle(const MDataHandle& value) const {
  const dg::Plug plug = plugOf(*this);
  api::HandleRep* rep = api::repOf(value);
  if (plug.isNull()) return MStatus::kFailure;
  if (!rep || rep->plug.isNull()) return MStatus::kInvalidParameter;
  rep->flush();
  return api::toStatus(api::copyValues(*rep->store, rep->plug, *api::editStore(), plug),
                       MStatus::kInvalidParameter);
}
MStatus MPlug::setValue(MDataHandle& value) const {
  return setMDataHandle(value);
}

MStatus MPlug::getSetAttrCmds(MStringArray& commands, MValueSelector selector,
                              bool useLongNames) const {
  commands.clear();
  const dg::Plug plug = plugOf(*this);
  if (plug.isNull()) return MStatus::kFailure;
  api::collectSetAttr(plug, selector, useLongNames, commands);
  return MStatus::kSuccess;
}
