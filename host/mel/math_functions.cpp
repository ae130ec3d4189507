#include <algorithm>
#include <cmath>
#include <iterator>
#include <numbers>

#include "host/mel/builtin_support.h"

namespace host::mel {

namespace {

constexpr double kDegree = std::numbers::pi / 180.0;

struct FloatFunction {
  std::string_view name;
  double (*function)(double);
};

constexpr FloatFunction kFloatFunctions[] = {
    {"sin", [](double x) { return std::sin(x); }},
    {"cos", [](double x) { return std::cos(x); }},
    {"tan", [](double x) { return std::tan(x); }},
    {"asin", [](double x) { return std::asin(x); }},
    {"acos", [](double x) { return std::acos(x); }},
    {"atan", [](double x) { return std::atan(x); }},
    {"sind", [](double x) { return std::sin(x * kDegree); }},
    {"cosd", [](double x) { return std::cos(x * kDegree); }},
    {"tand", [](double x) { return std::tan(x * kDegree); }},
    {"asind", [](double x) { return std::asin(x) / kDegree; }},
    {"acosd", [](double x) { return std::acos(x) / kDegree; }},
    {"atand", [](double x) { return std::atan(x) / kDegree; }},
    {"sqrt", [](double x) { return std::sqrt(x); }},
    {"exp", [](double x) { return std::exp(x); }},
    {"log", [](double x) { return std::log(x); }},
    {"log10", [](double x) { return std::log10(x); }},
    {"floor", [](double x) { return std::floor(x); }},
    {"ceil", [](double x) { return std::ceil(x); }},
    {"trunc", [](double x) { return std::trunc(x); }},
    {"deg_to_rad", [](double x) { return x * kDegree; }},
    {"rad_to_deg", [](double x) { return x / kDegree; }},
};

template <int I>
Result<void> floatFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<double>(arguments,
                        [&](double x) { result = Value(kFloatFunctions[I].function(x)); });
}

bool areInts(std::span<const Value> values) {
  return std::ranges::all_of(values, [](const Value& value) { return value.isInt(); });
}

Result<void> absFunction(Engine&, std::span<Value> arguments, Value& result) {
  if (arguments[0].isInt()) {
    const std::int32_t number = arguments[0].intValue();
    result = Value(static_cast<std::int32_t>(number < 0 ? 0u - static_cast<std::uint32_t>(number)
                                                        : static_cast<std::uint32_t>(number)));
    return {};
  }
  if (arguments[0].type() == Type::Vector) {
    const Vec3 v = arguments[0].vector();
    result = Value(Vec3{std::abs(v.x), std::abs(v.y), std::abs(v.z)});
    return {};
  }
  return unpack<double>(arguments, [&](double x) { result = Value(std::abs(x)); });
}

Result<void> extreme(std::span<Value> arguments, Value& result, bool wantsLess) {
  const bool isInt = areInts(arguments);
  return unpack<double, double>(arguments, [&](double a, double b) {
    const double chosen = (a < b) == wantsLess ? a : b;
    result = isInt ? Value(truncateToInt(chosen)) : Value(chosen);
  });
}
Result<void> minFunction(Engine&, std::span<Value> arguments, Value& result) {
  return extreme(arguments, result, true);
}
Result<void> maxFunction(Engine&, std::span<Value> arguments, Value& result) {
  return extreme(arguments, result, false);
}

Result<void> clampFunction(Engine&, std::span<Value> arguments, Value& result) {
  const bool isInt = areInts(arguments);
  return unpack<double, double, double>(arguments, [&](double low, double high, double x) {
    const double inside = x < low ? low : x > high ? high : x;
    result = isInt ? Value(truncateToInt(inside)) : Value(inside);
  });
}

Result<void> signFunction(Engine&, std::span<Value> arguments, Value& result) {
  const bool isInt = arguments[0].isInt();
  return unpack<double>(arguments, [&](double x) {
    const double sign = x > 0.0 ? 1.0 : x < 0.0 ? -1.0 : 0.0;
    result = isInt ? Value(truncateToInt(sign)) : Value(sign);
  });
}

Result<void> powFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<double, double>(arguments,
                                [&](double x, double y) { result = Value(std::pow(x, y)); });
}
Result<void> fmodFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<double, double>(arguments, [&](double x, double y) -> Result<void> {
    if (y == 0.0) return fail("Division by zero error.");
    result = Value(std::fmod(x, y));
    return {};
  });
}
Result<void> atan2Function(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<double, double>(arguments,
                                [&](double y, double x) { result = Value(std::atan2(y, x)); });
}
Result<void> atan2dFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<double, double>(
      arguments, [&](double y, double x) { result = Value(std::atan2(y, x) / kDegree); });
}
Result<void> hypotFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<double, double>(arguments,
                                [&](double x, double y) { result = Value(std::hypot(x, y)); });
}

double ramp(double low, double high, double x) {
  if (low == high) return x < low ? 0.0 : 1.0;
  const double t = (x - low) / (high - low);
  return std::clamp(t, 0.0, 1.0);
}
Result<void> linstepFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<double, double, double>(
      arguments, [&](double low, double high, double x) { result = Value(ramp(low, high, x)); });
}
Result<void> smoothstepFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<double, double, double>(arguments, [&](double low, double high, double x) {
    const double t = ramp(low, high, x);
    result = Value(t * t * (3.0 - 2.0 * t));
  });
}

Result<void> equivalentFunction(Engine&, std::span<Value> arguments, Value& result) {
  const bool hasTolerance = arguments.size() > 2;
  return unpack<double, double, double>(arguments, [&](double a, double b, double tolerance) {
    result = Value(std::abs(a - b) <= (hasTolerance ? tolerance : 1e-10));
  });
}

constexpr Builtin kMath[] = {
    {"sin", floatFunction<0>, 1, 1, Type::Float},
    {"cos", floatFunction<1>, 1, 1, Type::Float},
    {"tan", floatFunction<2>, 1, 1, Type::Float},
    {"asin", floatFunction<3>, 1, 1, Type::Float},
    {"acos", floatFunction<4>, 1, 1, Type::Float},
    {"atan", floatFunction<5>, 1, 1, Type::Float},
    {"sind", floatFunction<6>, 1, 1, Type::Float},
    {"cosd", floatFunction<7>, 1, 1, Type::Float},
    {"tand", floatFunction<8>, 1, 1, Type::Float},
    {"asind", floatFunction<9>, 1, 1, Type::Float},
    {"acosd", floatFunction<10>, 1, 1, Type::Float},
    {"atand", floatFunction<11>, 1, 1, Type::Float},
    {"sqrt", floatFunction<12>, 1, 1, Type::Float},
    {"exp", floatFunction<13>, 1, 1, Type::Float},
    {"log", floatFunction<14>, 1, 1, Type::Float},
    {"log10", floatFunction<15>, 1, 1, Type::Float},
    {"floor", floatFunction<16>, 1, 1, Type::Float},
    {"ceil", floatFunction<17>, 1, 1, Type::Float},
    {"trunc", floatFunction<18>, 1, 1, Type::Float},
    {"deg_to_rad", floatFunction<19>, 1, 1, Type::Float},
    {"rad_to_deg", floatFunction<20>, 1, 1, Type::Float},
    {"abs", absFunction, 1, 1, Type::None},
    {"min", minFunction, 2, 2, Type::None},
    {"max", maxFunction, 2, 2, Type::None},
    {"clamp", clampFunction, 3, 3, Type::None},
    {"sign", signFunction, 1, 1, Type::None},
    {"pow", powFunction, 2, 2, Type::Float},
    {"fmod", fmodFunction, 2, 2, Type::Float},
    {"atan2", atan2Function, 2, 2, Type::Float},
    {"atan2d", atan2dFunction, 2, 2, Type::Float},
    {"hypot", hypotFunction, 2, 2, Type::Float},
    {"linstep", linstepFunction, 3, 3, Type::Float},
    {"smoothstep", smoothstepFunction, 3, 3, Type::Float},
    {"equivalent", equivalentFunction, 2, 2, Type::Int},
    {"equivalentTol", equivalentFunction, 3, 3, Type::Int},
};

}  // namespace

int findFloatFunction(std::string_view name) {
  for (std::size_t i = 0; i < std::size(kFloatFunctions); ++i)
    if (kFloatFunctions[i].name == name) return static_cast<int>(i);
  return -1;
}

double callFloatFunction(int index, double argument) {
  return kFloatFunctions[index].function(argument);
}

std::span<const Builtin> mathFunctions() {
  return kMath;
}

}  // namespace host::mel
