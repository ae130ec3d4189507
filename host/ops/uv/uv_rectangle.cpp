#include "host/ops/uv/uv_rectangle.h"

#include "host/mesh/adjacency.h"
#include "host/ops/uv/uv_ids.h"

namespace host::ops {

namespace {

using mesh::Adjacency;
using mesh::Mesh;

/// A cell of a grid of quads is known by the corner at its lower left; its bottom runs along the
/// corner's edge.
class Cells {
 public:
  explicit Cells(const Mesh& mesh) : mesh_(mesh), adjacency_(mesh.adjacency()) {}

  [[nodiscard]] bool isQuad(CornerId cell) const {
    return mesh_.faceSize(adjacency_.cornerFace(cell)) == 4;
  }
  [[nodiscard]] CornerId toRight(CornerId cell) const {
    const CornerId across = crossing(adjacency_.nextCorner(cell));
    return across == kNone ? kNone : quadOnly(adjacency_.nextCorner(across));
  }
  [[nodiscard]] CornerId above(CornerId cell) const {
    return quadOnly(crossing(adjacency_.nextCorner(adjacency_.nextCorner(cell))));
  }
  [[nodiscard]] VertexId corner(CornerId cell, int steps) const {
    for (; steps > 0; --steps) cell = adjacency_.nextCorner(cell);
    return mesh_.cornerVertex(cell);
  }
  [[nodiscard]] FaceId face(CornerId cell) const { return adjacency_.cornerFace(cell); }

 private:
  /// The corner that walks a corner's edge from the other side.
  [[nodiscard]] CornerId crossing(CornerId c) const {
    const CornerId twin = adjacency_.twin(c);
    return twin != kNone && mesh_.cornerVertex(twin) != mesh_.cornerVertex(c) ? twin : kNone;
  }
  [[nodiscard]] CornerId quadOnly(CornerId cell) const {
    return cell != kNone && isQuad(cell) ? cell : kNone;
  }
  const Mesh& mesh_;
  const Adjacency& adjacency_;
};

/// Cells row by row from the lower left one.
struct Grid {
  std::vector<CornerId> cells;
  std::size_t columns = 0;
};

/// The grid of given size from a cell on; empty when rows and columns don't agree.
Grid gridFrom(const Cells& cells, CornerId start, std::size_t columns, std::size_t rows) {
  Grid grid;
  grid.columns = columns;
  CornerId rowStart = start;
  for (std::size_t row = 0; row < rows; ++row) {
    CornerId cell = rowStart;
    for (std::size_t column = 0; column < columns; ++column) {
      if (cell == kNone) return {};
      if (row > 0 && cells.above(grid.cells[(row - 1) * columns + column]) != cell) return {};
      grid.cells.push_back(cell);
      cell = cells.toRight(cell);
    }
    rowStart = cells.above(rowStart);
  }
  return grid;
}

/// The smallest grid from a cell on whose upper right corner is the vertex.
Grid smallestGrid(const Cells& cells, CornerId start, VertexId end, std::size_t atMost) {
  Grid best;
  CornerId foot = start;
  for (std::size_t columns = 1; foot != kNone && columns <= atMost; ++columns) {
    CornerId cell = foot;
    for (std::size_t rows = 1; cell != kNone && rows * columns <= atMost; ++rows) {
      if (cells.corner(cell, 2) == end) {
        Grid grid = gridFrom(cells, start, columns, rows);
        if (!grid.cells.empty()) {
          atMost = columns * rows - 1;
          best = std::move(grid);
        }
        break;
      }
      cell = cells.above(cell);
      if (cell == foot) break;
    }
    foot = cells.toRight(foot);
    if (foot == start) break;
  }
  return best;
}

}  // namespace

Result<std::vector<FaceId>> mapUvRectangle(Mesh& mesh, int uvSet, VertexId first, VertexId second) {
  const Cells cells(mesh);
  Grid best;
  for (const CornerId c : mesh.adjacency().vertexCorners(first)) {
    if (!cells.isQuad(c)) continue;
    const std::size_t atMost = best.cells.empty() ? at(mesh.faceCount()) : best.cells.size() - 1;
    if (Grid grid = smallestGrid(cells, c, second, atMost); !grid.cells.empty())
      best = std::move(grid);
  }
  if (best.cells.empty())
    return fail("vertices {} and {} are not opposite corners of a rectangle of quads", first,
                second);
  std::vector<FaceId> faces;
  for (const CornerId cell : best.cells) faces.push_back(cells.face(cell));
  const std::vector<UvId> before = uvsOfFaces(mesh, uvSet, faces);
  const std::size_t columns = best.columns, rows = best.cells.size() / columns;
  mesh::UvSet& set = mesh.editUvSet(uvSet);
  std::vector<UvId>& ids = writableCornerIds(set, mesh.cornerCount());
  const auto base = static_cast<UvId>(set.points.size());
  for (std::size_t row = 0; row <= rows; ++row)
    for (std::size_t column = 0; column <= columns; ++column)
      set.points.push_back(
          {static_cast<float>(static_cast<double>(column) / static_cast<double>(columns)),
           static_cast<float>(static_cast<double>(row) / static_cast<double>(rows))});
  const mesh::Adjacency& adjacency = mesh.adjacency();
  for (std::size_t i = 0; i < best.cells.size(); ++i) {
    const std::size_t row = i / columns, column = i % columns;
    const std::size_t corners[] = {row * (columns + 1) + column, row * (columns + 1) + column + 1,
                                   (row + 1) * (columns + 1) + column + 1,
                                   (row + 1) * (columns + 1) + column};
    CornerId c = best.cells[i];
    for (const std::size_t uv : corners) {
      ids[at(c)] = base + static_cast<UvId>(uv);
      c = adjacency.nextCorner(c);
    }
  }
  dropUnusedUvs(set, before);
  return faces;
}

}  // namespace host::ops
