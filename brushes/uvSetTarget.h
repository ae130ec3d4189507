#pragma once

#include <maya/MString.h>

#include "brushes/uvSetRecord.h"
#include "brushes/uvTarget.h"

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
  bool readPlaces(std::vector<float>& places) const;

  MDagPath path;
  MString set;
  std::vector<float> last;  ///< as they were read or written
  std::shared_ptr<uvSetRecord> written;
};
