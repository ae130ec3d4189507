#include "host/mesh/hash.h"

#include <cstring>
#include <type_traits>

namespace host::mesh {

namespace {

/// Mixes eight bytes a step; the finish of each step is that of splitmix64.
class Hasher {
 public:
  void add(std::uint64_t word) {
    state_ = (state_ ^ word) * 0x9E3779B97F4A7C15ull;
    state_ ^= state_ >> 32;
  }
  void add(const void* data, std::size_t bytes) {
    add(bytes);
    const char* p = static_cast<const char*>(data);
    for (; bytes >= 8; bytes -= 8, p += 8) {
      std::uint64_t word;
      std::memcpy(&word, p, 8);
      add(word);
    }
    std::uint64_t rest = 0;
    if (bytes > 0) std::memcpy(&rest, p, bytes);
    add(rest);
  }
  template <class T>
  void add(std::span<const T> values) {
    static_assert(std::is_trivially_copyable_v<T>);
    add(values.data(), values.size_bytes());
  }
  template <class T>
  void add(const std::vector<T>& values) {
    add(std::span<const T>(values));
  }
  void add(const std::string& text) { add(text.data(), text.size()); }

  [[nodiscard]] std::uint64_t value() const {
    std::uint64_t z = state_;
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    return z ^ (z >> 31);
  }

 private:
  std::uint64_t state_ = 0x243F6A8885A308D3ull;
};

}  // namespace

std::uint64_t hashPoints(const Mesh& mesh) {
  Hasher hash;
  hash.add(mesh.points());
  return hash.value();
}

std::uint64_t hashTopology(const Mesh& mesh) {
  Hasher hash;
  const Topology& topology = mesh.topology();
  hash.add(topology.faceOffsets);
  hash.add(topology.cornerVertices);
  hash.add(topology.cornerEdges);
  hash.add(topology.edges);
  return hash.value();
}

std::uint64_t hashMesh(const Mesh& mesh) {
  Hasher hash;
  hash.add(hashPoints(mesh));
  hash.add(hashTopology(mesh));
  hash.add(mesh.edgeSmooth());
  hash.add(mesh.creases().edges);
  hash.add(mesh.creases().vertices);
  hash.add(static_cast<std::uint64_t>(mesh.uvSetCount()));
  for (int s = 0; s < mesh.uvSetCount(); ++s) {
    hash.add(mesh.uvSet(s).name);
    hash.add(mesh.uvSet(s).points);
    hash.add(mesh.uvSet(s).cornerIds);
  }
  hash.add(static_cast<std::uint64_t>(mesh.colorSetCount()));
  for (int s = 0; s < mesh.colorSetCount(); ++s) {
    const ColorSet& set = mesh.colorSet(s);
    hash.add(set.name);
    hash.add(static_cast<std::uint64_t>(set.representation * 2 + (set.clamped ? 1 : 0)));
    hash.add(set.colors);
    hash.add(set.cornerIds);
  }
  hash.add(mesh.lockedNormals().normals);
  hash.add(mesh.lockedNormals().locked);
  hash.add(mesh.invisibleFaces());
  hash.add(static_cast<std::uint64_t>(mesh.currentUvSet()));
  hash.add(static_cast<std::uint64_t>(mesh.currentColorSet() + 1));
  return hash.value();
}

}  // namespace host::mesh
