#include "host/io/obj_writer.h"

#include <algorithm>
#include <charconv>
#include <optional>
#include <set>
#include <utility>

#include "host/base/cancel_poll.h"
#include "host/base/parallel.h"
#include "host/io/obj_smoothing.h"
#include "host/io/whole_file.h"
#include "host/mesh/adjacency.h"

namespace host::io {
namespace {

template <class Number>
void appendNumber(std::string& out, Number value) {
  char digits[32];
  const auto [end, status] = std::to_chars(digits, digits + sizeof digits, value);
  (void)status;  // 32 characters hold any float or id
  out.append(digits, end);
}

void appendFloats(std::string& out, std::initializer_list<float> values) {
  for (const float value : values) {
    out += ' ';
    appendNumber(out, value);
  }
}

/// Appends `row(text, i)` for all i, made in parallel blocks.
template <class Row>
void appendRows(std::string& out, std::size_t count, Row row) {
  constexpr std::size_t kRowsABlock = 1 << 15;
  if (count <= kRowsABlock) {
    for (std::size_t i = 0; i < count; ++i) row(out, i);
    return;
  }
  const std::size_t blocks = (count + kRowsABlock - 1) / kRowsABlock;
  std::vector<std::string> texts(blocks);
  parallelFor(blocks, 1, [&](std::size_t begin, std::size_t end) {
    for (std::size_t b = begin; b < end; ++b) {
      pollWork();
      for (std::size_t i = b * kRowsABlock; i < std::min(count, (b + 1) * kRowsABlock); ++i)
        row(texts[b], i);
    }
  });
  std::size_t size = out.size();
  for (const std::string& text : texts) size += text.size();
  out.reserve(size);
  for (const std::string& text : texts) out += text;
}

// Characters that would end the name or join it to the next line become underscores.
std::string safeName(std::string_view name, bool isWord) {
  std::string safe(name);
  for (char& c : safe)
    if (static_cast<unsigned char>(c) < ' ' || c == '#' || c == '\\' || (isWord && c == ' '))
      c = '_';
  return safe;
}

// The corner normals with equal ones at a vertex joined.
struct NormalTable {
  std::vector<math::Vec3f> normals;
  std::vector<Index> cornerIds;
};

NormalTable makeNormalTable(const mesh::Mesh& mesh) {
  NormalTable table;
  const std::span<const math::Vec3f> own = mesh.cornerNormals();
  const auto& corners = mesh.topology().cornerVertices;
  PerElement<VertexId, Index> newestAtVertex(mesh.vertexCount(), kNone), older;
  table.cornerIds.resize(corners.size());
  for (std::size_t c = 0; c < corners.size(); ++c) {
    Index& newest = newestAtVertex[corners[c]];
    Index id = newest;
    while (id != kNone && !(table.normals[at(id)] == own[c])) id = older[at(id)];
    if (id == kNone) {
      id = static_cast<Index>(table.normals.size());
      table.normals.push_back(own[c]);
      older.push_back(std::exchange(newest, id));
    }
    table.cornerIds[c] = id;
  }
  return table;
}

// One colour a vertex, or none when corners of a vertex differ.
std::vector<mesh::Color4f> vertexColors(const mesh::Mesh& mesh) {
  if (mesh.currentColorSet() < 0) return {};
  const mesh::ColorSet& set = mesh.colorSet(mesh.currentColorSet());
  constexpr mesh::Color4f kUnset{-1, 0, 0, 1};
  PerElement<VertexId, mesh::Color4f> colors(mesh.vertexCount(), kUnset);
  std::vector<std::uint8_t> isSeen(colors.size(), 0);
  const auto& corners = mesh.topology().cornerVertices;
  for (std::size_t c = 0; c < corners.size() && c < set.cornerIds.size(); ++c) {
    const mesh::Color4f color = set.cornerIds[c] < 0 ? kUnset : set.colors[set.cornerIds[c]];
    const auto v = at(corners[c]);
    if (isSeen[v] != 0 && !(colors[v] == color)) return {};
    colors[v] = color;
    isSeen[v] = 1;
  }
  return colors;
}

struct SmoothingPlan {
  std::vector<std::uint32_t> groupOfFaces;  // empty: nothing to state
  bool isExact = true;
};

SmoothingPlan planSmoothing(const ObjObject& object) {
  const mesh::Mesh& mesh = object.mesh;
  if (!object.smoothing.empty()) {
    SmoothingPlan plan{groupOfFaces(object.smoothing, mesh.faceCount()), true};
    const std::vector<std::uint8_t> stated = smoothFlags(mesh, plan.groupOfFaces);
    bool isUsable = true;
    for (EdgeId e = 0; e < mesh.edgeCount() && isUsable; ++e) {
      if (mesh.adjacency().edgeFaces(e).size() < 2 || (stated[at(e)] != 0) == mesh.isEdgeSmooth(e))
        continue;
      plan.isExact = false;
      isUsable =
          object.hasNormals && stated[at(e)] != 0;  // normals may harden an edge, not soften it
    }
    if (isUsable) return plan;
  }
  const auto flags = mesh.edgeSmooth();
  if (!object.statesSmoothing && std::find(flags.begin(), flags.end(), 0) == flags.end()) return {};
  DerivedSmoothing derived = deriveSmoothing(mesh);
  return {std::move(derived.groupOfFaces), derived.isExact};
}

// Where the names in force change.
struct NameChange {
  FaceId face = 0;
  bool isStart = false;
  std::size_t set = 0;
  friend auto operator<=>(const NameChange&, const NameChange&) = default;
};

std::vector<NameChange> nameChanges(const std::vector<ObjFaceSet>& sets) {
  std::vector<NameChange> changes;
  for (std::size_t i = 0; i < sets.size(); ++i)
    for (const ObjFaceRange& range : sets[i].ranges) {
      changes.push_back({range.first, true, i});
      changes.push_back({range.first + range.count, false, i});
    }
  std::sort(changes.begin(), changes.end());
  return changes;
}

class Writer {
 public:
  Writer(const ObjScene& scene, const ObjWriteOptions& options)
      : scene_(scene), options_(options) {}

  std::string write() {
    for (const std::string& library : scene_.materialLibraries)
      if (options_.materials) out_ += "mtllib " + safeName(library, false) + "\n";
    for (const ObjObject& object : scene_.objects) writeObject(object);
    return std::move(out_);
  }

 private:
  void writeObject(const ObjObject& object) {
    const mesh::Mesh& mesh = object.mesh;
    ++objectCount_;
    if (!object.name.empty())
      out_ += "o " + safeName(object.name, false) + "\n";
    else if (scene_.objects.size() > 1)
      out_ += "o object" + std::to_string(objectCount_) + "\n";
    writePoints(mesh);
    const mesh::UvSet& uvs = mesh.uvSet(mesh.currentUvSet());
    uvIds_ = options_.uvs ? std::span<const UvId>(uvs.cornerIds) : std::span<const UvId>();
    const std::size_t uvCount = options_.uvs ? uvs.points.size() : 0;
    appendRows(out_, uvCount, [&](std::string& out, std::size_t i) {
      out += "vt";
      appendFloats(out, {uvs.points[i].u, uvs.points[i].v});
      out += '\n';
    });
    const SmoothingPlan smoothing = planSmoothing(object);
    normals_ = {};
    if (needsNormals(object, smoothing)) {
      normals_ = makeNormalTable(mesh);
      appendRows(out_, normals_.normals.size(), [&](std::string& out, std::size_t i) {
        out += "vn";
        appendFloats(out, {normals_.normals[i].x, normals_.normals[i].y, normals_.normals[i].z});
        out += '\n';
      });
    }
    writeFaces(object, smoothing.groupOfFaces);
    firstPoint_ += mesh.vertexCount();
    firstUv_ += static_cast<Index>(uvCount);
    firstNormal_ += static_cast<Index>(normals_.normals.size());
  }

  bool needsNormals(const ObjObject& object, const SmoothingPlan& smoothing) const {
    if (options_.normals != ObjWriteOptions::Normals::WhereNeeded)
      return options_.normals == ObjWriteOptions::Normals::Always;
    const auto& locked = object.mesh.lockedNormals().locked;
    return object.hasNormals || !smoothing.isExact ||
           std::find(locked.begin(), locked.end(), 1) != locked.end();
  }

  void writePoints(const mesh::Mesh& mesh) {
    const auto points = mesh.points();
    const std::vector<mesh::Color4f> colors =
        options_.colors ? vertexColors(mesh) : std::vector<mesh::Color4f>();
    const bool hasAlpha =
        std::any_of(colors.begin(), colors.end(), [](const auto& c) { return c.a != 1; });
    appendRows(out_, points.size(), [&](std::string& out, std::size_t i) {
      out += 'v';
      appendFloats(out, {points[i].x, points[i].y, points[i].z});
      if (!colors.empty() && colors[i].r >= 0) {
        appendFloats(out, {colors[i].r, colors[i].g, colors[i].b});
        if (hasAlpha) appendFloats(out, {colors[i].a});
      }
      out += '\n';
    });
  }

  void writeFaces(const ObjObject& object, const std::vector<std::uint32_t>& groupOfFaces) {
    const std::vector<NameChange> groups = nameChanges(object.groups),
                                  materials = nameChanges(object.materials);
    const std::vector<ObjSmoothingRun> smoothing = smoothingRuns(groupOfFaces);
    if (smoothing.empty() && options_.smoothing && smoothingGroup_.value_or(1) == 0)
      stateSmoothing(1);
    std::set<FaceId> stops{0, object.mesh.faceCount()};
    for (const auto* changes : {&groups, &materials})
      for (const NameChange& change : *changes) stops.insert(change.face);
    for (const ObjSmoothingRun& run : smoothing) stops.insert(run.faces.first);
    std::set<std::size_t> groupsInForce, materialsInForce;
    auto group = groups.begin(), material = materials.begin();
    auto run = smoothing.begin();
    for (auto stop = stops.begin(); *stop < object.mesh.faceCount(); ++stop) {
      const FaceId face = *stop;
      const auto advance = [face](auto& change, const auto& changes,
                                  std::set<std::size_t>& inForce) {
        for (; change != changes.end() && change->face <= face; ++change) {
          if (change->isStart)
            inForce.insert(change->set);
          else
            inForce.erase(change->set);
        }
      };
      advance(group, groups, groupsInForce);
      advance(material, materials, materialsInForce);
      if (options_.groups) state("g", object.groups, groupsInForce, true, groupText_);
      if (options_.materials)
        state("usemtl", object.materials, materialsInForce, false, materialText_);
      for (; run != smoothing.end() && run->faces.first <= face; ++run)
        if (options_.smoothing) stateSmoothing(run->group);
      writeFaceRows(object.mesh, face, *std::next(stop));
    }
  }

  void stateSmoothing(std::uint32_t group) {
    if (smoothingGroup_ == group) return;
    smoothingGroup_ = group;
    out_ += group == 0 ? "s off\n" : "s " + std::to_string(group) + "\n";
  }

  void state(const char* keyword, const std::vector<ObjFaceSet>& sets,
             const std::set<std::size_t>& inForce, bool areWords, std::string& last) {
    std::string text = keyword;
    for (const std::size_t i : inForce) text += " " + safeName(sets[i].name, areWords);
    if (text == last || (last.empty() && inForce.empty())) return;
    out_ += text + "\n";
    last = std::move(text);
  }

  void writeFaceRows(const mesh::Mesh& mesh, FaceId first, FaceId end) {
    const auto& topology = mesh.topology();
    appendRows(out_, at(end - first), [&](std::string& out, std::size_t i) {
      const auto f = at(first) + i;
      out += 'f';
      for (CornerId c = topology.faceOffsets[f]; c < topology.faceOffsets[f + 1]; ++c) {
        out += ' ';
        appendNumber(out, topology.cornerVertices[c] + firstPoint_);
        const bool hasUv = !uvIds_.empty() && uvIds_[at(c)] >= 0;
        if (hasUv || !normals_.cornerIds.empty()) out += '/';
        if (hasUv) appendNumber(out, uvIds_[at(c)] + firstUv_);
        if (normals_.cornerIds.empty()) continue;
        out += '/';
        appendNumber(out, normals_.cornerIds[c] + firstNormal_);
      }
      out += '\n';
    });
  }

  const ObjScene& scene_;
  const ObjWriteOptions& options_;
  std::string out_;
  std::size_t objectCount_ = 0;
  Index firstPoint_ = 1, firstUv_ = 1, firstNormal_ = 1;
  std::span<const UvId> uvIds_;
  NormalTable normals_;
  // What the text says is in force; it goes on from one object to the next.
  std::string groupText_, materialText_;
  std::optional<std::uint32_t> smoothingGroup_;
};

}  // namespace

std::string formatObj(const ObjScene& scene, const ObjWriteOptions& options) {
  return Writer(scene, options).write();
}

Result<void> writeObj(const std::string& path, const ObjScene& scene,
                      const ObjWriteOptions& options) {
  const LongWork work("Writing");
  const auto text = cancellable([&]() -> Result<std::string> { return formatObj(scene, options); });
  if (!text) return failWith(text.error());
  return writeFileAtomically(path, *text);
}

}  // namespace host::io
