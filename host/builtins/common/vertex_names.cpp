#include "host/builtins/common/vertex_names.h"

#include <string_view>

namespace host::builtins {

std::string offsetOfVertex(const scene::Document& document, std::string name) {
  constexpr std::string_view kVertex = ".vtx";
  const std::size_t at = name.find(".vtx[");
  if (at == std::string::npos) return name;
  const std::string node = name.substr(0, at);
  if (document.plug(node + ".vtx") || !document.plug(node + ".pnts")) return name;
  return name.replace(at, kVertex.size(), ".pnts");
}

}  // namespace host::builtins
