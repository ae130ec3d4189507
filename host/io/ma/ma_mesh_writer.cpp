#include "host/io/ma/ma_mesh_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "host/base/cancel_poll.h"
#include "host/base/parallel.h"
#include "host/io/finite_mesh.h"
#include "host/io/ma/ma_normals.h"
#include "host/io/ma/ma_numbers.h"

namespace host::io {
namespace {

using mesh::Mesh;

// What statements hold at most: 500 numbers, or 500 faces.
constexpr std::size_t kTriplesAChunk = 166, kPairsAChunk = 250, kColorsAChunk = 125,
                      kFacesAChunk = 500;

/// How the statements of one array begin.
struct ArrayWords {
  std::string path;           ///< ".vt"
  std::string type;           ///< of -type
  bool isTypeOnEach = false;  ///< else on the first statement only
  std::string sizes;          ///< further size flags
  bool isRowALine = false;    ///< every row on a line of its own
};

/// Writes an array in statements of `perChunk` elements; `row(text, i)` appends one element, with a
/// blank in front or as lines of its own. Statements are made in parallel.
template <class Row>
void appendArray(std::string& out, const ArrayWords& words, std::size_t count, std::size_t perChunk,
                 Row row) {
  if (count == 0) return;
  const std::size_t chunks = (count + perChunk - 1) / perChunk;
  const bool isWhole = chunks == 1;
  if (!isWhole) out += fmt::format("\tsetAttr -s {}{} \"{}\";\n", count, words.sizes, words.path);
  const auto chunk = [&](std::string& text, std::size_t c) {
    const std::size_t first = c * perChunk, last = std::min(count, first + perChunk) - 1;
    text += "\tsetAttr";
    if (isWhole && last > first) text += fmt::format(" -s {}{}", count, words.sizes);
    if (isWhole && last == first) text += words.sizes;
    text += first == last ? fmt::format(" \"{}[{}]\"", words.path, first)
                          : fmt::format(" \"{}[{}:{}]\"", words.path, first, last);
    if (!words.type.empty() && (c == 0 || words.isTypeOnEach))
      text += fmt::format(" -type \"{}\"", words.type);
    constexpr std::size_t kElementsALine = 6;
    for (std::size_t i = first; i <= last; ++i) {
      if (words.isRowALine || (i > first && (i - first) % kElementsALine == 0)) text += "\n\t\t";
      row(text, i);
    }
    text += ";\n";
  };
  constexpr std::size_t kChunksABlock = 64;
  const std::size_t blocks = (chunks + kChunksABlock - 1) / kChunksABlock;
  std::vector<std::string> texts(blocks);
  parallelFor(blocks, 1, [&](std::size_t begin, std::size_t end) {
    for (std::size_t b = begin; b < end; ++b) {
      pollWork();
      for (std::size_t c = b * kChunksABlock; c < std::min(chunks, (b + 1) * kChunksABlock); ++c)
        chunk(texts[b], c);
    }
  });
  std::size_t size = out.size();
  for (const std::string& text : texts) size += text.size();
  out.reserve(std::max(size, out.capacity()));
  for (const std::string& text : texts) out += text;
}

void appendFloats(std::string& out, std::initializer_list<float> values) {
  for (const float value : values) {
    out += ' ';
    appendNumber(out, value);
  }
}

void appendText(std::string& out, std::string_view path, std::string_view text) {
  out += fmt::format("\tsetAttr \"{}\" -type \"string\" ", path);
  appendQuoted(out, text);
  out += ";\n";
}

void appendUvSets(std::string& out, const Mesh& mesh) {
  for (int s = 0; s < mesh.uvSetCount(); ++s) {
    const mesh::UvSet& set = mesh.uvSet(s);
    appendText(out, fmt::format(".uvst[{}].uvsn", s), set.name);
    appendArray(out, {.path = fmt::format(".uvst[{}].uvsp", s), .type = "float2", .sizes = {}},
                set.points.size(), kPairsAChunk, [&](std::string& text, std::size_t i) {
                  appendFloats(text, {set.points[i].u, set.points[i].v});
                });
  }
  appendText(out, ".cuvs", mesh.uvSet(mesh.currentUvSet()).name);
}

void appendColorSets(std::string& out, const Mesh& mesh) {
  if (mesh.colorSetCount() == 0) return;
  if (mesh.currentColorSet() >= 0)
    appendText(out, ".ccls", mesh.colorSet(mesh.currentColorSet()).name);
  for (int s = 0; s < mesh.colorSetCount(); ++s) {
    const mesh::ColorSet& set = mesh.colorSet(s);
    const std::string path = fmt::format(".clst[{}]", s);
    appendText(out, path + ".clsn", set.name);
    if (set.clamped) out += fmt::format("\tsetAttr \"{}.clam\" yes;\n", path);
    if (set.representation != 4)
      out += fmt::format("\tsetAttr \"{}.rprt\" {};\n", path, set.representation);
    appendArray(out, {.path = path + ".clsp", .type = {}, .sizes = {}}, set.colors.size(),
                kColorsAChunk, [&](std::string& text, std::size_t i) {
                  const mesh::Color4f& c = set.colors[i];
                  appendFloats(text, {c.r, c.g, c.b, c.a});
                });
  }
}

void appendPoints(std::string& out, const Mesh& mesh, double unit) {
  const std::span<const math::Vec3f> points = mesh.points();
  appendArray(out, {.path = ".vt", .type = {}, .sizes = {}}, points.size(), kTriplesAChunk,
              [&](std::string& text, std::size_t i) {
                const math::Vec3f& p = points[i];
                if (unit == 1) return appendFloats(text, {p.x, p.y, p.z});
                for (const float length : {p.x, p.y, p.z}) {
                  text += ' ';
                  appendNumber(text, static_cast<double>(length) / unit);
                }
              });
}

void appendEdges(std::string& out, const Mesh& mesh) {
  appendArray(out, {.path = ".ed", .type = {}, .sizes = {}}, at(mesh.edgeCount()), kTriplesAChunk,
              [&](std::string& text, std::size_t i) {
                const auto e = static_cast<EdgeId>(i);
                for (const Index number :
                     {Index(mesh.edge(e).a), Index(mesh.edge(e).b), Index(mesh.isEdgeSmooth(e))}) {
                  text += ' ';
                  appendNumber(text, number);
                }
              });
}

void appendNormals(std::string& out, const Mesh& mesh) {
  const mesh::LockedNormals& locked = mesh.lockedNormals();
  if (locked.locked.empty()) return;
  const NormalFans fans = normalFans(mesh);
  constexpr float kUnlocked = 1e20f;
  std::vector<math::Vec3f> normals(at(fans.count), {kUnlocked, kUnlocked, kUnlocked});
  for (std::size_t c = 0; c < locked.locked.size(); ++c)
    if (locked.locked[c]) normals[at(fans.ofCorner[c])] = locked.normals[c];
  appendArray(out, {.path = ".n", .type = "float3", .isTypeOnEach = true, .sizes = {}},
              normals.size(), kTriplesAChunk, [&](std::string& text, std::size_t i) {
                appendFloats(text, {normals[i].x, normals[i].y, normals[i].z});
              });
}

void appendIds(std::string& out, std::string_view keyword, int set, std::span<const Index> ids) {
  if (std::ranges::all_of(ids, [](Index id) { return id == kNone; })) return;
  out += "\n\t\t";
  out += keyword;
  out += ' ';
  appendNumber(out, set);
  out += ' ';
  appendNumber(out, static_cast<std::int64_t>(ids.size()));
  for (const Index id : ids) {
    out += ' ';
    appendNumber(out, id);
  }
}

void appendFace(std::string& out, const Mesh& mesh, FaceId face) {
  const CornerId first = mesh.firstCorner(face);
  const Index size = mesh.faceSize(face);
  out += "f ";
  appendNumber(out, size);
  for (CornerId c = first; c < first + size; ++c) {
    const EdgeId e = mesh.cornerEdge(c);
    out += ' ';
    appendNumber(out, mesh.edge(e).a == mesh.cornerVertex(c) ? Index(e) : -e - 1);
  }
  const auto slice = [&](IdView ids) { return ids.subspan(at(first), at(size)); };
  for (int s = 0; s < mesh.uvSetCount(); ++s)
    if (const auto& ids = mesh.uvSet(s).cornerIds; !ids.empty())
      appendIds(out, "mu", s, slice(ids));
  for (int s = 0; s < mesh.colorSetCount(); ++s)
    if (const auto& ids = mesh.colorSet(s).cornerIds; !ids.empty())
      appendIds(out, "mc", s, slice(ids));
}

void appendWeights(std::string& out, std::string_view path, std::string_view kind,
                   std::span<const float> weights) {
  const auto count = std::ranges::count_if(weights, [](float weight) { return weight != 0; });
  out += fmt::format("\tsetAttr \"{}\" -type \"dataPolyComponent\" Index_Data {} {}", path, kind,
                     count);
  Index written = 0;
  for (std::size_t i = 0; i < weights.size(); ++i) {
    if (weights[i] == 0) continue;
    out += written++ % 8 == 0 ? "\n\t\t" : " ";
    appendNumber(out, static_cast<std::int64_t>(i));
    out += ' ';
    appendNumber(out, weights[i]);
  }
  out += " ;\n";
}

void appendHidden(std::string& out, std::span<const FaceId> faces) {
  out += fmt::format("\tsetAttr \".hfd\" -type \"dataPolyComponent\" Index_Data Face {}",
                     faces.size());
  for (std::size_t i = 0; i < faces.size(); ++i) {
    out += i % 16 == 0 ? "\n\t\t" : " ";
    appendNumber(out, faces[i]);
  }
  out += " ;\n";
}

}  // namespace

bool isBlank(const Mesh& mesh) {
  return mesh.vertexCount() == 0 && mesh.uvSetCount() == 1 && mesh.uvSet(0).name == "map1" &&
         mesh.uvSet(0).points.empty() && mesh.colorSetCount() == 0;
}

MaMeshLosses appendMesh(std::string& out, const Mesh& mesh, double unit) {
  MaMeshLosses losses;
  if (isBlank(mesh)) return losses;
  Mesh written = mesh;
  losses.notFinite = makeFinite(written);
  losses.hardened = hardenAlongNormals(written);
  appendUvSets(out, written);
  appendColorSets(out, written);
  appendPoints(out, written, unit);
  appendEdges(out, written);
  appendNormals(out, written);
  appendArray(out,
              {.path = ".fc",
               .type = "polyFaces",
               .sizes = fmt::format(" -ch {}", written.cornerCount()),
               .isRowALine = true},
              at(written.faceCount()), kFacesAChunk, [&](std::string& text, std::size_t i) {
                appendFace(text, written, static_cast<FaceId>(i));
              });
  if (written.vertexCount() == 0) return losses;
  appendWeights(out, ".cd", "Edge", written.creases().edges);
  appendWeights(out, ".cvd", "Vertex", written.creases().vertices);
  appendHidden(out, written.invisibleFaces());
  return losses;
}

}  // namespace host::io
