#pragma once

#include <string>
#include <vector>

/// A brush's stamp: how much arrives at each place of the square around a dab.
class alphaImage {
 public:
  /// The folder that names without a folder are looked for in; set when the module is loaded.
  static void setFolder(const std::string& folder);

  /// Takes an image: a file, or a name in the folder; an empty name takes none. Colours count by
  /// their mean, and by their own alpha.
  /// @return false, with no stamp and a sentence about why, for a file that can't be read
  bool load(const std::string& name, std::string& problem);
  bool isEmpty() const { return values.empty(); }
  /// The name that was asked for last, read or not.
  const std::string& name() const { return wanted; }

  /// The value between the pixels at a place, -1 to 1 from left to right and from the bottom up;
  /// 0 beside the image, 1 everywhere without one.
  double value(double across, double up) const;

 private:
  double pixel(int column, int row) const;

  std::string wanted;
  int width = 0, height = 0;
  std::vector<float> values;  ///< rows from the bottom
};
