#include "host/ops/primitives/cube.h"

#include <algorithm>
#include <array>
#include <utility>

#include "host/ops/primitives/primitive_builder.h"

namespace host::ops {
namespace {

// Vertex and UV numbers of one of the two sides, by (row from below, column); column 0 is at the
// side's left as seen from outside.
template <class Id>
struct SideGrid {
  int rows = 0, columns = 0;
  std::vector<Id> ids;
  SideGrid(int rowsIn, int columnsIn)
      : rows(rowsIn), columns(columnsIn), ids(host::at((rows + 1) * (columns + 1)), kNone) {}
  Id& at(int r, int c) { return ids[host::at(r * (columns + 1) + c)]; }
};

class CubeMaker {
 public:
  explicit CubeMaker(const CubeOptions& options)
      : o_(options),
        sw_(o_.subdivisionsWidth),
        sh_(o_.subdivisionsHeight),
        sd_(o_.subdivisionsDepth),
        wrapRows_(2 * (sh_ + sd_)) {}

  Mesh make() {
    addWrapPoints();
    SideGrid<VertexId> right = addSidePoints(true);
    SideGrid<VertexId> left = addSidePoints(false);
    addWrapEdges();
    addSideEdges(right);
    addSideEdges(left);
    if (o_.createUVs == 2) {
      addFacesWithSeparateUvs(right, left);
    } else {
      if (o_.createUVs != 0) addUnfoldedUvs();
      addWrapFaces();
      addSideFaces(right, rightUvs_);
      addSideFaces(left, leftUvs_);
    }
    return std::move(builder_).finish(o_.axis);
  }

 private:
  struct RowPlace {
    double y, z;
    bool isCrease;  // an edge of the box runs along the row
  };

  RowPlace rowPlace(int row) const {
    const double y0 = -o_.height * (0.5 + 0.5 * o_.heightBaseline), y1 = y0 + o_.height;
    const double z0 = -0.5 * o_.depth, z1 = 0.5 * o_.depth;
    const auto between = [](double a, double b, int i, int n) {
      return i == n ? b : a + (b - a) * i / n;
    };
    if (row < sh_) return {between(y0, y1, row, sh_), z1, row == 0};
    row -= sh_;
    if (row < sd_) return {y1, between(z1, z0, row, sd_), row == 0};
    row -= sd_;
    if (row < sh_) return {between(y1, y0, row, sh_), z0, row == 0};
    row -= sh_;
    return {y0, between(z0, z1, row, sd_), row == 0};
  }

  double columnX(int c) const {
    return c == sw_ ? 0.5 * o_.width : -0.5 * o_.width + o_.width * c / sw_;
  }
  VertexId wrapVertex(int row, int c) const { return (row % wrapRows_) * (sw_ + 1) + c; }

  void addWrapPoints() {
    for (int row = 0; row < wrapRows_; ++row)
      for (int c = 0; c <= sw_; ++c)
        builder_.addPoint({columnX(c), rowPlace(row).y, rowPlace(row).z});
  }

  // Rim vertices come from the wrapped rows' first or last column, inner ones are new.
  SideGrid<VertexId> addSidePoints(bool isRight) {
    SideGrid<VertexId> grid(sh_, sd_);
    const int column = isRight ? sw_ : 0;
    for (int r = 0; r <= sh_; ++r)
      for (int c = 0; c <= sd_; ++c) {
        const int fromFront = isRight ? c : sd_ - c;
        int row = -1;
        if (fromFront == 0)
          row = r;
        else if (fromFront == sd_)
          row = 2 * sh_ + sd_ - r;
        else if (r == 0)
          row = wrapRows_ - fromFront;
        else if (r == sh_)
          row = sh_ + fromFront;
        grid.at(r, c) =
            row >= 0
                ? wrapVertex(row, column)
                : builder_.addPoint({columnX(column), rowPlace(r).y, rowPlace(sh_ + fromFront).z});
      }
    return grid;
  }

  void addWrapEdges() {
    for (int row = 0; row < wrapRows_; ++row)
      for (int c = 0; c < sw_; ++c)
        builder_.addEdge(wrapVertex(row, c), wrapVertex(row, c + 1), !rowPlace(row).isCrease);
    for (int row = 0; row < wrapRows_; ++row)
      for (int c = 0; c <= sw_; ++c)
        builder_.addEdge(wrapVertex(row, c), wrapVertex(row + 1, c), c != 0 && c != sw_);
  }

  void addSideEdges(SideGrid<VertexId>& grid) {
    for (int r = 1; r < sh_; ++r)
      for (int c = 0; c < sd_; ++c) builder_.addEdge(grid.at(r, c), grid.at(r, c + 1), true);
    for (int r = 0; r < sh_; ++r)
      for (int c = 1; c < sd_; ++c) builder_.addEdge(grid.at(r, c), grid.at(r + 1, c), true);
  }

  void addUnfoldedUvs() {
    const double wide = o_.width + 2 * o_.depth, high = 2 * (o_.height + o_.depth);
    double scaleU = 1, scaleV = 1, originU = o_.depth;
    if (o_.createUVs == 3) {
      scaleU = 1 / wide, scaleV = 1 / high, originU = o_.depth * scaleU;
    } else if (o_.createUVs == 4) {
      scaleU = scaleV = 1 / std::max(wide, high);
      originU = 0.5 - 0.5 * o_.width * scaleU;
    }
    double v = 0;
    for (int row = 0; row <= wrapRows_; ++row) {
      for (int c = 0; c <= sw_; ++c) builder_.addUv(originU + o_.width * c / sw_ * scaleU, v);
      const bool alongHeight = row < sh_ || (row >= sh_ + sd_ && row < 2 * sh_ + sd_);
      v += (alongHeight ? o_.height / sh_ : o_.depth / sd_) * scaleV;
    }
    const auto addSide = [&](SideGrid<UvId>& grid, bool isRight) {
      for (int r = 0; r <= sh_; ++r)
        for (int c = 0; c <= sd_; ++c) {
          const bool isShared = c == (isRight ? 0 : sd_);
          const double u = isRight ? originU + (o_.width + o_.depth * c / sd_) * scaleU
                                   : originU - o_.depth * (sd_ - c) / sd_ * scaleU;
          grid.at(r, c) = isShared ? UvId(r * (sw_ + 1) + (isRight ? sw_ : 0))
                                   : builder_.addUv(u, o_.height * r / sh_ * scaleV);
        }
    };
    addSide(rightUvs_, true);
    addSide(leftUvs_, false);
  }

  void addWrapFaces() {
    for (int row = 0; row < wrapRows_; ++row)
      for (int c = 0; c < sw_; ++c) {
        const std::array vertices{wrapVertex(row, c), wrapVertex(row, c + 1),
                                  wrapVertex(row + 1, c + 1), wrapVertex(row + 1, c)};
        const UvId low = row * (sw_ + 1) + c, high = low + sw_ + 1;
        if (o_.createUVs == 0)
          builder_.addFace(vertices, {});
        else
          builder_.addFace(vertices, std::array{low, low + 1, high + 1, high});
      }
  }

  void addSideFaces(SideGrid<VertexId>& grid, SideGrid<UvId>& uvs) {
    const auto cell = [](auto& g, int r, int c) {
      return std::array{g.at(r, c), g.at(r, c + 1), g.at(r + 1, c + 1), g.at(r + 1, c)};
    };
    for (int r = 0; r < sh_; ++r)
      for (int c = 0; c < sd_; ++c) {
        if (o_.createUVs == 0)
          builder_.addFace(cell(grid, r, c), {});
        else
          builder_.addFace(cell(grid, r, c), cell(uvs, r, c));
      }
  }

  // A unit square of its own for each of the six sides.
  void addFacesWithSeparateUvs(SideGrid<VertexId>& right, SideGrid<VertexId>& left) {
    int firstRow = 0;
    for (const int rows : {sh_, sd_, sh_, sd_}) {
      const UvId first = addUnitSquare(rows, sw_);
      for (int r = 0; r < rows; ++r)
        for (int c = 0; c < sw_; ++c) {
          const int row = firstRow + r;
          const UvId low = first + r * (sw_ + 1) + c, high = low + sw_ + 1;
          builder_.addFace({wrapVertex(row, c), wrapVertex(row, c + 1), wrapVertex(row + 1, c + 1),
                            wrapVertex(row + 1, c)},
                           {low, low + 1, high + 1, high});
        }
      firstRow += rows;
    }
    for (SideGrid<VertexId>* grid : {&right, &left}) {
      SideGrid<UvId> uvs(sh_, sd_);
      UvId next = addUnitSquare(sh_, sd_);
      for (UvId& id : uvs.ids) id = next++;
      addSideFaces(*grid, uvs);
    }
  }

  UvId addUnitSquare(int rows, int columns) {
    const UvId first = builder_.uvCount();
    for (int r = 0; r <= rows; ++r)
      for (int c = 0; c <= columns; ++c) builder_.addUv(double(c) / columns, double(r) / rows);
    return first;
  }

  const CubeOptions& o_;
  const int sw_, sh_, sd_, wrapRows_;
  PrimitiveBuilder builder_;
  SideGrid<UvId> rightUvs_{sh_, sd_}, leftUvs_{sh_, sd_};
};

}  // namespace

Result<Mesh> makeCube(const CubeOptions& options) {
  HOST_TRY(checkSize("The cube's width", options.width));
  HOST_TRY(checkSize("The cube's height", options.height));
  HOST_TRY(checkSize("The cube's depth", options.depth));
  HOST_TRY(checkSubdivisions("Subdivisions along the width", options.subdivisionsWidth, 1));
  HOST_TRY(checkSubdivisions("Subdivisions along the height", options.subdivisionsHeight, 1));
  HOST_TRY(checkSubdivisions("Subdivisions along the depth", options.subdivisionsDepth, 1));
  const double w = options.subdivisionsWidth, h = options.subdivisionsHeight,
               d = options.subdivisionsDepth;
  HOST_TRY(checkFaceCount(2 * (w * h + w * d + h * d)));
  HOST_TRY(checkAxis(options.axis));
  if (options.createUVs < 0 || options.createUVs > 4)
    return fail(ErrorKind::BadArgument, "createUVs of a cube must be 0 to 4, not {}",
                options.createUVs);
  return CubeMaker(options).make();
}

}  // namespace host::ops
