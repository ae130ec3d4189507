// Any bytes end in an error or in meshes that are sound and come back from the writer.
#include <cstdlib>
#include <string_view>

#include "host/io/obj_reader.h"
#include "host/io/obj_writer.h"
#include "host/mesh/check.h"

namespace {

void require(bool condition) {
  if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto scene = host::io::parseObj(text, "fuzz.obj");
  if (!scene) {
    require(scene.error().message.starts_with("fuzz.obj:"));
    return 0;
  }
  for (const auto& object : scene->objects) require(host::mesh::check(object.mesh).empty());
  const auto again = host::io::parseObj(host::io::formatObj(*scene), "again.obj");
  require(again.has_value() && again->objects.size() == scene->objects.size());
  for (std::size_t i = 0; i < scene->objects.size(); ++i) {
    const auto &a = scene->objects[i].mesh, &b = again->objects[i].mesh;
    require(a.topology() == b.topology() || a.vertexCount() != b.vertexCount());
    require(a.faceCount() == b.faceCount());
  }
  return 0;
}
