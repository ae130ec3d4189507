#include <algorithm>
#include <cmath>

#include "host/mel/builtin_support.h"

namespace host::mel {

namespace {

double dot(const Vec3& a, const Vec3& b) {
  return a.x * b.x + a.y * b.y + a.z * b.z;
}
Vec3 cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double length(const Vec3& v) {
  return std::sqrt(dot(v, v));
}
Vec3 unit(const Vec3& v) {
  const double size = length(v);
  return size > 0.0 ? Vec3{v.x / size, v.y / size, v.z / size} : Vec3{};
}

Result<void> magFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<Vec3>(arguments, [&](const Vec3& v) { result = Value(length(v)); });
}
Result<void> unitFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<Vec3>(arguments, [&](const Vec3& v) { result = Value(unit(v)); });
}
Result<void> dotFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<Vec3, Vec3>(arguments,
                            [&](const Vec3& a, const Vec3& b) { result = Value(dot(a, b)); });
}
Result<void> crossFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<Vec3, Vec3>(arguments,
                            [&](const Vec3& a, const Vec3& b) { result = Value(cross(a, b)); });
}
/// Radians between two vectors; atan2 stays accurate near 0 and pi where acos does not.
Result<void> angleFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<Vec3, Vec3>(arguments, [&](const Vec3& a, const Vec3& b) {
    result = Value(std::atan2(length(cross(a, b)), dot(a, b)));
  });
}
/// Turns a point about an axis through the origin by an angle in radians (Rodrigues' formula).
Result<void> rotFunction(Engine&, std::span<Value> arguments, Value& result) {
  return unpack<Vec3, Vec3, double>(arguments, [&](const Vec3& p, const Vec3& axis, double angle) {
    const Vec3 k = unit(axis);
    const Vec3 side = cross(k, p);
    const double c = std::cos(angle);
    const double s = std::sin(angle);
    const double along = dot(k, p) * (1.0 - c);
    result = Value(Vec3{p.x * c + side.x * s + k.x * along, p.y * c + side.y * s + k.y * along,
                        p.z * c + side.z * s + k.z * along});
  });
}

/// Hue, saturation and value in [0, 1] to red, green and blue (A. R. Smith, 1978).
Vec3 hsvToRgb(const Vec3& hsv) {
  const double hue = (hsv.x - std::floor(hsv.x)) * 6.0;
  const int sector = static_cast<int>(hue) % 6;
  const double part = hue - std::floor(hue);
  const double low = hsv.z * (1.0 - hsv.y);
  const double falling = hsv.z * (1.0 - hsv.y * part);
  const double rising = hsv.z * (1.0 - hsv.y * (1.0 - part));
  switch (sector) {
    case 0:
      return {hsv.z, rising, low};
    case 1:
      return {falling, hsv.z, low};
    case 2:
      return {low, hsv.z, rising};
    case 3:
      return {low, falling, hsv.z};
    case 4:
      return {rising, low, hsv.z};
    default:
      return {hsv.z, low, falling};
  }
}

Vec3 rgbToHsv(const Vec3& rgb) {
  const double high = std::max({rgb.x, rgb.y, rgb.z});
  const double range = high - std::min({rgb.x, rgb.y, rgb.z});
  if (range <= 0.0) return {0.0, 0.0, high};
  double hue = rgb.x == high   ? (rgb.y - rgb.z) / range
               : rgb.y == high ? 2.0 + (rgb.z - rgb.x) / range
                               : 4.0 + (rgb.x - rgb.y) / range;
  hue /= 6.0;
  return {hue < 0.0 ? hue + 1.0 : hue, range / high, high};
}

/// Both take a vector, or three numbers and then give an array.
Result<void> convertColour(std::span<Value> arguments, Value& result,
                           Vec3 (*convert)(const Vec3&)) {
  if (arguments.size() == 1)
    return unpack<Vec3>(arguments, [&](const Vec3& v) { result = Value(convert(v)); });
  return unpack<double, double, double>(arguments, [&](double a, double b, double c) {
    const Vec3 v = convert({a, b, c});
    result = Value(FloatArray{v.x, v.y, v.z});
  });
}
Result<void> hsvFunction(Engine&, std::span<Value> arguments, Value& result) {
  return convertColour(arguments, result, hsvToRgb);
}
Result<void> rgbFunction(Engine&, std::span<Value> arguments, Value& result) {
  return convertColour(arguments, result, rgbToHsv);
}

/// Cubic through two points with two tangents, at t: of numbers or of vectors.
Result<void> hermiteFunction(Engine&, std::span<Value> arguments, Value& result) {
  const Result<double> parameter = arguments[4].toFloat();
  if (!parameter) return failWith(parameter.error());
  const double t = *parameter;
  const double t2 = t * t;
  const double t3 = t2 * t;
  const double weights[4] = {2 * t3 - 3 * t2 + 1, -2 * t3 + 3 * t2, t3 - 2 * t2 + t, t3 - t2};
  if (arguments[0].type() != Type::Vector)
    return unpack<double, double, double, double>(
        arguments, [&](double a, double b, double c, double d) {
          result = Value(a * weights[0] + b * weights[1] + c * weights[2] + d * weights[3]);
        });
  return unpack<Vec3, Vec3, Vec3, Vec3>(arguments, [&](const Vec3& a, const Vec3& b, const Vec3& c,
                                                       const Vec3& d) {
    const auto mix = [&](double p, double q, double r, double s) {
      return p * weights[0] + q * weights[1] + r * weights[2] + s * weights[3];
    };
    result = Value(Vec3{mix(a.x, b.x, c.x, d.x), mix(a.y, b.y, c.y, d.y), mix(a.z, b.z, c.z, d.z)});
  });
}

constexpr Builtin kVector[] = {
    {"mag", magFunction, 1, 1, Type::Float},        {"unit", unitFunction, 1, 1, Type::Vector},
    {"dot", dotFunction, 2, 2, Type::Float},        {"cross", crossFunction, 2, 2, Type::Vector},
    {"angle", angleFunction, 2, 2, Type::Float},    {"rot", rotFunction, 3, 3, Type::Vector},
    {"hsv_to_rgb", hsvFunction, 1, 3, Type::None},  {"rgb_to_hsv", rgbFunction, 1, 3, Type::None},
    {"hermite", hermiteFunction, 5, 5, Type::None},
};

}  // namespace

std::span<const Builtin> vectorFunctions() {
  return kVector;
}

}  // namespace host::mel
