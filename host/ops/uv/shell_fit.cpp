#include "host/ops/uv/shell_fit.h"

#include <cmath>
#include <complex>

namespace host::ops {

Similarity fitSimilarity(std::span<const FitPair> pairs, bool isMirrored, double* residual) {
  using Complex = std::complex<double>;
  const auto from = [&](const FitPair& pair) {
    const double v = pair.from.v;
    return Complex(pair.from.u, isMirrored ? -v : v);
  };
  const auto to = [](const FitPair& pair) { return Complex(pair.to.u, pair.to.v); };
  Complex meanFrom, meanTo;
  double weight = 0;
  for (const FitPair& pair : pairs) {
    meanFrom += pair.weight * from(pair);
    meanTo += pair.weight * to(pair);
    weight += pair.weight;
  }
  Similarity map;
  map.isMirrored = isMirrored;
  if (!(weight > 0)) return map;
  meanFrom /= weight;
  meanTo /= weight;
  Complex cross;
  double spread = 0, size = 0;
  for (const FitPair& pair : pairs) {
    const Complex p = from(pair) - meanFrom, q = to(pair) - meanTo;
    cross += pair.weight * std::conj(p) * q;
    spread += pair.weight * std::norm(p);
    size += std::norm(from(pair)) + std::norm(to(pair));
  }
  // Rounding of the places themselves is no direction to turn to.
  Complex turn = spread > size * 1e-13 ? cross / spread : Complex(1);
  if (!(std::abs(turn) > 1e-9) || !std::isfinite(std::abs(turn))) turn = 1;
  const Complex shift = meanTo - turn * meanFrom;
  map.a = turn.real();
  map.b = turn.imag();
  map.shiftU = shift.real();
  map.shiftV = shift.imag();
  if (residual) {
    double sum = 0;
    for (const FitPair& pair : pairs)
      sum += pair.weight * std::norm(turn * from(pair) + shift - to(pair));
    *residual = std::sqrt(sum / weight);
  }
  return map;
}

}  // namespace host::ops
