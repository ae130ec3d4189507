#include <algorithm>
#include <charconv>
#include <map>

#include "host/io/ma/ma_attributes.h"
#include "host/io/ma/ma_numbers.h"

namespace host::io {
namespace {

using dg::AttributePtr;
using dg::AttributeType;

const std::map<std::string_view, AttributeType>& plainTypes() {
  static const std::map<std::string_view, AttributeType> kTypes = {
      {"bool", AttributeType::Bool},
      {"char", AttributeType::Char},
      {"byte", AttributeType::Byte},
      {"short", AttributeType::Short},
      {"long", AttributeType::Long},
      {"int64", AttributeType::Int64},
      {"float", AttributeType::Float},
      {"double", AttributeType::Double},
      {"doubleLinear", AttributeType::Distance},
      {"floatLinear", AttributeType::Distance},
      {"doubleAngle", AttributeType::Angle},
      {"floatAngle", AttributeType::Angle},
      {"time", AttributeType::Time},
      {"enum", AttributeType::Enum},
      {"message", AttributeType::Message},
      {"matrix", AttributeType::Matrix},
      {"fltMatrix", AttributeType::Matrix},
      {"compound", AttributeType::Compound},
  };
  return kTypes;
}

/// "double3" and its like: how many children such a compound has; 0 for other words.
std::size_t tupleSize(std::string_view type) {
  static constexpr std::string_view kStems[] = {"double", "float", "long", "short"};
  if (type.size() < 2 || type.back() < '2' || type.back() > '4') return 0;
  const std::string_view stem = type.substr(0, type.size() - 1);
  return std::ranges::find(kStems, stem) == std::end(kStems) ? 0 : at(type.back() - '0');
}

/// "low:mid=5:high".
std::vector<dg::EnumField> parseFields(std::string_view text) {
  std::vector<dg::EnumField> fields;
  std::int64_t next = 0;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(':'), text.size());
    std::string_view field = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (const std::size_t equals = field.find('='); equals != std::string_view::npos) {
      const std::string_view number = field.substr(equals + 1);
      (void)std::from_chars(number.data(), number.data() + number.size(), next);
      field = field.substr(0, equals);
    }
    if (!field.empty()) fields.push_back({std::string(field), next++});
  }
  return fields;
}

/// The flags of one addAttr by their short names.
class Flags {
 public:
  explicit Flags(const MaAddAttr& line) {
    static const std::map<std::string_view, std::string_view> kShort = {
        {"longName", "ln"},        {"shortName", "sn"},
        {"niceName", "nn"},        {"attributeType", "at"},
        {"dataType", "dt"},        {"defaultValue", "dv"},
        {"minValue", "min"},       {"maxValue", "max"},
        {"softMinValue", "smn"},   {"softMaxValue", "smx"},
        {"enumName", "en"},        {"numberOfChildren", "nc"},
        {"parent", "p"},           {"keyable", "k"},
        {"hidden", "h"},           {"multi", "m"},
        {"indexMatters", "im"},    {"readable", "r"},
        {"writable", "w"},         {"storable", "s"},
        {"usedAsColor", "uac"},    {"usedAsFilename", "uaf"},
        {"cachedInternally", "ci"}};
    for (const auto& [flag, values] : line.flags) {
      const auto known = kShort.find(flag);
      const std::string_view name = known == kShort.end() ? flag : known->second;
      if (!values.empty()) {
        for (const MaToken& value : values) values_[name].push_back(value.text);
      } else {
        values_[name].emplace_back("true");
      }
    }
  }
  [[nodiscard]] bool has(std::string_view flag) const { return values_.count(flag) != 0; }
  [[nodiscard]] std::string_view text(std::string_view flag) const {
    const auto found = values_.find(flag);
    return found == values_.end() ? std::string_view() : found->second.front();
  }
  [[nodiscard]] const std::vector<std::string_view>& all(std::string_view flag) const {
    return values_.at(flag);
  }
  [[nodiscard]] bool on(std::string_view flag, bool otherwise) const {
    if (!has(flag)) return otherwise;
    const std::string_view value = text(flag);
    return value == "true" || value == "on" || value == "yes" || value == "1";
  }

 private:
  std::map<std::string_view, std::vector<std::string_view>> values_;
};

void readRange(const Flags& flags, double perUnit, dg::Attribute& attribute) {
  const auto limit = [&](std::string_view flag, std::optional<double>& slot) {
    double value = 0;
    if (flags.has(flag) && readStored(flags.text(flag), perUnit, value)) slot = value;
  };
  limit("min", attribute.minimum);
  limit("max", attribute.maximum);
  limit("smn", attribute.softMinimum);
  limit("smx", attribute.softMaximum);
  double value = 0;
  if (!flags.has("dv") || !attribute.isNumeric()) return;
  if (flags.text("dv") == "true")
    value = 1;
  else if (!readStored(flags.text("dv"), perUnit, value))
    return;
  if (auto converted = attribute.convert(dg::Value(value))) attribute.defaultValue = *converted;
}

bool isName(std::string_view word) {
  const auto isLetter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
  };
  return !word.empty() && isLetter(word.front()) &&
         std::ranges::all_of(word, [&](char c) { return isLetter(c) || (c >= '0' && c <= '9'); });
}

constexpr int kDeepest = 32;
int depthOf(const dg::Attribute& attribute) {
  int depth = 0;
  for (const dg::Attribute* above = attribute.parent; above; above = above->parent) ++depth;
  return depth;
}

/// The attribute that the flags declare; null when its type is not known.
AttributePtr makeFrom(const Flags& flags, const scene::Units& units) {
  std::string longName(flags.text("ln")), shortName(flags.text("sn"));
  if (longName.empty()) longName = shortName;
  if (shortName.empty()) shortName = longName;
  if (!isName(longName) || !isName(shortName)) return nullptr;
  if (flags.has("dt") && !std::ranges::all_of(flags.all("dt"), isName)) return nullptr;
  AttributePtr attribute;
  if (flags.has("dt")) {
    const std::vector<std::string_view>& types = flags.all("dt");
    if (types.size() > 1) {
      attribute = dg::makeAttribute(longName, shortName, AttributeType::Generic);
      for (const std::string_view type : types) attribute->acceptedTypes.emplace_back(type);
    } else if (types.front() == "string") {
      attribute = dg::makeAttribute(longName, shortName, AttributeType::String);
    } else if (types.front() == "matrix") {
      attribute = dg::makeAttribute(longName, shortName, AttributeType::Matrix);
    } else {
      attribute = dg::makeTyped(longName, shortName, std::string(types.front()));
    }
  } else {
    const std::string_view type = flags.has("at") ? flags.text("at") : "double";
    if (tupleSize(type) > 0) {
      attribute = dg::makeAttribute(longName, shortName, AttributeType::Compound);
      attribute->compoundType = type;
    } else {
      const auto known = plainTypes().find(type);
      if (known == plainTypes().end()) return nullptr;
      attribute = dg::makeAttribute(longName, shortName, known->second);
    }
  }
  attribute->niceName = flags.text("nn");
  if (flags.has("en")) attribute->enumFields = parseFields(flags.text("en"));
  attribute->keyable = flags.on("k", false);
  attribute->hidden = flags.on("h", false);
  attribute->isArray = flags.on("m", false);
  attribute->indexMatters = flags.on("im", true);
  attribute->readable = flags.on("r", true);
  attribute->writable = flags.on("w", true);
  attribute->storable = flags.on("s", true);
  attribute->cached = flags.on("ci", true);
  attribute->usedAsColor = flags.on("uac", false);
  attribute->usedAsFilename = flags.on("uaf", false);
  readRange(flags, storedPerUnit(attribute->type, units), *attribute);
  return attribute;
}

}  // namespace

void MaAttributes::apply(dg::Node& node, const MaAddAttr& line) {
  // Its other attributes are not there, so these would stand alone.
  if (isUnknown(node)) return report_({line.offset, line.raw, {}, {}});
  if (auto done = addAttribute(node, line); !done)
    report_({line.offset, line.raw, {}, std::move(done).error().message});
}

Result<void> MaAttributes::addAttribute(dg::Node& node, const MaAddAttr& line) {
  const Flags flags(line);
  // The list of aliases stands in the graph itself.
  if (flags.text("dt") == "attributeAlias") return {};
  AttributePtr attribute = makeFrom(flags, units_);
  if (!attribute) return fail("an attribute of a type that is not known");
  const bool isCompound = attribute->isCompound();
  std::size_t childCount = tupleSize(attribute->compoundType);
  if (isCompound && childCount == 0) {
    Index count = 0;
    if (!MaRow(flags.text("nc")).read(count) || count < 1 || count > 10000)
      return fail("'{}' does not say how many children it has", attribute->longName);
    childCount = at(count);
  }
  if (flags.has("p") && !pending_.empty()) {
    const auto parent = std::ranges::find_if(pending_, [&](const PendingCompound& each) {
      return each.attribute->isNamed(flags.text("p")) &&
             each.attribute->children.size() < each.childCount;
    });
    if (parent == pending_.end())
      return fail("'{}' has no place in '{}'", attribute->longName, flags.text("p"));
    attribute->parent = parent->attribute.get();
    attribute->childIndex = static_cast<int>(parent->attribute->children.size());
    parent->attribute->children.push_back(attribute);
  } else {
    if (node.findAttribute(attribute->longName)) return {};
    pending_.clear();
    if (!isCompound) {
      auto added = document_.graph().addAttribute(node, std::move(attribute));
      return added ? Result<void>() : failWith(std::move(added).error());
    }
  }
  if (depthOf(*attribute) > kDeepest || attribute->arrayLevels() > dg::Plug::kMaxLevels) {
    pending_.clear();
    return fail("'{}' is nested too deeply", attribute->longName);
  }
  if (isCompound) pending_.push_back({std::move(attribute), childCount});
  if (std::ranges::any_of(pending_, [](const PendingCompound& each) {
        return each.attribute->children.size() < each.childCount;
      }))
    return {};
  AttributePtr whole = pending_.front().attribute;
  pending_.clear();
  auto added = document_.graph().addAttribute(node, std::move(whole));
  return added ? Result<void>() : failWith(std::move(added).error());
}

}  // namespace host::io
