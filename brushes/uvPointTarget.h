#pragma once

#include <cstddef>
#include <unordered_map>
#include <vector>

#include "brushes/pointRecord.h"
#include "brushes/uvTarget.h"

/// A UV object: its vertices are the UVs, their x and z in object space the places.
class uvPointTarget : public uvTarget {
 public:
  explicit uvPointTarget(const MDagPath& uvObject);
  bool read(content& read) override;
  state keepUp(std::vector<float>& places) override;
  bool write(const std::vector<int>& uvs, const uvLayout& layout) override;
  std::shared_ptr<brushRecord> record() const override { return written; }
  void settle() override;
  double unit() const override;

  /// Where a vertex is, three numbers, object space.
  const float* stored(int vertex) const { return &points[3 * static_cast<std::size_t>(vertex)]; }

 private:
  const float* rawPoints(std::size_t& numbers) const;
  bool readPoints();
  void givePlaces(std::vector<float>& places) const;

  MDagPath path;
  std::vector<float> points;  ///< as they were read or written
  std::shared_ptr<pointRecord> written;
  std::unordered_map<int, int> slotOf;  ///< vertex to its place in the record
};
