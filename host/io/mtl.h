#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/math/vec.h"

namespace host::io {

/// A material as an MTL file states it. Colours 0 to 1.
struct MtlMaterial {
  std::string name;
  math::Vec3 diffuse{0.8, 0.8, 0.8};  ///< Kd
  math::Vec3 ambient;                 ///< Ka
  math::Vec3 specular;                ///< Ks
  math::Vec3 emission;                ///< Ke
  double shininess = 0;               ///< Ns
  double opacity = 1;                 ///< d, or 1 - Tr
  std::string diffuseMap;  ///< map_Kd: the path as written, with forward slashes; empty: none
  std::string opacityMap;  ///< map_d
  friend bool operator==(const MtlMaterial&, const MtlMaterial&) = default;
};

struct MtlLibrary {
  std::vector<MtlMaterial> materials;           ///< in order of the file; of one name the last
  std::map<std::string, std::size_t> warnings;  ///< what was passed over, and how often
};

/// Reads MTL text. Statements that mean nothing here are passed over, options of maps as well.
/// @return an error as "file:line: reason" for a number that is missing or not finite
[[nodiscard]] Result<MtlLibrary> parseMtl(std::string_view text, const std::string& name);
[[nodiscard]] Result<MtlLibrary> readMtl(const std::string& path);

[[nodiscard]] std::string formatMtl(const std::vector<MtlMaterial>& materials);

/// Whether a path as a file states it stays in the file's own folder: relative, without "..".
[[nodiscard]] bool staysInFolder(const std::string& path);
/// Whether a path ends like that of a picture.
[[nodiscard]] bool looksLikePicture(const std::string& path);

}  // namespace host::io
