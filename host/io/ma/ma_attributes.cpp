#include "host/io/ma/ma_attributes.h"

#include <fmt/format.h>

#include <algorithm>

#include "host/dg/foreign_data.h"
#include "host/dg/numeric_data.h"
#include "host/io/ma/ma_numbers.h"
#include "host/io/ma/ma_plugs.h"

namespace host::io {
namespace {

using dg::AttributeType;
using dg::Plug;

bool isPayloadType(std::string_view type) {
  static constexpr std::string_view kTypes[] = {
      "string",      "matrix",     "stringArray",       "componentList",
      "doubleArray", "floatArray", "dataPolyComponent", "Int32Array",
      "vectorArray", "pointArray", "nurbsCurve",        "nurbsSurface",
      "arrayAttrs"};
  return std::ranges::find(kTypes, type) != std::end(kTypes) || dg::hasForeignReader(type);
}

/// The numeric leaves of an attribute, in order; false when there is anything else.
bool numericLeaves(const dg::Attribute& attribute, std::vector<const dg::Attribute*>& leaves) {
  if (attribute.children.empty()) {
    leaves.push_back(&attribute);
    return attribute.isNumeric();
  }
  return std::ranges::all_of(attribute.children, [&](const dg::AttributePtr& child) {
    return !child->isArray && numericLeaves(*child, leaves);
  });
}

}  // namespace

bool MaAttributes::isUnknown(const dg::Node& node) {
  return node.type().name.starts_with("unknown");
}

void MaAttributes::apply(dg::Node& node, const std::vector<MaLine>& lines) {
  for (const MaLine& line : lines) std::visit([&](const auto& each) { apply(node, each); }, line);
  if (auto done = flush(); !done)
    report_({std::visit([](const auto& each) { return each.offset; }, lines.back()),
             {},
             {},
             std::move(done).error().message});
  pending_.clear();
}

void MaAttributes::lock() {
  for (const Plug& plug : locks_)
    if (!document_.graph().flag(plug, dg::Graph::PlugFlag::Locked))
      (void)document_.graph().setFlag(plug, dg::Graph::PlugFlag::Locked, true);
  locks_.clear();
}

void MaAttributes::apply(dg::Node& node, const MaSetAttr& line) {
  if (line.type == "attributeAlias" && !isUnknown(node)) {
    if (auto done = setAliases(node, line); !done)
      report_({line.offset, line.raw, line.path, std::move(done).error().message});
    return;
  }
  const MaPlug found = findPlug(node, line.path);
  if (found.plug.isNull()) return report_({line.offset, line.raw, line.path, {}});
  auto done = line.values.empty() && line.type.empty()
                  ? Result<void>()
                  : write(found.plug, found.first, found.last, line);
  if (!done) return report_({line.offset, line.raw, line.path, std::move(done).error().message});
  const bool isElement = found.first != kNone && found.first == found.last;
  setSwitches(isElement ? found.plug.element(found.first) : found.plug, line);
}

Result<void> MaAttributes::setAliases(dg::Node& node, const MaSetAttr& line) {
  for (std::size_t i = 0; i + 1 < line.values.size(); i += 2) {
    const Plug plug = findEnd(node, line.values[i + 1].text, 0);
    if (plug.isNull() || plug.isArray())
      return fail("'{}' is no attribute to give an alias to", line.values[i + 1].text);
    HOST_TRY(document_.graph().setAlias(plug, std::string(line.values[i].text)));
  }
  return {};
}

void MaAttributes::setSwitches(const Plug& plug, const MaSetAttr& line) {
  using Flag = dg::Graph::PlugFlag;
  dg::Graph& graph = document_.graph();
  const auto set = [&](const std::optional<bool>& wanted, Flag flag) {
    // What holds anyway needs no mark of its own.
    if (wanted && graph.flag(plug, flag) != *wanted) (void)graph.setFlag(plug, flag, *wanted);
  };
  set(line.keyable, Flag::Keyable);
  set(line.channelBox, Flag::ChannelBox);
  set(line.caching, Flag::Caching);
  if (line.locked && *line.locked)
    locks_.push_back(plug);
  else
    set(line.locked, Flag::Locked);
}

Result<void> MaAttributes::write(const Plug& plug, Index first, Index last, const MaSetAttr& line) {
  if (first != kNone) {
    auto isTaken = addToRun(plug, first, last, line);
    if (!isTaken) return failWith(std::move(isTaken).error());
    if (*isTaken) return {};
  }
  HOST_TRY(flush());
  if (plug.isArray() && first == kNone) return fail("'{}' is an array", line.path);
  const std::size_t elements = first == kNone ? 1 : at(last) - at(first) + 1;
  if (elements > line.values.size() + 1)
    return fail("'{}' has {} values for {} elements", line.path, line.values.size(), elements);
  std::size_t next = 0;
  for (std::size_t i = 0; i < elements; ++i) {
    const Plug each = first == kNone ? plug : plug.element(static_cast<Index>(at(first) + i));
    const bool isPayload = !each.isCompound() && elements == 1 &&
                           (isPayloadType(line.type) || (dg::numericDataSize(line.type) > 0 &&
                                                         each.attribute()->dataType == line.type));
    if (!isPayload) {
      HOST_TRY(writeNumbers(each, line.values, next));
      continue;
    }
    auto value = readPayload(line.type, line.values, componentBudget_);
    if (!value) return failWith(std::move(value).error());
    HOST_TRY(document_.graph().set(each, *value));
    next = line.values.size();
  }
  if (next != line.values.size())
    return fail("'{}' has {} values, of which {} are used", line.path, line.values.size(), next);
  return {};
}

Result<bool> MaAttributes::addToRun(const Plug& array, Index first, Index last,
                                    const MaSetAttr& line) {
  std::vector<const dg::Attribute*> leaves;
  if (!numericLeaves(*array.attribute(), leaves)) return false;
  if (run_.array != array) {
    HOST_TRY(flush());
    std::vector<Index> indices;
    std::vector<double> values;
    if (!document_.graph().getPacked(array, indices, values)) return false;
    run_ = {array, std::move(indices), std::move(values)};
  }
  const std::size_t width = leaves.size();
  const std::size_t count = at(last) - at(first) + 1;
  if (line.values.size() != count * width)
    return fail("'{}' has {} values instead of {}", line.path, line.values.size(), count * width);
  if (!run_.indices.empty() && run_.indices.back() >= first) {
    // Out of order or over again: what is there goes first.
    HOST_TRY(flush());
    return false;
  }
  std::vector<double> numbers;
  numbers.reserve(line.values.size());
  for (std::size_t i = 0; i < line.values.size(); ++i) {
    auto value = leafValue(*leaves[i % width], line.values[i]);
    if (!value) return failWith(std::move(value).error());
    const auto* integer = std::get_if<std::int64_t>(&*value);
    numbers.push_back(integer ? static_cast<double>(*integer) : std::get<double>(*value));
  }
  for (std::size_t i = 0; i < count; ++i) run_.indices.push_back(static_cast<Index>(at(first) + i));
  run_.values.insert(run_.values.end(), numbers.begin(), numbers.end());
  return true;
}

Result<void> MaAttributes::flush() {
  if (run_.array.isNull()) return {};
  const Run run = std::exchange(run_, {});
  return document_.graph().setPacked(run.array, run.indices, run.values);
}

Result<void> MaAttributes::writeNumbers(const Plug& plug, const std::vector<MaToken>& tokens,
                                        std::size_t& next) {
  if (plug.isArray()) return fail("'{}' is an array", plug.name());
  if (plug.isCompound()) {
    for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
      HOST_TRY(writeNumbers(plug.child(static_cast<int>(i)), tokens, next));
    return {};
  }
  if (next >= tokens.size()) return fail("'{}' has no value", plug.name());
  auto value = leafValue(*plug.attribute(), tokens[next]);
  if (!value) return failWith(std::move(value).error());
  ++next;
  return document_.graph().set(plug, *value);
}

Result<dg::Value> MaAttributes::leafValue(const dg::Attribute& leaf, const MaToken& token) const {
  const std::string_view text = token.text;
  if (token.kind == MaToken::Kind::String) {
    if (leaf.isNumeric())
      return fail(ErrorKind::BadArgument, "'{}' cannot hold a text", leaf.longName);
    return dg::Value(std::string(text));
  }
  if (token.kind == MaToken::Kind::Word) {
    static constexpr std::string_view kOn[] = {"yes", "on", "true"},
                                      kOff[] = {"no", "off", "false"};
    if (std::ranges::find(kOn, text) != std::end(kOn)) return dg::Value(std::int64_t{1});
    if (std::ranges::find(kOff, text) != std::end(kOff)) return dg::Value(std::int64_t{0});
    return fail(ErrorKind::BadArgument, "'{}' is not a value of '{}'", text, leaf.longName);
  }
  double number = 0;
  if (!readStored(text, storedPerUnit(leaf.type, units_), number))
    return fail(ErrorKind::BadArgument, "'{}' is not a number", text);
  return dg::Value(number);
}

}  // namespace host::io
