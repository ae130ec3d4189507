#include <algorithm>

#include "host/dg/foreign_data.h"
#include "host/dg/numeric_data.h"
#include "host/io/ma/ma_attributes.h"
#include "host/io/ma/ma_surfaces.h"
#include "host/scene/component.h"
#include "host/scene/curve_data.h"
#include "host/scene/poly_component_data.h"

namespace host::io {
namespace {

using Tokens = std::vector<MaToken>;

Result<std::vector<double>> numbersFrom(const Tokens& tokens, std::size_t first) {
  std::vector<double> numbers;
  numbers.reserve(tokens.size() - first);
  for (std::size_t i = first; i < tokens.size(); ++i) {
    double number = 0;
    if (tokens[i].kind != MaToken::Kind::Number || !MaRow(tokens[i].text).read(number))
      return fail(ErrorKind::BadArgument, "'{}' is not a number", tokens[i].text);
    numbers.push_back(number);
  }
  return numbers;
}

/// What follows the count: `width` tokens an element.
Result<void> checkCount(const Tokens& tokens, std::size_t width) {
  Index count = 0;
  if (tokens.empty() || !MaRow(tokens.front().text).read(count) || count < 0)
    return fail("an array begins with the number of its elements");
  if (static_cast<std::size_t>(count) * width != tokens.size() - 1)
    return fail("{} elements are announced, but {} values follow", count, tokens.size() - 1);
  return {};
}

template <class Payload, class Make>
Result<dg::Value> arrayOf(const Tokens& tokens, std::size_t width, Make make) {
  // An empty array may leave its count out.
  std::vector<double> numbers;
  if (!tokens.empty()) {
    HOST_TRY(checkCount(tokens, width));
    auto read = numbersFrom(tokens, 1);
    if (!read) return failWith(std::move(read).error());
    numbers = *std::move(read);
  }
  return dg::Value(dg::DataPtr(std::make_shared<Payload>(make(numbers))));
}

Result<dg::Value> matrixFrom(const Tokens& tokens) {
  auto numbers = numbersFrom(tokens, 0);
  if (!numbers) return failWith(std::move(numbers).error());
  if (numbers->size() != 16) return fail("a matrix has 16 numbers, not {}", numbers->size());
  math::Matrix4 matrix;
  for (int i = 0; i < 16; ++i) matrix[i / 4][i % 4] = (*numbers)[static_cast<std::size_t>(i)];
  return dg::Value(dg::DataPtr(std::make_shared<dg::MatrixData>(matrix)));
}

Result<dg::Value> textsFrom(const Tokens& tokens) {
  if (!tokens.empty()) HOST_TRY(checkCount(tokens, 1));
  std::vector<std::string> texts;
  for (std::size_t i = 1; i < tokens.size(); ++i) texts.emplace_back(tokens[i].text);
  return dg::Value(dg::DataPtr(std::make_shared<dg::StringArrayData>(std::move(texts))));
}

/// How many components a word with ranges names at most.
std::size_t rangeSize(std::string_view word) {
  std::size_t size = 1;
  for (std::size_t open = word.find('['); open != std::string_view::npos;
       open = word.find('[', open + 1)) {
    const std::string_view inner = word.substr(open + 1, word.find(']', open) - open - 1);
    const std::size_t colon = inner.find(':');
    Index first = 0, last = 0;
    if (colon == std::string_view::npos || !MaRow(inner.substr(0, colon)).read(first) ||
        !MaRow(inner.substr(colon + 1)).read(last) || last <= first)
      continue;
    size *= static_cast<std::size_t>(last) - static_cast<std::size_t>(std::max(first, 0)) + 1;
  }
  return size;
}

Result<dg::Value> componentsFrom(const Tokens& tokens, std::size_t& budget) {
  if (!tokens.empty()) HOST_TRY(checkCount(tokens, 1));
  std::vector<scene::Component> components;
  for (std::size_t i = 1; i < tokens.size(); ++i) {
    const std::size_t size = rangeSize(tokens[i].text);
    if (size > budget) return fail("'{}' names more components than any mesh has", tokens[i].text);
    budget -= size;
    auto component = scene::parseComponent(tokens[i].text);
    if (!component) return failWith(std::move(component).error());
    // One component a type, as what runs of words come to.
    const auto same = std::ranges::find_if(
        components, [&](const auto& each) { return each.type() == component->type(); });
    if (same == components.end())
      components.push_back(*std::move(component));
    else
      same->unite(*component);
  }
  return dg::Value(dg::DataPtr(std::make_shared<scene::ComponentListData>(std::move(components))));
}

/// degree spans form rational dimensions, then the knots and the points, each after its count.
Result<dg::Value> curveFrom(const Tokens& tokens) {
  std::vector<double> numbers;
  for (const MaToken& token : tokens) {
    double number = 0;
    if (token.text == "yes" || token.text == "no" || token.text == "on" || token.text == "off")
      number = token.text == "yes" || token.text == "on" ? 1 : 0;
    else if (!MaRow(token.text).read(number))
      return fail("'{}' is not a number", token.text);
    numbers.push_back(number);
  }
  constexpr std::size_t kHead = 6;
  if (numbers.size() < kHead) return fail("a curve begins with degree, spans, form and knots");
  math::NurbsCurve curve;
  if (!(numbers[0] >= 1 && numbers[0] <= 7)) return fail("a curve's degree is 1 to 7");
  curve.degree = static_cast<int>(numbers[0]);
  curve.form = static_cast<math::CurveForm>(static_cast<int>(std::clamp(numbers[2], 0.0, 2.0)));
  const bool isRational = numbers[3] != 0;
  const std::size_t width = (numbers[4] == 2 ? 2 : 3) + (isRational ? 1U : 0U);
  const auto count = [&](std::size_t at) {
    return at < numbers.size() && numbers[at] >= 0 ? static_cast<std::size_t>(numbers[at])
                                                   : numbers.size();
  };
  const std::size_t knots = count(5);
  if (knots > numbers.size() - kHead) return fail("a curve announces more knots than follow");
  curve.knots.assign(numbers.begin() + kHead,
                     numbers.begin() + static_cast<std::ptrdiff_t>(kHead + knots));
  const std::size_t points = count(kHead + knots);
  std::size_t at = kHead + knots + 1;
  if (points > numbers.size() || at + points * width > numbers.size())
    return fail("a curve announces more points than follow");
  for (std::size_t i = 0; i < points; ++i, at += width) {
    const bool isFlat = numbers[4] == 2;
    curve.points.emplace_back(numbers[at], numbers[at + 1], isFlat ? 0.0 : numbers[at + 2]);
    if (isRational) curve.weights.push_back(numbers[at + width - 1]);
  }
  HOST_TRY(math::check(curve));
  return dg::Value(dg::DataPtr(std::make_shared<scene::CurveData>(std::move(curve))));
}

/// Index_Data <kind> <count> <id> <value> ..., ids in any order.
Result<dg::Value> weightsFrom(const Tokens& tokens) {
  using Data = scene::PolyComponentData;
  Index count = 0;
  if (tokens.empty())
    return dg::Value(dg::DataPtr(std::make_shared<Data>("", std::vector<Data::Entry>())));
  if (tokens.size() < 3 || tokens[0].text != "Index_Data" || !MaRow(tokens[2].text).read(count) ||
      count < 0)
    return fail("such data begins with Index_Data, a kind and a count");
  if (static_cast<std::size_t>(count) * 2 != tokens.size() - 3)
    return fail("{} components are announced, but {} numbers follow", count, tokens.size() - 3);
  std::vector<Data::Entry> entries;
  for (std::size_t i = 3; i < tokens.size(); i += 2) {
    Data::Entry entry;
    if (!MaRow(tokens[i].text).read(entry.first) || entry.first < 0 ||
        !MaRow(tokens[i + 1].text).read(entry.second) || !(entry.second >= 0))
      return fail("'{} {}' is no component and its value", tokens[i].text, tokens[i + 1].text);
    entries.push_back(entry);
  }
  std::ranges::stable_sort(entries, {}, &Data::Entry::first);
  return dg::Value(
      dg::DataPtr(std::make_shared<Data>(std::string(tokens[1].text), std::move(entries))));
}

}  // namespace

Result<dg::Value> readPayload(std::string_view type, const Tokens& tokens,
                              std::size_t& componentBudget) {
  if (type == "string") {
    if (tokens.size() > 1) return fail("a string is one text, not {}", tokens.size());
    return dg::Value(tokens.empty() ? std::string() : std::string(tokens.front().text));
  }
  if (type == "matrix") return matrixFrom(tokens);
  if (type == "stringArray") return textsFrom(tokens);
  if (type == "nurbsCurve") return curveFrom(tokens);
  if (type == "nurbsSurface") return surfaceFrom(tokens);
  if (type == "arrayAttrs") return arrayAttrsFrom(tokens);
  if (type == "componentList") return componentsFrom(tokens, componentBudget);
  if (type == "dataPolyComponent") return weightsFrom(tokens);
  if (type == "doubleArray")
    return arrayOf<dg::DoubleArrayData>(tokens, 1, [](const auto& all) { return all; });
  if (type == "floatArray")
    return arrayOf<dg::FloatArrayData>(tokens, 1, [](const auto& all) {
      std::vector<float> floats;
      for (const double each : all) floats.push_back(static_cast<float>(each));
      return floats;
    });
  if (type == "Int32Array")
    return arrayOf<dg::IntArrayData>(tokens, 1, [](const auto& all) {
      std::vector<std::int32_t> integers;
      for (const double each : all)
        integers.push_back(
            static_cast<std::int32_t>(std::clamp(each, -2147483648.0, 2147483647.0)));
      return integers;
    });
  if (type == "vectorArray")
    return arrayOf<dg::VectorArrayData>(tokens, 3, [](const auto& all) {
      std::vector<math::Vec3> vectors;
      for (std::size_t i = 0; i < all.size(); i += 3)
        vectors.emplace_back(all[i], all[i + 1], all[i + 2]);
      return vectors;
    });
  if (type == "pointArray")
    return arrayOf<dg::PointArrayData>(tokens, 4, [](const auto& all) {
      std::vector<dg::Point4> points;
      for (std::size_t i = 0; i < all.size(); i += 4)
        points.push_back({all[i], all[i + 1], all[i + 2], all[i + 3]});
      return points;
    });
  if (const int size = dg::numericDataSize(type); size > 0) {
    if (tokens.size() != at(size))
      return fail("{} is {} numbers, not {}", type, size, tokens.size());
    auto numbers = numbersFrom(tokens, 0);
    if (!numbers) return failWith(std::move(numbers.error()));
    return dg::Value(dg::makeNumericData(std::string(type), std::move(*numbers)));
  }
  if (dg::hasForeignReader(type)) {
    std::vector<dg::ForeignWord> words;
    for (const MaToken& token : tokens)
      words.push_back({std::string(token.text), token.kind == MaToken::Kind::Number});
    auto data = dg::readForeign(type, words);
    if (!data) return failWith(std::move(data.error()));
    return dg::Value(*std::move(data));
  }
  return fail(ErrorKind::Unsupported, "values of type '{}' are not known", type);
}

}  // namespace host::io
