#pragma once

#include <string_view>
#include <vector>

#include "host/io/ma/ma_file.h"

namespace host::io {

/// The rows of one mesh node, collected over its statements and made into a mesh at the end.
class MaMeshRows {
 public:
  /// Whether an attribute is one of those kept here, and whether its values are bulk: numbers up to
  /// the semicolon, taken as text.
  enum class Kind { None, Bulk, Values };
  [[nodiscard]] static Kind kindOf(std::string_view path);

  /// Takes a bulk statement. `declared` is its -size, -1 without.
  MaResult<void> addBulk(std::size_t offset, std::string_view path, std::int64_t declared,
                         std::string_view body);
  /// Takes a statement with few values: set names, creases, hidden faces.
  MaResult<void> addValues(const MaSetAttr& line);

  [[nodiscard]] bool isEmpty() const { return isEmpty_; }
  /// Builds the mesh; lengths are multiplied by `unit`, cm a unit. `text` is what offsets count in.
  /// Edges no face uses, and edges named twice, are left out or joined, with a warning.
  MaResult<mesh::Mesh> build(std::string_view text, double unit,
                             std::vector<std::pair<std::size_t, std::string>>& warnings) const;

  /// Consecutive elements first..last of an array.
  struct Chunk {
    std::size_t offset = 0;
    Index first = 0, last = 0;
    std::string_view body;
  };
  struct Array {
    std::vector<Chunk> chunks;
    std::int64_t declared = -1;
    std::size_t declaredAt = 0;
  };
  struct UvSetRows {
    std::string_view name;
    Array points;
  };
  struct ColorSetRows {
    std::string_view name;
    Array colors;
    int representation = 4;
    bool isClamped = false;
  };
  struct Weight {
    std::size_t offset = 0;
    Index id = 0;
    float value = 0;
  };

 private:
  friend class MaMeshBuilder;
  MaResult<Array*> arrayOf(std::size_t offset, std::string_view name, std::string_view& rest);
  MaResult<void> addWeights(const MaSetAttr& line, std::string_view kind,
                            std::vector<Weight>& weights);

  bool isEmpty_ = true;
  Array points_, edges_, normals_, faces_;
  std::vector<UvSetRows> uvSets_;
  std::vector<ColorSetRows> colorSets_;
  std::string_view currentUvSet_, currentColorSet_;
  std::vector<Weight> edgeCreases_, vertexCreases_, hiddenFaces_;
};

}  // namespace host::io
