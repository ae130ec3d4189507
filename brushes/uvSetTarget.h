#pragma once

#include <maya/MString.h>

#include <vector>

#include "brushes/uvSetRecord.h"
#include "brushes/uvTarget.h"

class MFloatArray;

/// The current UV set of a mesh that has no UV object.
class uvSetTarget : public uvTarget {
 public:
  explicit uvSetTarget(const MDagPath& mesh);
  bool read(content& read) override;
  state keepUp(std::vector<float>& places) override;
  bool write(const std::vector<int>& uvs, const uvLayout& layout) override;
  std::shared_ptr<brushRecord> record() const override;
  void settle() override;

 private:
  bool readUvs(MFloatArray& u, MFloatArray& v) const;
  bool readPlaces(std::vector<float>& places) const;
  bool isLast(const MFloatArray& u, const MFloatArray& v) const;

  MDagPath path;
  MString set;
  std::vector<float> last;  ///< as they were read or written
  std::shared_ptr<uvSetRecord> written;
};
