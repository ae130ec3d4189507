#include "host/nodes/history/lattice.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/dg/graph.h"
#include "host/nodes/history/ffd.h"

namespace host::nodes {

namespace {

using math::Vec3;

constexpr int kMostDivisions = 100;

Result<dg::DataPtr> readLattice(const std::vector<dg::ForeignWord>& words) {
  std::vector<double> numbers;
  for (const dg::ForeignWord& word : words) {
    double number = 0;
    const char* end = word.text.data() + word.text.size();
    const auto read = std::from_chars(word.text.data(), end, number);
    if (read.ec != std::errc() || read.ptr != end || !std::isfinite(number))
      return fail("'{}' is no number of a lattice", word.text);
    numbers.push_back(number);
  }
  LatticePoints lattice;
  if (numbers.size() < 4) return fail("a lattice needs its divisions and its points");
  std::size_t expected = 1;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (numbers[axis] < 2 || numbers[axis] > kMostDivisions)
      return fail("a lattice can't have {} divisions", numbers[axis]);
    lattice.divisions[axis] = static_cast<int>(numbers[axis]);
    expected *= static_cast<std::size_t>(lattice.divisions[axis]);
  }
  if (numbers[3] != static_cast<double>(expected) || numbers.size() != 4 + 3 * expected)
    return fail("a lattice of {} points has {} numbers", expected, numbers.size() - 4);
  for (std::size_t i = 4; i < numbers.size(); i += 3)
    lattice.points.push_back({numbers[i], numbers[i + 1], numbers[i + 2]});
  return dg::DataPtr(std::make_shared<LatticeData>(std::move(lattice)));
}

dg::Value valueOf(LatticePoints lattice) {
  return dg::DataPtr(std::make_shared<LatticeData>(std::move(lattice)));
}

struct LatticeAttributes {
  std::array<const Attribute*, 3> divisions{};
  const Attribute *stored, *offsets, *arriving, *leaving, *placed, *matrices;
};

LatticePoints pointsOf(const LatticeAttributes& a, Node& node, DataBlock& block) {
  std::array<int, 3> divisions{};
  for (std::size_t i = 0; i < 3; ++i)
    divisions[i] = static_cast<int>(
        std::clamp<std::int64_t>(block.integer(a.divisions[i]), 2, kMostDivisions));
  const bool isDriven = !block.graph().source(Plug(&node, a.arriving)).isNull();
  const auto data = block.data<LatticeData>(isDriven ? a.arriving : a.stored);
  LatticePoints lattice = !data ? LatticePoints::atRest(divisions)
                          : data->lattice.divisions == divisions || isDriven
                              ? data->lattice
                              : data->lattice.resampled(divisions);
  std::vector<Index> indices;
  std::vector<double> offsets;
  block.graph().getPacked(Plug(&node, a.offsets), indices, offsets);
  for (std::size_t i = 0; i < indices.size(); ++i)
    if (at(indices[i]) < lattice.points.size())
      lattice.points[at(indices[i])] += {offsets[3 * i], offsets[3 * i + 1], offsets[3 * i + 2]};
  return lattice;
}

void registerLattice(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "lattice", "controlPoint", typeCode("FLAT"));
  builder.livesByItsOutputs();
  LatticeAttributes a{};
  a.divisions = {
      builder.add(channelBox(limited(shortInteger("sDivisions", "sd", 2), 2, kMostDivisions))),
      builder.add(channelBox(limited(shortInteger("tDivisions", "td", 5), 2, kMostDivisions))),
      builder.add(channelBox(limited(shortInteger("uDivisions", "ud", 2), 2, kMostDivisions)))};
  a.stored = builder.add(hidden(dg::makeTyped("cached", "cc", "lattice")));
  a.offsets = builder.add(array(
      numbers("controlPoints", "cp", "double3",
              {distance("xValue", "xv"), distance("yValue", "yv"), distance("zValue", "zv")})));
  a.arriving = builder.add(notStored(dg::makeTyped("latticeInput", "li", "lattice")));
  a.leaving = builder.add(output(dg::makeTyped("latticeOutput", "lo", "lattice")));
  AttributePtr placed = array(output(dg::makeTyped("worldLattice", "wl", "lattice")));
  placed->worldSpace = true;
  a.placed = builder.add(std::move(placed));
  builder.add(boolean("dispPoints", "dcv"));
  builder.add(boolean("dispLattice", "dep", true));
  builder.add(triple("origin", "or", AttributeType::Distance, {}, "o"));
  a.matrices = builder["worldMatrix"];
  builder.affects({a.divisions[0], a.divisions[1], a.divisions[2], a.stored, a.offsets, a.arriving},
                  {a.leaving, a.placed});
  builder.affects({a.matrices, builder["parentMatrix"]}, {a.placed});
  builder.type().compute = [a](Node& node, const Plug& plug, DataBlock& block) -> Result<Computed> {
    if (plug.attribute() == a.leaving) {
      block.output(a.leaving, valueOf(pointsOf(a, node, block)));
      return Computed::Done;
    }
    if (plug.attribute() != a.placed) return Computed::Unhandled;
    const Index index = plug.isElement() ? plug.logicalIndex() : 0;
    LatticePoints lattice = pointsOf(a, node, block);
    if (const auto matrix = block.data<dg::MatrixData>(Plug(&node, a.matrices).element(index)))
      for (Vec3& point : lattice.points) point = math::transformPoint(point, matrix->value);
    block.output(Plug(&node, a.placed).element(index), valueOf(std::move(lattice)));
    return Computed::Done;
  };
  builder.finish();
  TypeBuilder base(types, "baseLattice", "shape", typeCode("FBAS"));
  base.livesByItsOutputs();
  base.finish();
}

}  // namespace

std::optional<std::string> LatticeData::written() const {
  std::string text = fmt::format("{} {} {} {}", lattice.divisions[0], lattice.divisions[1],
                                 lattice.divisions[2], lattice.points.size());
  // As many digits as bring every number back to the bit.
  for (const Vec3& point : lattice.points)
    text += fmt::format(" {} {} {}", point.x, point.y, point.z);
  return text;
}

Vec3 LatticePoints::restPlace(const std::array<int, 3>& divisions, int s, int t, int u) {
  const auto along = [](int i, int count) { return i / (count - 1.0) - 0.5; };
  return {along(s, divisions[0]), along(t, divisions[1]), along(u, divisions[2])};
}

LatticePoints LatticePoints::atRest(const std::array<int, 3>& divisions) {
  LatticePoints lattice{divisions, {}};
  for (int u = 0; u < divisions[2]; ++u)
    for (int t = 0; t < divisions[1]; ++t)
      for (int s = 0; s < divisions[0]; ++s)
        lattice.points.push_back(restPlace(divisions, s, t, u));
  return lattice;
}

LatticePoints LatticePoints::resampled(const std::array<int, 3>& wanted) const {
  LatticePoints result = atRest(wanted);
  for (Vec3& point : result.points) {
    const double place[3] = {point.x + 0.5, point.y + 0.5, point.z + 0.5};
    int low[3] = {};
    double share[3] = {};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const double x = place[axis] * (divisions[axis] - 1);
      low[axis] = std::clamp(static_cast<int>(std::floor(x)), 0, divisions[axis] - 2);
      share[axis] = x - low[axis];
    }
    Vec3 sum;
    for (int corner = 0; corner < 8; ++corner) {
      double weight = 1;
      int at[3] = {};
      for (int axis = 0; axis < 3; ++axis) {
        const int up = corner >> axis & 1;
        at[axis] = low[axis] + up;
        weight *= up != 0 ? share[axis] : 1 - share[axis];
      }
      if (weight != 0) sum += points[index(at[0], at[1], at[2])] * weight;
    }
    point = sum;
  }
  return result;
}

void registerLattices(dg::TypeRegistry& types) {
  dg::setForeignReader("lattice", readLattice);
  registerLattice(types);
  registerFfd(types);
}

Result<LatticePoints> evaluatedLattice(Node& shape) {
  const Plug plug = shape.plug("latticeOutput");
  if (!plug) return fail("'{}' is no lattice", shape.name());
  const auto value = shape.graph().get(plug);
  if (!value) return failWith(value.error());
  const auto* data = dg::dataAs<LatticeData>(*value);
  if (!data) return fail("'{}' has no lattice in it", shape.name());
  return data->lattice;
}

Result<void> setStoredLattice(Node& shape, LatticePoints lattice) {
  dg::Graph& graph = shape.graph();
  if (graph.source(shape.plug("latticeInput")))
    return fail("the points of '{}' come from another node and can't be moved", shape.name());
  const Plug offsets = shape.plug("controlPoints");
  if (graph.elementCount(offsets) > 0) HOST_TRY(graph.setPacked(offsets, {}, {}));
  return graph.set(shape.plug("cached"), valueOf(std::move(lattice)));
}

Result<void> resetLattice(Node& shape) {
  const auto now = evaluatedLattice(shape);
  if (!now) return failWith(now.error());
  return setStoredLattice(shape, LatticePoints::atRest(now->divisions));
}

}  // namespace host::nodes
