#include "host/io/ma/ma_surfaces.h"

#include <fmt/format.h>

#include <array>
#include <cmath>

#include "host/io/ma/ma_numbers.h"
#include "host/io/ma/ma_row.h"

namespace host::io {
namespace {

using Tokens = std::vector<MaToken>;
using scene::ArrayAttrsData;

/// Takes tokens one after the other.
class Reader {
 public:
  explicit Reader(const Tokens& tokens) : tokens_(tokens) {}
  [[nodiscard]] std::size_t left() const { return tokens_.size() - next_; }
  [[nodiscard]] std::string_view peek() const {
    return left() > 0 ? std::string_view(tokens_[next_].text) : std::string_view();
  }
  std::string_view word() { return left() > 0 ? tokens_[next_++].text : std::string_view(); }
  bool number(double& value) {
    if (left() == 0) return false;
    const std::string_view text = tokens_[next_].text;
    if (text == "yes" || text == "on" || text == "true")
      value = 1;
    else if (text == "no" || text == "off" || text == "false")
      value = 0;
    else if (!MaRow(text).read(value))
      return false;
    ++next_;
    return true;
  }
  bool integer(int& value) {
    Index read = 0;
    if (left() == 0 || !MaRow(tokens_[next_].text).read(read)) return false;
    ++next_;
    value = read;
    return true;
  }
  /// A count and that many groups of `width` numbers.
  bool numbers(std::size_t width, std::vector<double>& values) {
    int count = 0;
    if (!integer(count) || count < 0 || at(count) > left() / width) return false;
    values.resize(at(count) * width);
    for (double& value : values)
      if (!number(value)) return false;
    return true;
  }

 private:
  const Tokens& tokens_;
  std::size_t next_ = 0;
};

std::vector<math::Vec3> vectorsOf(const std::vector<double>& numbers) {
  std::vector<math::Vec3> vectors;
  for (std::size_t i = 0; i + 2 < numbers.size(); i += 3)
    vectors.emplace_back(numbers[i], numbers[i + 1], numbers[i + 2]);
  return vectors;
}

Result<ArrayAttrsData::Array> arrayOf(Reader& reader, std::string_view kind) {
  std::vector<double> numbers;
  if (kind == "vectorArray" && reader.numbers(3, numbers)) return vectorsOf(numbers);
  if (kind == "doubleArray" && reader.numbers(1, numbers)) return numbers;
  if (kind == "Int32Array" && reader.numbers(1, numbers)) {
    std::vector<std::int32_t> integers;
    for (const double each : numbers)
      integers.push_back(static_cast<std::int32_t>(std::clamp(each, -2147483648.0, 2147483647.0)));
    return integers;
  }
  int count = 0;
  if (kind == "stringArray" && reader.integer(count) && count >= 0 && at(count) <= reader.left()) {
    std::vector<std::string> texts;
    for (int i = 0; i < count; ++i) texts.emplace_back(reader.word());
    return texts;
  }
  return fail("'{}' is no kind of array, or fewer elements follow than are announced", kind);
}

/// Appends numbers, and zero with a false return for one that is not finite.
bool appendAll(std::string& text, const auto& numbers) {
  bool isGood = true;
  for (const auto number : numbers) {
    const bool isFinite = std::isfinite(static_cast<double>(number));
    isGood = isGood && isFinite;
    text += ' ';
    appendNumber(text, isFinite ? number : std::remove_cvref_t<decltype(number)>{});
  }
  return isGood;
}

}  // namespace

Result<dg::Value> surfaceFrom(const Tokens& tokens) {
  Reader reader(tokens);
  math::NurbsSurface surface;
  std::array<int, 4> head{};
  for (int& each : head)
    if (!reader.integer(each)) return fail("a surface begins with its degrees and forms");
  double isRational = 0;
  if (!reader.number(isRational)) return fail("a surface says whether it is rational");
  surface.degreeU = head[0];
  surface.degreeV = head[1];
  surface.formU = static_cast<math::CurveForm>(std::clamp(head[2], 0, 2));
  surface.formV = static_cast<math::CurveForm>(std::clamp(head[3], 0, 2));
  if (!reader.numbers(1, surface.knotsU) || !reader.numbers(1, surface.knotsV))
    return fail("a surface announces more knots than follow");
  if (reader.peek() == "TRIM") return fail("trimmed surfaces can't be shown");
  if (reader.peek() == "NOTRIM") reader.word();
  std::vector<double> places;
  const std::size_t width = isRational != 0 ? 4 : 3;
  if (!reader.numbers(width, places)) return fail("a surface announces more points than follow");
  if (reader.left() > 0) return fail("a surface has {} values too many", reader.left());
  for (std::size_t i = 0; i < places.size(); i += width) {
    surface.points.emplace_back(places[i], places[i + 1], places[i + 2]);
    if (width == 4) surface.weights.push_back(places[i + 3]);
  }
  HOST_TRY(math::check(surface));
  return dg::Value(dg::DataPtr(std::make_shared<scene::SurfaceData>(std::move(surface))));
}

bool appendSurface(std::string& text, const math::NurbsSurface& surface) {
  text += fmt::format("-type \"nurbsSurface\" \n\t\t{} {} {} {} {} ", surface.degreeU,
                      surface.degreeV, static_cast<int>(surface.formU),
                      static_cast<int>(surface.formV), surface.isRational() ? "yes" : "no");
  bool isGood = true;
  for (const auto* knots : {&surface.knotsU, &surface.knotsV}) {
    text += fmt::format("\n\t\t{}", knots->size());
    isGood = appendAll(text, *knots) && isGood;
  }
  text += fmt::format("\n\t\t\n\t\t{}", surface.points.size());
  for (std::size_t i = 0; i < surface.points.size(); ++i) {
    const math::Vec3& p = surface.points[i];
    text += "\n\t\t";
    isGood = appendAll(text, std::array{p.x, p.y, p.z}) && isGood;
    if (surface.isRational()) isGood = appendAll(text, std::array{surface.weights[i]}) && isGood;
  }
  text += "\n\t\t";
  return isGood;
}

Result<dg::Value> arrayAttrsFrom(const Tokens& tokens) {
  Reader reader(tokens);
  int count = 0;
  if (!tokens.empty() && (!reader.integer(count) || count < 0))
    return fail("arrays by name begin with their number");
  std::vector<ArrayAttrsData::Named> arrays;
  for (int i = 0; i < count; ++i) {
    if (reader.left() < 3) return fail("{} arrays are announced, but {} follow", count, i);
    std::string name(reader.word());
    const std::string_view kind = reader.word();
    auto array = arrayOf(reader, kind);
    if (!array) return failWith(std::move(array).error());
    arrays.emplace_back(std::move(name), *std::move(array));
  }
  if (reader.left() > 0) return fail("{} values follow the last array", reader.left());
  return dg::Value(dg::DataPtr(std::make_shared<scene::StoredArrayAttrs>(std::move(arrays))));
}

bool appendArrayAttrs(std::string& text, const ArrayAttrsData& data) {
  const std::vector<ArrayAttrsData::Named> arrays = data.arrays();
  text += fmt::format("-type \"arrayAttrs\" {}", arrays.size());
  bool isGood = true;
  for (const auto& [name, array] : arrays) {
    static constexpr const char* kKinds[] = {"vectorArray", "doubleArray", "Int32Array",
                                             "stringArray"};
    text += "\n\t\t";
    appendQuoted(text, name);
    text += fmt::format(" \"{}\" ", kKinds[array.index()]);
    std::visit(
        [&](const auto& all) {
          appendNumber(text, static_cast<std::int64_t>(all.size()));
          std::size_t written = 0;
          for (const auto& each : all) {
            if (written++ % 16 == 15) text += "\n\t\t";
            if constexpr (std::is_same_v<std::remove_cvref_t<decltype(each)>, std::string>) {
              text += ' ';
              appendQuoted(text, each);
            } else if constexpr (std::is_same_v<std::remove_cvref_t<decltype(each)>, math::Vec3>) {
              isGood = appendAll(text, std::array{each.x, each.y, each.z}) && isGood;
            } else {
              isGood = appendAll(text, std::array{each}) && isGood;
            }
          }
        },
        array);
  }
  text += ' ';
  return isGood;
}

}  // namespace host::io
