#include "brushes/alphaImage.h"

#include <maya/MImage.h>
#include <maya/MString.h>

#include <algorithm>
#include <cmath>
#include <fstream>

namespace {

std::string& folder() {
  static std::string path;
  return path;
}

bool isThere(const std::string& path) {
  return std::ifstream(path, std::ios::binary).good();
}

/// The file that a name means; empty when there is none.
std::string fileOf(const std::string& name) {
  if (isThere(name)) return name;
  const std::string inFolder = folder() + "/" + name;
  return !folder().empty() && isThere(inFolder) ? inFolder : std::string();
}

}  // namespace

void alphaImage::setFolder(const std::string& path) {
  folder() = path;
}

bool alphaImage::load(const std::string& name, std::string& problem) {
  wanted = name;
  values.clear();
  width = height = 0;
  if (name.empty()) return true;
  const std::string file = fileOf(name);
  if (file.empty()) {
    problem = "There is no image '" + name + "'";
    return false;
  }
  MImage image;
  unsigned int columns = 0, rows = 0;
  if (image.readFromFile(file.c_str(), MImage::kFloat) != MS::kSuccess ||
      image.getSize(columns, rows) != MS::kSuccess || !image.floatPixels() || columns == 0 ||
      rows == 0) {
    problem = "The image '" + name + "' can't be read";
    return false;
  }
  width = static_cast<int>(columns);
  height = static_cast<int>(rows);
  values.resize(static_cast<std::size_t>(columns) * rows);
  const float* pixels = image.floatPixels();
  for (std::size_t i = 0; i < values.size(); ++i, pixels += 4) {
    const float value = (pixels[0] + pixels[1] + pixels[2]) / 3.0F * pixels[3];
    values[i] = std::isfinite(value) ? value : 0.0F;
  }
  return true;
}

double alphaImage::pixel(int column, int row) const {
  const int x = std::clamp(column, 0, width - 1), y = std::clamp(row, 0, height - 1);
  return static_cast<double>(values[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                    static_cast<std::size_t>(x)]);
}

double alphaImage::value(double across, double up) const {
  if (values.empty()) return 1.0;
  if (!(std::fabs(across) <= 1.0 && std::fabs(up) <= 1.0)) return 0.0;
  const double x = (across + 1.0) * 0.5 * width - 0.5, y = (up + 1.0) * 0.5 * height - 0.5;
  const int column = static_cast<int>(std::floor(x)), row = static_cast<int>(std::floor(y));
  const double right = x - column, above = y - row;
  const double low = pixel(column, row) * (1.0 - right) + pixel(column + 1, row) * right;
  const double high = pixel(column, row + 1) * (1.0 - right) + pixel(column + 1, row + 1) * right;
  return low * (1.0 - above) + high * above;
}
