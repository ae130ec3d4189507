#pragma once

#include <doctest/doctest.h>

#include <string>

#include "host/io/ma/ma_loader.h"
#include "host/io/ma/ma_writer.h"
#include "tests/host/nodes/nodes_fixture.h"

namespace host::io::test {

/// A scene with what files said of it. Two of them that did the same have equal hashes.
struct MaScene : nodes::test::Scene {
  MaKept kept;

  MaScene() {
    document->graph().seedUuids(7);
    document->reset();
  }
  Result<MaLoaded> load(std::string text, const MaLoadOptions& options = {}) {
    auto file = parseMa(std::move(text), "scene.ma");
    if (!file) return failWith(std::move(file).error());
    return loadMa(*document, *std::move(file), kept, options);
  }
  /// Loads a text that must be good.
  MaLoaded open(std::string text) {
    auto loaded = load(std::move(text));
    if (!loaded) FAIL(loaded.error().message);
    return *std::move(loaded);
  }
  std::string save() {
    const auto text =
        formatMa(*document, kept,
                 {.name = "scene.ma", .modified = {}, .version = "2024", .requirements = {}});
    if (!text) FAIL(text.error().message);
    return text->text;
  }
  mesh::Mesh mesh(std::string_view shape) {
    auto found = nodes::evaluatedMesh(*path(shape).node());
    REQUIRE(found);
    return *std::move(found);
  }
};

/// The error of a text that must be refused.
inline std::string errorOf(std::string text) {
  const auto file = parseMa(std::move(text), "scene.ma");
  return file ? std::string("no error") : file.error().message;
}

}  // namespace host::io::test
