#include "host/dg/numeric_data.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace host::dg {
namespace {

template <class Integer>
double whole(double value) {
  if (std::isnan(value)) return 0;
  return std::trunc(std::clamp(value, double{std::numeric_limits<Integer>::min()},
                               double{std::numeric_limits<Integer>::max()}));
}

}  // namespace

bool NumericData::equals(const Data& other) const {
  const auto* same = dynamic_cast<const NumericData*>(&other);
  if (!same || same->kind != kind) return false;
  return std::ranges::equal(values, same->values, [](double a, double b) {
    return a == b || (std::isnan(a) && std::isnan(b));
  });
}

std::uint64_t NumericData::hash() const {
  return hashBytes(values.data(), values.size() * sizeof(double),
                   hashBytes(kind.data(), kind.size()));
}

int numericDataSize(std::string_view kind) {
  static constexpr std::string_view kKinds[] = {"double2", "double3", "double4", "float2", "float3",
                                                "long2",   "long3",   "short2",  "short3"};
  return std::ranges::find(kKinds, kind) == std::end(kKinds) ? 0 : kind.back() - '0';
}

DataPtr makeNumericData(std::string kind, std::vector<double> values) {
  if (const int size = numericDataSize(kind); size > 0)
    values.resize(static_cast<std::size_t>(size));
  for (double& value : values) {
    if (kind.starts_with("float")) value = static_cast<float>(value);
    if (kind.starts_with("long")) value = whole<std::int32_t>(value);
    if (kind.starts_with("short")) value = whole<std::int16_t>(value);
  }
  return std::make_shared<NumericData>(std::move(kind), std::move(values));
}

}  // namespace host::dg
