#include "host/io/ma/ma_node_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/io/ma/ma_numbers.h"
#include "host/io/ma/ma_plugs.h"
#include "host/scene/component.h"

namespace host::io {
namespace {

using dg::Attribute;
using dg::AttributeType;
using dg::Plug;
using dg::Value;
using Flag = dg::Graph::PlugFlag;

constexpr std::size_t kNumbersAChunk = 500;
constexpr std::size_t kMostNamedElements = 1000;

std::string indexed(const std::string& name, const Plug& plug) {
  return plug.isElement() ? fmt::format("{}[{}]", name, plug.logicalIndex()) : name;
}

std::string pathBelow(const Plug& plug, bool leavesOutCompounds) {
  std::string path = indexed(plug.attribute()->shortName, plug);
  for (Plug above = plug.isElement() ? plug.array().parent() : plug.parent(); !above.isNull();
       above = above.isElement() ? above.array().parent() : above.parent())
    if (above.isElement() || !leavesOutCompounds)
      path = indexed(above.attribute()->shortName, above) + "." + path;
  return path;
}

/// Numbers that can be written one after the other: a tuple of plain numeric children.
bool isTuple(const Attribute& attribute) {
  return attribute.isCompound() && !attribute.compoundType.empty() &&
         std::ranges::all_of(attribute.children, [](const dg::AttributePtr& child) {
           return child->isNumeric() && !child->isArray;
         });
}

Plug sameOn(dg::Node& node, const Plug& plug) {
  Plug same(&node, plug.attribute());
  for (int level = 0; level < plug.levels(); ++level)
    if (plug.index(level) != kNone) same = same.withIndex(level, plug.index(level));
  return same;
}

/// Everything between a plug and the top, arrays and compounds, the plug included.
template <class Visit>
void visitUpwards(Plug plug, Visit visit) {
  while (!plug.isNull()) {
    visit(plug);
    if (plug.isElement()) {
      plug = plug.array();
      visit(plug);
    }
    plug = plug.parent();
  }
}

}  // namespace

std::string filePath(const Plug& plug) {
  std::string brief = pathBelow(plug, true);
  const MaPlug found = findPlug(*plug.node(), brief);
  const Plug same =
      found.plug.isNull() || found.first == kNone ? found.plug : found.plug.element(found.first);
  return same == plug ? brief : pathBelow(plug, false);
}

MaNodeWriter::MaNodeWriter(dg::Graph& graph, const scene::Units& units, dg::Node& node,
                           const dg::Node* fresh)
    : graph_(graph), units_(units), node_(node), fresh_(const_cast<dg::Node*>(fresh)) {
  for (const auto& connection : graph.incoming(node))
    visitUpwards(connection.destination, [&](const Plug& plug) {
      wired_.insert(plug);
      driven_.insert(plug);
    });
  for (const auto& connection : graph.outgoing(node))
    visitUpwards(connection.source, [&](const Plug& plug) { wired_.insert(plug); });
}

void MaNodeWriter::write(std::string& out) {
  const std::vector<dg::AttributePtr>& dynamic = node_.dynamicAttributes();
  for (const dg::AttributePtr& attribute : dynamic) addAttribute(out_, *attribute, nullptr);
  for (const dg::AttributePtr& attribute : node_.type().attributes())
    if (leftOut_.count(attribute->longName) == 0) visit(node_.plug(attribute.get()));
  for (const dg::AttributePtr& attribute : dynamic) visit(node_.plug(attribute.get()));
  if (!aliases_.empty())
    out_ +=
        "\taddAttr -ci true -h true -sn \"aal\" -ln \"attributeAliasList\" -dt "
        "\"attributeAlias\";\n"
        "\tsetAttr \".aal\" -type \"attributeAlias\" {" +
        aliases_ + "} ;\n";
  out += out_;
}

void MaNodeWriter::line(const std::string& switchWords, const Plug& plug,
                        const std::string& value) {
  const Plug written = inFile ? inFile(plug).value_or(plug) : plug;
  out_ += "\tsetAttr" + switchWords + " \"." + filePath(written) + "\"" + value + ";\n";
}

// Declarations.

void MaNodeWriter::addAttribute(std::string& out, const Attribute& attribute,
                                const Attribute* parent) const {
  out += fmt::format("\taddAttr -ci {}", attribute.cached);
  const auto on = [&](bool isOn, std::string_view words) {
    if (isOn) out += words;
  };
  on(attribute.keyable, " -k true");
  on(attribute.hidden, " -h true");
  on(attribute.usedAsColor, " -uac");
  on(attribute.usedAsFilename, " -uaf");
  on(attribute.isArray, " -m");
  on(!attribute.indexMatters, " -im false");
  on(!attribute.readable, " -r false");
  on(!attribute.writable, " -w false");
  on(!attribute.storable, " -s false");
  out += fmt::format(" -sn \"{}\" -ln \"{}\"", attribute.shortName, attribute.longName);
  if (!attribute.niceName.empty()) {
    out += " -nn ";
    appendQuoted(out, attribute.niceName);
  }
  const double perUnit = storedPerUnit(attribute.type, units_);
  const auto number = [&](std::string_view flag, double value) {
    out += flag;
    attribute.isNumeric() && attribute.type < AttributeType::Float
        ? appendNumber(out, static_cast<std::int64_t>(value))
        : appendStored(out, value, perUnit);
  };
  if (const auto* integer = std::get_if<std::int64_t>(&attribute.defaultValue))
    number(" -dv ", static_cast<double>(*integer));
  else if (const auto* real = std::get_if<double>(&attribute.defaultValue))
    number(" -dv ", *real);
  if (attribute.minimum) number(" -min ", *attribute.minimum);
  if (attribute.maximum) number(" -max ", *attribute.maximum);
  if (attribute.softMinimum) number(" -smn ", *attribute.softMinimum);
  if (attribute.softMaximum) number(" -smx ", *attribute.softMaximum);
  if (!attribute.enumFields.empty()) {
    std::string fields;
    std::int64_t next = 0;
    for (const dg::EnumField& field : attribute.enumFields) {
      fields += (fields.empty() ? "" : ":") + field.name;
      if (field.value != next) fields += fmt::format("={}", field.value);
      next = field.value + 1;
    }
    out += " -en ";
    appendQuoted(out, fields);
  }
  const bool isData =
      attribute.type == AttributeType::String || attribute.type == AttributeType::Typed;
  if (attribute.type == AttributeType::Generic)
    for (const std::string& type : attribute.acceptedTypes) out += fmt::format(" -dt \"{}\"", type);
  else
    out += fmt::format(" -{} \"{}\"", isData ? "dt" : "at", attribute.typeWord());
  if (parent) out += fmt::format(" -p \"{}\"", parent->longName);
  if (attribute.isCompound()) out += fmt::format(" -nc {}", attribute.children.size());
  out += ";\n";
  for (const dg::AttributePtr& child : attribute.children) addAttribute(out, *child, &attribute);
}

// Values.

bool MaNodeWriter::holdsValues(const Attribute& attribute) const {
  return attribute.storable && attribute.writable && attribute.type != AttributeType::Message &&
         !node_.type().isComputed(&attribute);
}

bool MaNodeWriter::differs(const Plug& leaf, const Value& value) const {
  if (!dg::equal(value, leaf.attribute()->initialValue())) return true;
  return fresh_ && fresh_->findAttribute(leaf.attribute()->longName) == leaf.attribute() &&
         !dg::equal(value, graph_.stored(sameOn(*fresh_, leaf)));
}

std::string MaNodeWriter::switches(const Plug& plug) const {
  const Attribute& attribute = *plug.attribute();
  std::string words;
  const auto word = [&](Flag flag, bool otherwise, std::string_view name) {
    const bool on = graph_.flag(plug, flag);
    if (on != otherwise) words += fmt::format(" -{} {}", name, on ? "on" : "off");
  };
  word(Flag::Keyable, attribute.keyable, "k");
  word(Flag::ChannelBox, attribute.channelBox, "cb");
  word(Flag::Caching, attribute.cached, "ca");
  // What is driven is locked by the statement that connects it.
  if (graph_.source(plug).isNull()) word(Flag::Locked, false, "l");
  return words;
}

void MaNodeWriter::noteAlias(const Plug& plug) {
  const std::string alias = graph_.alias(plug);
  if (alias.empty()) return;
  if (!aliases_.empty()) aliases_ += ',';
  appendQuoted(aliases_, alias);
  aliases_ += ',';
  appendQuoted(aliases_, filePath(plug));
}

void MaNodeWriter::visit(const Plug& plug) {
  if (plug.isArray()) return visitArray(plug);
  if (plug.isCompound()) return visitCompound(plug);
  visitLeaf(plug, false);
}

void MaNodeWriter::visitLeaf(const Plug& plug, bool isForced) {
  noteAlias(plug);
  const std::string words = switches(plug);
  std::string text;
  if (holdsValues(*plug.attribute()) && !graph_.isDriven(plug)) {
    const Value value = graph_.stored(plug);
    if (isForced || differs(plug, value) || forced_.contains(plug)) {
      text = " ";
      if (!appendValue(text, *plug.attribute(), value)) text.clear();
    }
  }
  if (!text.empty() || !words.empty()) line(words, plug, text);
}

/// All children of a tuple in one statement; false when some of them are driven.
bool MaNodeWriter::writeWhole(const Plug& plug, bool isForced) {
  const Attribute& attribute = *plug.attribute();
  if (!isTuple(attribute) || driven_.count(plug) != 0 || !holdsValues(attribute)) return false;
  bool isNews = isForced || forced_.contains(plug);
  std::string text = fmt::format(" -type \"{}\"", attribute.compoundType);
  for (std::size_t i = 0; i < attribute.children.size(); ++i) {
    const Plug child = plug.child(static_cast<int>(i));
    const Value value = graph_.stored(child);
    isNews = isNews || differs(child, value);
    text += ' ';
    appendValue(text, *child.attribute(), value);
  }
  const std::string words = switches(plug);
  if (isNews)
    line(words, plug, text + " ");
  else if (!words.empty())
    line(words, plug, {});
  for (std::size_t i = 0; i < attribute.children.size(); ++i) {
    const Plug child = plug.child(static_cast<int>(i));
    noteAlias(child);
    if (const std::string own = switches(child); !own.empty()) line(own, child, {});
  }
  return true;
}

void MaNodeWriter::visitCompound(const Plug& plug) {
  noteAlias(plug);
  if (graph_.isDriven(plug) || writeWhole(plug, false)) return;
  for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
    visit(plug.child(static_cast<int>(i)));
  if (const std::string words = switches(plug); !words.empty()) line(words, plug, {});
}

void MaNodeWriter::visitArray(const Plug& array) {
  if (const std::string words = switches(array); !words.empty()) line(words, array, {});
  if (array.attribute()->internalStorage || graph_.isDriven(array) ||
      node_.type().isComputed(array.attribute()))
    return;
  const std::vector<Index> indices = graph_.elementIndices(array);
  if (indices.empty()) return;
  if (writePacked(array, indices)) return;
  for (const Index index : indices) visitElement(array.element(index));
}

void MaNodeWriter::visitElement(const Plug& element) {
  if (inFile && !inFile(element)) return;
  const bool comesByWire = isWired(element);
  if (!element.isCompound()) return visitLeaf(element, !comesByWire);
  noteAlias(element);
  if (graph_.isDriven(element) || writeWhole(element, !comesByWire)) return;
  const std::size_t before = out_.size();
  for (std::size_t i = 0; i < element.attribute()->children.size(); ++i)
    visit(element.child(static_cast<int>(i)));
  if (const std::string words = switches(element); !words.empty()) line(words, element, {});
  if (out_.size() > before || comesByWire) return;
  // An element that holds nothing but defaults is made by stating one of them.
  for (std::size_t i = 0; i < element.attribute()->children.size(); ++i) {
    const Plug child = element.child(static_cast<int>(i));
    if (child.isArray() || !holdsValues(*child.attribute())) continue;
    if (child.isCompound() ? writeWhole(child, true) : (visitLeaf(child, true), true)) return;
  }
}

/// An array of numbers or of tuples, in statements of up to 500 numbers.
bool MaNodeWriter::writePacked(const Plug& array, const std::vector<Index>& indices) {
  const Attribute& attribute = *array.attribute();
  if (driven_.count(array) != 0 || !holdsValues(attribute) ||
      !(attribute.isNumeric() || isTuple(attribute)))
    return false;
  std::vector<Index> all;
  std::vector<double> values;
  if (!graph_.getPacked(array, all, values) || all.size() != indices.size()) return false;
  std::vector<const Attribute*> leaves;
  for (const dg::AttributePtr& child : attribute.children) leaves.push_back(child.get());
  if (leaves.empty()) leaves.push_back(&attribute);
  const std::size_t width = leaves.size(), perChunk = kNumbersAChunk / width;
  const std::string path = filePath(array);
  const std::string type =
      attribute.isCompound() ? fmt::format(" -type \"{}\"", attribute.compoundType) : "";
  // Runs of indices without gaps, cut where a statement is full.
  std::vector<std::pair<std::size_t, std::size_t>> runs;
  for (std::size_t i = 0; i < all.size(); ++i) {
    const bool goesOn = !runs.empty() && all[i] == all[i - 1] + 1 &&
                        runs.back().second - runs.back().first < perChunk;
    if (goesOn)
      ++runs.back().second;
    else
      runs.emplace_back(i, i + 1);
  }
  if (runs.size() > 1) out_ += fmt::format("\tsetAttr -s {} \".{}\";\n", all.size(), path);
  for (const auto& [first, end] : runs) {
    out_ += "\tsetAttr";
    if (runs.size() == 1 && end - first > 1) out_ += fmt::format(" -s {}", all.size());
    out_ += end - first == 1 ? fmt::format(" \".{}[{}]\"", path, all[first])
                             : fmt::format(" \".{}[{}:{}]\"", path, all[first], all[end - 1]);
    out_ += type;
    for (std::size_t i = first; i < end; ++i) {
      if (i > first && (i - first) % 6 == 0) out_ += "\n\t\t";
      for (std::size_t k = 0; k < width; ++k) {
        out_ += ' ';
        appendLeafNumber(out_, *leaves[k], values[i * width + k]);
      }
    }
    out_ += ";\n";
  }
  if (all.size() <= kMostNamedElements)
    for (const Index index : all) noteAlias(array.element(index));
  return true;
}

void MaNodeWriter::appendLeafNumber(std::string& text, const Attribute& leaf, double number) {
  if (!std::isfinite(number)) {
    fault_ = node_.name() + "." + leaf.longName;
    number = 0;
  }
  if (leaf.type == AttributeType::Bool)
    text += number != 0 ? "yes" : "no";
  else if (leaf.type < AttributeType::Float || leaf.type == AttributeType::Enum)
    appendNumber(text, static_cast<std::int64_t>(number));
  else if (leaf.type == AttributeType::Float)
    appendNumber(text, static_cast<float>(number));
  else
    appendStored(text, number, storedPerUnit(leaf.type, units_));
}

}  // namespace host::io
