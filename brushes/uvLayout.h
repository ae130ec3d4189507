#pragma once

#include <maya/MIntArray.h>

#include <cstdint>
#include <vector>

/// Lists of numbers, one after the other in one array.
struct intLists {
  std::vector<int> offsets{0}, values;
  const int* begin(int list) const {
    return values.data() + offsets[static_cast<std::size_t>(list)];
  }
  const int* end(int list) const {
    return values.data() + offsets[static_cast<std::size_t>(list) + 1];
  }
  int size(int list) const { return static_cast<int>(end(list) - begin(list)); }
  int count() const { return static_cast<int>(offsets.size()) - 1; }
};

/// UVs and the polygons that join them, in arrays: what a UV brush works on. A place is a pair of
/// floats, in whatever unit and space the UVs are kept; "left" and "right" below are as with u to
/// the right and v up.
///
/// Building costs n log n in the polygons' corners; every question afterwards costs its answer.
class uvLayout {
 public:
  /// @param places two numbers a UV
  /// @param counts, ids of each polygon's corners, as of an assignment of UVs; a count of 0 is a
  /// polygon without UVs
  /// @return false, with nothing built, when an id has no place
  bool build(std::vector<float> places, const MIntArray& counts, const MIntArray& ids);

  int count() const { return static_cast<int>(numbers.size() / 2); }
  const float* place(int uv) const { return numbers.data() + 2 * static_cast<std::size_t>(uv); }
  void setPlace(int uv, float first, float second);
  /// Moves all UVs; as many as there are. What way round shells go is found anew.
  void setPlaces(const std::vector<float>& places);

  const intLists& faces() const { return corners; }      ///< UVs of each polygon's corners
  const intLists& facesAtUv() const { return atUv; }     ///< polygons at each UV, ascending
  const intLists& neighbours() const { return around; }  ///< UVs at the other ends of its edges
  /// Whether a UV lies at an edge that only one polygon has.
  bool isBorder(int uv) const { return borders[static_cast<std::size_t>(uv)] != 0; }

  // Shells: UVs joined by polygons, numbered by their first UV.
  int shellCount() const { return members.count(); }
  int shellOf(int uv) const { return shells[static_cast<std::size_t>(uv)]; }
  const intLists& shellMembers() const { return members; }
  /// 1 for a shell whose polygons go round to the left, weighed by area; -1 for a mirrored one.
  int shellSign(int shell) const { return signs[static_cast<std::size_t>(shell)]; }
  /// Twice the area of a polygon, positive when it goes round to the left.
  double doubleArea(int face) const;

 private:
  void findFacesAtUvs();
  void findNeighbours();
  void findShells();
  void findSigns();

  std::vector<float> numbers;
  intLists corners, atUv, around, members;
  std::vector<std::uint8_t> borders;
  std::vector<int> shells;
  std::vector<std::int8_t> signs;
};
