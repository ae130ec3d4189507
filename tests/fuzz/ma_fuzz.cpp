// Any bytes end in an error or in a scene whose meshes are sound; what loads can be saved, and that
// loads again to the same text.
#include <cstdlib>
#include <functional>
#include <string>

#include "host/base/messages.h"
#include "host/io/ma/ma_loader.h"
#include "host/io/ma/ma_writer.h"
#include "host/mesh/check.h"
#include "host/modelling/declare/declaration.h"
#include "host/nodes/mesh_shape.h"

namespace {

using namespace host;

void require(bool condition) {
  if (!condition) std::abort();
}

dg::TypeRegistry& types() {
  static dg::TypeRegistry* const registry = [] {
    auto* made = new dg::TypeRegistry;  // outlives every document
    nodes::registerBuiltinTypes(*made);
    modelling::registerTypes(*made);
    return made;
  }();
  return *registry;
}

/// Loads a text into a new scene and saves it; empty when it is refused.
std::string passed(std::string text, bool hasDefaultNodes) {
  auto file = io::parseMa(std::move(text), "fuzz.ma");
  if (!file) {
    require(file.error().message.starts_with("fuzz.ma:"));
    return {};
  }
  for (const io::MaNode& node : file->nodes)
    if (node.mesh) require(mesh::check(*node.mesh).empty());
  scene::Document document(types());
  if (hasDefaultNodes) {
    nodes::installNewScene(document);
    document.reset();
  }
  io::MaKept kept;
  if (!io::loadMa(document, *std::move(file), kept)) return {};
  const auto saved = io::formatMa(
      document, kept, {.name = "fuzz.ma", .modified = {}, .version = "2016", .requirements = {}});
  return saved ? saved->text : std::string();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MessageCapture quiet;
  const std::string text(reinterpret_cast<const char*>(data), size);
  // Cameras, time and render settings of a new scene cost more than a small text does; one in
  // sixteen gets them.
  const bool hasDefaultNodes = std::hash<std::string>()(text) % 16 == 0;
  const std::string once = passed(text, hasDefaultNodes);
  if (once.empty()) return 0;
  const std::string twice = passed(once, hasDefaultNodes);
  require(!twice.empty() && passed(twice, hasDefaultNodes) == twice);
  return 0;
}
