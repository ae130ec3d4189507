#include "host/cmd/plug_values.h"

#include <algorithm>
#include <optional>

#include "host/dg/numeric_data.h"
#include "host/scene/component.h"
#include "host/scene/node_names.h"

namespace host::cmd {

using dg::AttributeType;
using dg::Plug;
using scene::plugName;

double unitFactor(AttributeType type, const scene::Units& units) {
  switch (type) {
    case AttributeType::Distance:
      return units.toCentimeters(1.0);
    case AttributeType::Angle:
      return units.toRadians(1.0);
    case AttributeType::Time:
      return 1.0 / units.framesPerSecond();
    default:
      return 1.0;
  }
}

namespace {

bool isInteger(AttributeType type) {
  return type == AttributeType::Bool || type == AttributeType::Char ||
         type == AttributeType::Byte || type == AttributeType::Short ||
         type == AttributeType::Long || type == AttributeType::Int64 || type == AttributeType::Enum;
}

/// A stored real in the scene's units. Dividing by the factor keeps the value that a script set
/// whenever possible.
double shown(double stored, AttributeType type, const scene::Units& units) {
  switch (type) {
    case AttributeType::Distance:
      return units.fromCentimeters(stored);
    case AttributeType::Angle:
      return units.fromRadians(stored);
    case AttributeType::Time:
      return stored * units.framesPerSecond();
    default:
      return stored;
  }
}

mel::Value matrixValue(const math::Matrix4& matrix) {
  mel::FloatArray cells;
  cells.reserve(16);
  for (int row = 0; row < 4; ++row)
    for (int column = 0; column < 4; ++column) cells.push_back(matrix[row][column]);
  return cells;
}

mel::Value payloadValue(const dg::Value& value) {
  if (const auto* matrix = dg::dataAs<dg::MatrixData>(value)) return matrixValue(matrix->value);
  if (const auto* ints = dg::dataAs<dg::IntArrayData>(value)) return mel::IntArray(ints->value);
  if (const auto* doubles = dg::dataAs<dg::DoubleArrayData>(value))
    return mel::FloatArray(doubles->value);
  if (const auto* floats = dg::dataAs<dg::FloatArrayData>(value))
    return mel::FloatArray(floats->value.begin(), floats->value.end());
  if (const auto* strings = dg::dataAs<dg::StringArrayData>(value))
    return mel::StringArray(strings->value);
  if (const auto* vectors = dg::dataAs<dg::VectorArrayData>(value)) {
    mel::VectorArray result;
    for (const math::Vec3& v : vectors->value) result.push_back({v.x, v.y, v.z});
    return result;
  }
  if (const auto* points = dg::dataAs<dg::PointArrayData>(value)) {
    mel::VectorArray result;
    for (const dg::Point4& p : points->value) result.push_back({p.x, p.y, p.z});
    return result;
  }
  if (const auto* tuple = dg::dataAs<dg::NumericData>(value)) {
    if (!tuple->isWhole()) return mel::FloatArray(tuple->values);
    mel::IntArray integers;
    for (const double each : tuple->values) integers.push_back(mel::truncateToInt(each));
    return integers;
  }
  if (const auto* components = dg::dataAs<scene::ComponentListData>(value)) {
    mel::StringArray words;
    for (const scene::Component& component : components->value)
      for (std::string& word : component.words()) words.push_back(std::move(word));
    return words;
  }
  return {};
}

mel::Value leafValue(const dg::Value& value, AttributeType type, const scene::Units& units) {
  if (const auto* integer = std::get_if<std::int64_t>(&value))
    return static_cast<std::int32_t>(*integer);
  if (const auto* real = std::get_if<double>(&value)) {
    if (isInteger(type)) return mel::truncateToInt(*real);
    return shown(*real, type, units);
  }
  if (const auto* text = std::get_if<std::string>(&value)) return *text;
  if (type == AttributeType::String) return std::string{};
  if (type == AttributeType::Matrix && std::holds_alternative<std::monostate>(value))
    return matrixValue({});
  return payloadValue(value);
}

/// Collects the leaves below a plug, whatever its shape.
Result<void> collectLeaves(dg::Graph& graph, const Plug& plug, std::vector<Plug>& leaves) {
  if (plug.isArray()) {
    for (const Index index : graph.elementIndices(plug))
      HOST_TRY(collectLeaves(graph, plug.element(index), leaves));
    return {};
  }
  if (plug.isCompound()) {
    for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i)
      HOST_TRY(collectLeaves(graph, plug.child(static_cast<int>(i)), leaves));
    return {};
  }
  leaves.push_back(plug);
  return {};
}

Result<mel::Value> flatNumbers(dg::Graph& graph, const scene::Units& units,
                               const std::vector<Plug>& leaves) {
  const bool isWhole = std::all_of(leaves.begin(), leaves.end(), [](const Plug& leaf) {
    return isInteger(leaf.attribute()->type);
  });
  mel::IntArray integers;
  mel::FloatArray reals;
  mel::StringArray texts;
  for (const Plug& leaf : leaves) {
    auto value = graph.get(leaf);
    if (!value) return failWith(std::move(value.error()));
    const mel::Value read = leafValue(*value, leaf.attribute()->type, units);
    if (read.isString()) {
      texts.push_back(read.string());
    } else if (isWhole) {
      integers.push_back(read.toInt().value_or(0));
    } else if (read.type() == mel::Type::FloatArray) {
      reals.insert(reals.end(), read.floatArray().begin(), read.floatArray().end());
    } else if (read.isInt() || read.isFloat()) {
      reals.push_back(read.toFloat().value_or(0));
    }
  }
  if (!texts.empty()) return mel::Value(std::move(texts));
  if (isWhole && !integers.empty()) return mel::Value(std::move(integers));
  return mel::Value(std::move(reals));
}

std::optional<bool> switchWord(std::string_view text) {
  if (text == "on" || text == "yes" || text == "true") return true;
  if (text == "off" || text == "no" || text == "false") return false;
  return std::nullopt;
}

Result<dg::Value> leafFrom(const Plug& plug, const scene::Units& units, const mel::Value& value) {
  const AttributeType type = plug.attribute()->type;
  if (type == AttributeType::String) {
    auto text = value.toText();
    if (!text) return failWith(std::move(text.error()));
    return dg::Value(std::move(*text));
  }
  if (value.isString() && plug.attribute()->isNumeric()) {
    // Scripts hand numbers over as text; a word that is no number would silently become 0.
    const std::string& text = value.string();
    const bool looksNumeric =
        !text.empty() && text.find_first_not_of("0123456789.+-eE") == std::string::npos;
    const std::optional<bool> isOn = type == AttributeType::Bool ? switchWord(text) : std::nullopt;
    if (!looksNumeric && !isOn)
      return fail("'{}' is a numeric attribute and can't take the string \"{}\".", plugName(plug),
                  text);
    if (!looksNumeric) return dg::Value(std::int64_t{*isOn});
  }
  if (type == AttributeType::Bool || type == AttributeType::Enum || isInteger(type)) {
    if (value.isFloat()) return dg::Value(value.floatValue());
    auto integer = value.toInt();
    if (!integer) return failWith(std::move(integer.error()));
    return dg::Value(std::int64_t{*integer});
  }
  if (!plug.attribute()->isNumeric() && type != AttributeType::Generic)
    return fail("'{}' is not a numeric attribute: say which -type the value has.", plugName(plug));
  auto real = value.toFloat();
  if (!real) return failWith(std::move(real.error()));
  switch (type) {
    case AttributeType::Distance:
      return dg::Value(units.toCentimeters(*real));
    case AttributeType::Angle:
      return dg::Value(units.toRadians(*real));
    case AttributeType::Time:
      return dg::Value(*real / units.framesPerSecond());
    default:
      return dg::Value(*real);
  }
}

Result<std::vector<double>> numbers(std::span<const mel::Value> values) {
  std::vector<double> result;
  result.reserve(values.size());
  for (const mel::Value& value : values) {
    if (value.type() == mel::Type::FloatArray) {
      result.insert(result.end(), value.floatArray().begin(), value.floatArray().end());
    } else if (value.type() == mel::Type::IntArray) {
      result.insert(result.end(), value.intArray().begin(), value.intArray().end());
    } else if (value.type() == mel::Type::Vector) {
      result.insert(result.end(), {value.vector().x, value.vector().y, value.vector().z});
    } else if (value.type() == mel::Type::VectorArray) {
      for (const mel::Vec3& v : value.vectorArray()) result.insert(result.end(), {v.x, v.y, v.z});
    } else {
      auto number = value.toFloat();
      if (!number) return failWith(std::move(number.error()));
      result.push_back(*number);
    }
  }
  return result;
}

/// Splits "count v v v ..." and checks that the values are there.
Result<std::vector<double>> counted(std::span<const mel::Value> values, std::size_t width,
                                    const std::string& type) {
  auto all = numbers(values);
  if (!all) return all;
  if (all->empty()) return std::vector<double>{};
  const double count = all->front();
  all->erase(all->begin());
  if (!(count >= 0) || static_cast<double>(all->size()) < count * static_cast<double>(width))
    return fail(ErrorKind::BadArgument, "-type {} says {} elements, but {} values follow.", type,
                count, all->size());
  all->resize(static_cast<std::size_t>(count) * width);
  return all;
}

Result<dg::DataPtr> numericPayload(const std::string& type, std::span<const mel::Value> values) {
  if (type == "matrix") {
    auto cells = numbers(values);
    if (!cells) return failWith(std::move(cells.error()));
    if (cells->size() != 16)
      return fail(ErrorKind::BadArgument, "-type matrix takes 16 numbers, not {}.", cells->size());
    math::Matrix4 matrix;
    for (std::size_t i = 0; i < 16; ++i) matrix[static_cast<int>(i / 4)][i % 4] = (*cells)[i];
    return std::make_shared<dg::MatrixData>(matrix);
  }
  const std::size_t width = type == "vectorArray" ? 3 : type == "pointArray" ? 4 : 1;
  auto cells = counted(values, width, type);
  if (!cells) return failWith(std::move(cells.error()));
  if (type == "doubleArray") return std::make_shared<dg::DoubleArrayData>(std::move(*cells));
  if (type == "floatArray")
    return std::make_shared<dg::FloatArrayData>(std::vector<float>(cells->begin(), cells->end()));
  if (type == "Int32Array") {
    std::vector<std::int32_t> integers;
    for (const double cell : *cells) integers.push_back(mel::truncateToInt(cell));
    return std::make_shared<dg::IntArrayData>(std::move(integers));
  }
  if (type == "vectorArray") {
    std::vector<math::Vec3> vectors;
    for (std::size_t i = 0; i < cells->size(); i += 3)
      vectors.emplace_back((*cells)[i], (*cells)[i + 1], (*cells)[i + 2]);
    return std::make_shared<dg::VectorArrayData>(std::move(vectors));
  }
  std::vector<dg::Point4> points;
  for (std::size_t i = 0; i < cells->size(); i += 4)
    points.push_back({(*cells)[i], (*cells)[i + 1], (*cells)[i + 2], (*cells)[i + 3]});
  return std::make_shared<dg::PointArrayData>(std::move(points));
}

std::vector<std::string> words(std::span<const mel::Value> values) {
  std::vector<std::string> result;
  for (const mel::Value& value : values)
    for (std::string& text : value.toTexts()) result.push_back(std::move(text));
  return result;
}

/// "count word word ...": the words.
Result<std::vector<std::string>> countedWords(std::span<const mel::Value> values,
                                              const std::string& type) {
  std::vector<std::string> all = words(values);
  if (all.empty()) return all;
  const std::int32_t count = mel::leadingInt(all.front());
  all.erase(all.begin());
  if (count < 0 || all.size() < at(count))
    return fail(ErrorKind::BadArgument, "-type {} says {} elements, but {} follow.", type, count,
                all.size());
  all.resize(at(count));
  return all;
}

}  // namespace

std::string enumText(const dg::Attribute& attribute) {
  std::string text;
  std::int64_t next = 0;
  for (const dg::EnumField& field : attribute.enumFields) {
    if (!text.empty()) text += ":";
    text += field.name;
    if (field.value != next) text += "=" + std::to_string(field.value);
    next = field.value + 1;
  }
  return text;
}

std::size_t leafCount(const dg::Attribute& attribute) {
  if (!attribute.isCompound()) return 1;
  std::size_t count = 0;
  for (const dg::AttributePtr& child : attribute.children) count += leafCount(*child);
  return count;
}

Result<mel::Value> readPlug(dg::Graph& graph, const scene::Units& units, const Plug& plug) {
  if (!plug.isArray() && !plug.isCompound()) {
    if (plug.attribute()->type == AttributeType::Message) return mel::Value();
    auto value = graph.get(plug);
    if (!value) return failWith(std::move(value.error()));
    return leafValue(*value, plug.attribute()->type, units);
  }
  std::vector<Plug> leaves;
  HOST_TRY(graph.evaluate(plug));
  HOST_TRY(collectLeaves(graph, plug, leaves));
  return flatNumbers(graph, units, leaves);
}

Result<std::string> readEnumField(dg::Graph& graph, const Plug& plug) {
  auto value = graph.get(plug);
  if (!value) return failWith(std::move(value.error()));
  const auto* number = std::get_if<std::int64_t>(&*value);
  for (const dg::EnumField& field : plug.attribute()->enumFields)
    if (number && field.value == *number) return field.name;
  return fail("'{}' has no name for its value.", plugName(plug));
}

Result<void> writeLeaf(dg::Graph& graph, const scene::Units& units, const Plug& plug,
                       const mel::Value& value) {
  auto converted = leafFrom(plug, units, value);
  if (!converted) return failWith(std::move(converted.error()));
  return graph.set(plug, *converted);
}

Result<std::size_t> writeNumbers(dg::Graph& graph, const scene::Units& units, const Plug& plug,
                                 std::span<const mel::Value> values) {
  if (!plug.isCompound()) {
    if (values.empty())
      return fail(ErrorKind::NotFound, "There is no value for '{}'.", plugName(plug));
    HOST_TRY(writeLeaf(graph, units, plug, values.front()));
    return std::size_t{1};
  }
  std::size_t taken = 0;
  for (std::size_t i = 0; i < plug.attribute()->children.size(); ++i) {
    auto count = writeNumbers(graph, units, plug.child(static_cast<int>(i)), values.subspan(taken));
    if (!count) return count;
    taken += *count;
  }
  return taken;
}

Result<void> writeTyped(dg::Graph& graph, const scene::Units& units, const Plug& plug,
                        const std::string& type, std::span<const mel::Value> values) {
  static constexpr std::string_view kTuples[] = {
      "double2", "double3", "double4", "float2", "float3", "float4",      "long2",
      "long3",   "long4",   "short2",  "short3", "short4", "reflectance", "spectrum"};
  static constexpr std::string_view kPayloads[] = {"matrix",     "doubleArray", "floatArray",
                                                   "Int32Array", "vectorArray", "pointArray"};
  if (type == "string") {
    const std::vector<std::string> texts = words(values);
    std::string text;
    for (const std::string& part : texts) text += part;
    return graph.set(plug, dg::Value(std::move(text)));
  }
  if (const int size = dg::numericDataSize(type); size > 0 && plug.attribute()->dataType == type) {
    auto cells = numbers(values);
    if (!cells) return failWith(std::move(cells.error()));
    if (cells->size() < at(size))
      return fail(ErrorKind::BadArgument, "-type {} takes {} numbers, not {}.", type, size,
                  cells->size());
    return graph.set(plug, dg::Value(dg::makeNumericData(type, std::move(*cells))));
  }
  if (std::find(std::begin(kTuples), std::end(kTuples), type) != std::end(kTuples)) {
    auto count = writeNumbers(graph, units, plug, values);
    if (!count) return failWith(std::move(count.error()));
    return {};
  }
  if (std::find(std::begin(kPayloads), std::end(kPayloads), type) != std::end(kPayloads)) {
    auto payload = numericPayload(type, values);
    if (!payload) return failWith(std::move(payload.error()));
    return graph.set(plug, dg::Value(std::move(*payload)));
  }
  if (type == "stringArray" || type == "componentList") {
    auto list = countedWords(values, type);
    if (!list) return failWith(std::move(list.error()));
    if (type == "stringArray")
      return graph.set(
          plug, dg::Value(dg::DataPtr(std::make_shared<dg::StringArrayData>(std::move(*list)))));
    std::vector<scene::Component> components;
    for (const std::string& word : *list) {
      auto component = scene::parseComponent(word);
      if (!component) return failWith(std::move(component.error()));
      components.push_back(std::move(*component));
    }
    return graph.set(
        plug,
        dg::Value(dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(components)))));
  }
  return fail("setAttr: unknown -type '{}' for '{}'.", type, plugName(plug));
}

}  // namespace host::cmd
