#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

#include "host/mel/builtin_support.h"

namespace host::mel {

void RandomSource::seed(std::int32_t value) {
  state_ = 0x9e3779b97f4a7c15ull ^ (std::uint64_t{static_cast<std::uint32_t>(value)} << 17);
}

/// SplitMix64 (Steele, Lea and Flood 2014).
double RandomSource::uniform() {
  state_ += 0x9e3779b97f4a7c15ull;
  std::uint64_t z = state_;
  z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ull;
  z = (z ^ (z >> 27)) * 0x94d049bb133111ebull;
  return static_cast<double>((z ^ (z >> 31)) >> 11) * 0x1.0p-53;
}

double RandomSource::normal() {
  while (true) {
    const double u = 2.0 * uniform() - 1.0;
    const double v = 2.0 * uniform() - 1.0;
    const double s = u * u + v * v;
    if (s > 0.0 && s < 1.0) return u * std::sqrt(-2.0 * std::log(s) / s);
  }
}

namespace {

/// Gradient noise over a permuted lattice (K. Perlin, "Improving noise", 2002), with our own
/// permutation.
class LatticeNoise {
 public:
  LatticeNoise() {
    std::iota(table_.begin(), table_.end(), 0);
    RandomSource random;
    random.seed(1);
    for (int i = 255; i > 0; --i)
      std::swap(table_[static_cast<std::size_t>(i)],
                table_[static_cast<std::size_t>(random.uniform() * (i + 1))]);
  }

  /// In [-1, 1]; 0 at whole coordinates.
  [[nodiscard]] double at(const Vec3& p) const {
    const int x = cell(p.x), y = cell(p.y), z = cell(p.z);
    const double fx = p.x - std::floor(p.x), fy = p.y - std::floor(p.y), fz = p.z - std::floor(p.z);
    const double u = fade(fx), v = fade(fy), w = fade(fz);
    const auto corner = [&](int dx, int dy, int dz) {
      return gradient(hash(x + dx, y + dy, z + dz), fx - dx, fy - dy, fz - dz);
    };
    const double low = std::lerp(std::lerp(corner(0, 0, 0), corner(1, 0, 0), u),
                                 std::lerp(corner(0, 1, 0), corner(1, 1, 0), u), v);
    const double high = std::lerp(std::lerp(corner(0, 0, 1), corner(1, 0, 1), u),
                                  std::lerp(corner(0, 1, 1), corner(1, 1, 1), u), v);
    return std::lerp(low, high, w);
  }

 private:
  static int cell(double x) {
    const double floor = std::floor(x);
    return std::isfinite(floor) ? static_cast<int>(floor - 256.0 * std::floor(floor / 256.0)) & 255
                                : 0;
  }
  static double fade(double t) { return t * t * t * (t * (t * 6.0 - 15.0) + 10.0); }
  [[nodiscard]] int hash(int x, int y, int z) const {
    const auto entry = [this](int i) { return table_[static_cast<std::size_t>(i & 255)]; };
    return entry(entry(entry(x) + y) + z);
  }
  static double gradient(int hash, double x, double y, double z) {
    const int kind = hash & 15;
    const double a = kind < 8 ? x : y;
    const double b = kind < 4 ? y : kind == 12 || kind == 14 ? x : z;
    return ((kind & 1) ? -a : a) + ((kind & 2) ? -b : b);
  }
  std::array<int, 256> table_{};
};

const LatticeNoise& lattice() {
  static const LatticeNoise kNoise;
  return kNoise;
}

Vec3 pointOf(std::span<const Value> arguments, Result<void>& outcome) {
  Vec3 point;
  if (arguments.size() == 1 && arguments[0].type() == Type::Vector) return arguments[0].vector();
  outcome = unpack<double, double, double>(arguments, [&](double x, double y, double z) {
    point = {x, y, z};
  });
  return point;
}

Result<void> noiseFunction(Engine&, std::span<Value> arguments, Value& result) {
  Result<void> outcome;
  const Vec3 point = pointOf(arguments, outcome);
  if (outcome) result = Value(lattice().at(point));
  return outcome;
}

/// The gradient of noise at a point, by central differences.
Result<void> dnoiseFunction(Engine&, std::span<Value> arguments, Value& result) {
  Result<void> outcome;
  const Vec3 p = pointOf(arguments, outcome);
  if (!outcome) return outcome;
  constexpr double kStep = 1e-4;
  const auto slope = [&](const Vec3& d) {
    const Vec3 a{p.x + d.x, p.y + d.y, p.z + d.z}, b{p.x - d.x, p.y - d.y, p.z - d.z};
    return (lattice().at(a) - lattice().at(b)) / (2.0 * kStep);
  };
  result = Value(Vec3{slope({kStep, 0, 0}), slope({0, kStep, 0}), slope({0, 0, kStep})});
  return {};
}

Vec3 between(Engine& engine, const Vec3& a, const Vec3& b) {
  RandomSource& random = engine.random();
  const double x = random.uniform(), y = random.uniform(), z = random.uniform();
  return {a.x + (b.x - a.x) * x, a.y + (b.y - a.y) * y, a.z + (b.z - a.z) * z};
}

/// rand(high) and rand(low, high), of numbers or vectors.
Result<void> randFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  const bool hasTwo = arguments.size() == 2;
  if (arguments[0].type() == Type::Vector)
    return unpack<Vec3, Vec3>(arguments, [&](const Vec3& a, const Vec3& b) {
      result = Value(hasTwo ? between(engine, a, b) : between(engine, {}, a));
    });
  return unpack<double, double>(arguments, [&](double a, double b) {
    const double low = hasTwo ? a : 0.0;
    const double high = hasTwo ? b : a;
    result = Value(low + (high - low) * engine.random().uniform());
  });
}

Result<void> seedFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  return unpack<std::int32_t>(arguments, [&](std::int32_t value) {
    engine.random().seed(value);
    result = Value(value);
  });
}

Result<void> gaussFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  RandomSource& random = engine.random();
  if (arguments[0].type() == Type::Vector)
    return unpack<Vec3>(arguments, [&](const Vec3& d) {
      const double x = random.normal(), y = random.normal(), z = random.normal();
      result = Value(Vec3{d.x * x, d.y * y, d.z * z});
    });
  return unpack<double>(arguments,
                        [&](double deviation) { result = Value(deviation * random.normal()); });
}

/// A point inside a sphere of that radius or an ellipsoid of those half axes.
Result<void> sphrandFunction(Engine& engine, std::span<Value> arguments, Value& result) {
  return unpack<Vec3>(arguments, [&](const Vec3& radii) {
    Vec3 p;
    do {
      p = between(engine, {-1, -1, -1}, {1, 1, 1});
    } while (p.x * p.x + p.y * p.y + p.z * p.z > 1.0);
    result = Value(Vec3{p.x * radii.x, p.y * radii.y, p.z * radii.z});
  });
}

constexpr Builtin kRandom[] = {
    {"noise", noiseFunction, 1, 3, Type::Float}, {"dnoise", dnoiseFunction, 1, 3, Type::Vector},
    {"rand", randFunction, 1, 2, Type::None},    {"seed", seedFunction, 1, 1, Type::Int},
    {"gauss", gaussFunction, 1, 2, Type::None},  {"sphrand", sphrandFunction, 1, 1, Type::Vector},
};

}  // namespace

std::span<const Builtin> randomFunctions() {
  return kRandom;
}

}  // namespace host::mel
