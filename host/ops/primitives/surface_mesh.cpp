#include "host/ops/primitives/surface_mesh.h"

#include <algorithm>

#include "host/ops/primitives/primitive_builder.h"

namespace host::ops {

namespace {

/// A grid of places on a surface and which of them are one vertex.
struct Grid {
  std::vector<double> us, vs;
  std::vector<math::Vec3f> points;
  std::vector<VertexId> vertexAt;  ///< by row and column

  [[nodiscard]] std::size_t index(std::size_t row, std::size_t column) const {
    return row * vs.size() + column;
  }
};

Grid gridOf(const math::NurbsSurface& surface, const SurfaceMeshOptions& options) {
  Grid grid;
  grid.us = math::spread(math::breaksU(surface), options.divisionsU);
  grid.vs = math::spread(math::breaksV(surface), options.divisionsV);
  std::vector<math::Vec3f> places;
  for (const double u : grid.us)
    for (const double v : grid.vs) places.push_back(surface.at(u, v).toFloat());
  const std::size_t rows = grid.us.size(), columns = grid.vs.size();
  const bool meetsU = surface.formU != math::CurveForm::Open,
             meetsV = surface.formV != math::CurveForm::Open;
  const auto isOnePlace = [&](std::size_t first, std::size_t step, std::size_t count) {
    for (std::size_t i = 1; i < count; ++i)
      if (places[first + i * step] != places[first]) return false;
    return true;
  };
  // Where each place is kept: in the first of those that are one.
  std::vector<std::size_t> same(places.size());
  for (std::size_t i = 0; i < rows; ++i)
    for (std::size_t j = 0; j < columns; ++j)
      same[grid.index(i, j)] =
          grid.index(meetsU && i + 1 == rows ? 0 : i, meetsV && j + 1 == columns ? 0 : j);
  for (const std::size_t i : {std::size_t{0}, rows - 1})
    if (isOnePlace(grid.index(i, 0), 1, columns))
      for (std::size_t j = 0; j < columns; ++j) same[grid.index(i, j)] = same[grid.index(i, 0)];
  for (const std::size_t j : {std::size_t{0}, columns - 1})
    if (isOnePlace(grid.index(0, j), columns, rows))
      for (std::size_t i = 0; i < rows; ++i) same[grid.index(i, j)] = same[grid.index(0, j)];
  grid.vertexAt.assign(places.size(), kNone);
  for (std::size_t i = 0; i < places.size(); ++i) {
    std::size_t kept = i;
    while (same[kept] != kept) kept = same[kept];
    if (grid.vertexAt[kept] == kNone) {
      grid.vertexAt[kept] = static_cast<Index>(grid.points.size());
      grid.points.push_back(places[kept]);
    }
    grid.vertexAt[i] = grid.vertexAt[kept];
  }
  return grid;
}

/// Collects faces with the grid's places as their UVs.
struct Faces {
  std::vector<Index> counts;
  std::vector<VertexId> vertices;
  PerElement<CornerId, UvId> uvs;

  void add(const Grid& grid, std::initializer_list<std::size_t> places) {
    const std::size_t first = vertices.size();
    for (const std::size_t place : places) {
      const VertexId vertex = grid.vertexAt[place];
      const auto isThere =
          std::find(vertices.begin() + static_cast<std::ptrdiff_t>(first), vertices.end(), vertex);
      if (isThere != vertices.end()) continue;
      vertices.push_back(vertex);
      uvs.push_back(static_cast<Index>(place));
    }
    if (vertices.size() - first >= 3) {
      counts.push_back(static_cast<Index>(vertices.size() - first));
      return;
    }
    vertices.resize(first);
    uvs.resize(first);
  }
};

}  // namespace

Result<mesh::Mesh> surfaceMesh(const math::NurbsSurface& surface,
                               const SurfaceMeshOptions& options) {
  HOST_TRY(math::check(surface));
  HOST_TRY(checkSubdivisions("a span's pieces along U", options.divisionsU, 1));
  HOST_TRY(checkSubdivisions("a span's pieces along V", options.divisionsV, 1));
  HOST_TRY(checkFaceCount(static_cast<double>(surface.spansU()) * options.divisionsU *
                          surface.spansV() * options.divisionsV));
  const Grid grid = gridOf(surface, options);
  Faces faces;
  for (std::size_t i = 0; i + 1 < grid.us.size(); ++i)
    for (std::size_t j = 0; j + 1 < grid.vs.size(); ++j) {
      const std::size_t a = grid.index(i, j), b = grid.index(i + 1, j),
                        c = grid.index(i + 1, j + 1), d = grid.index(i, j + 1);
      if (options.triangles) {
        faces.add(grid, {a, b, c});
        faces.add(grid, {a, c, d});
      } else {
        faces.add(grid, {a, b, c, d});
      }
    }
  auto made = mesh::buildMesh(grid.points, faces.counts, faces.vertices);
  if (!made) return made;
  mesh::UvSet& set = made->editUvSet(0);
  const double u0 = grid.us.front(), v0 = grid.vs.front();
  for (const double u : grid.us)
    for (const double v : grid.vs)
      set.points.push_back({static_cast<float>((u - u0) / (grid.us.back() - u0)),
                            static_cast<float>((v - v0) / (grid.vs.back() - v0))});
  set.cornerIds = std::move(faces.uvs);
  return made;
}

}  // namespace host::ops
