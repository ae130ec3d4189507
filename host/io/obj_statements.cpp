#include "host/io/obj_statements.h"

#include <algorithm>
#include <utility>

#include "host/base/parallel.h"
#include "host/io/obj_chunk_parser.h"

namespace host::io {
namespace {

constexpr std::size_t kSmallestChunk = 1 << 18;
// Ids count items of at least two characters each, so that no array of a chunk outgrows them.
constexpr std::size_t kLargestFile = 0xffffffff;

tl::unexpected<Error> failAt(std::string_view text, const char* at, const std::string& fileName,
                             const std::string& reason) {
  const std::string_view before = text.substr(0, static_cast<std::size_t>(at - text.data()));
  const auto line = std::count(before.begin(), before.end(), '\n') + 1;
  const std::size_t lineStart = before.rfind('\n') + 1;  // npos + 1 is 0
  return fail("{}:{}:{}: {}", fileName, line, before.size() - lineStart + 1, reason);
}

// Cuts between lines, and not where a line is continued.
std::vector<std::string_view> cutIntoChunks(std::string_view text) {
  const auto count = std::clamp<std::size_t>(text.size() / kSmallestChunk, 1, coreCount());
  std::vector<std::string_view> chunks;
  std::size_t begin = 0;
  for (std::size_t i = 1; i < count; ++i) {
    std::size_t cut = std::max(begin, text.size() * i / count);
    while (cut < text.size()) {
      cut = text.find('\n', cut);
      if (cut == std::string_view::npos) break;
      ++cut;
      std::size_t last = cut - 1;
      if (last > 0 && text[last - 1] == '\r') --last;
      if (last == 0 || text[last - 1] != '\\') break;
    }
    if (cut >= text.size()) break;
    chunks.push_back(text.substr(begin, cut - begin));
    begin = cut;
  }
  chunks.push_back(text.substr(begin));
  return chunks;
}

// Where each chunk's items start in the joined arrays.
struct Base {
  std::size_t points = 0, uvs = 0, normals = 0, faces = 0, corners = 0;
};

void shift(std::vector<Index>& ids, const std::vector<CornerId>& relative, std::size_t base) {
  for (const CornerId c : relative) ids[static_cast<std::size_t>(c)] += static_cast<Index>(base);
}

void place(std::vector<Index>& ids, std::size_t base, std::vector<Index>& all) {
  if (!ids.empty())
    std::copy(ids.begin(), ids.end(), all.begin() + static_cast<std::ptrdiff_t>(base));
}

void joinChunk(ObjChunk& chunk, const Base& base, ObjStatements& all) {
  ObjStatements& part = chunk.statements;
  const auto at = [](auto& array, std::size_t i) {
    return array.begin() + static_cast<std::ptrdiff_t>(i);
  };
  std::copy(part.points.begin(), part.points.end(), at(all.points, base.points));
  std::copy(part.colors.begin(), part.colors.end(),
            at(all.colors, all.colors.empty() ? 0 : base.points));
  std::copy(part.uvs.begin(), part.uvs.end(), at(all.uvs, base.uvs));
  std::copy(part.normals.begin(), part.normals.end(), at(all.normals, base.normals));
  for (std::size_t f = 1; f < part.faceOffsets.size(); ++f)
    all.faceOffsets[base.faces + f] = part.faceOffsets[f] + static_cast<CornerId>(base.corners);
  shift(part.cornerPoints, chunk.relative.points, base.points);
  shift(part.cornerUvs, chunk.relative.uvs, base.uvs);
  shift(part.cornerNormals, chunk.relative.normals, base.normals);
  place(part.cornerPoints, base.corners, all.cornerPoints);
  place(part.cornerUvs, base.corners, all.cornerUvs);
  place(part.cornerNormals, base.corners, all.cornerNormals);
}

ObjStatements joinChunks(std::vector<ObjChunk>& chunks) {
  if (chunks.size() == 1) return std::move(chunks.front().statements);
  ObjStatements all;
  std::vector<Base> bases(chunks.size() + 1);
  bool hasColors = false, hasUvs = false, hasNormals = false;
  for (std::size_t i = 0; i < chunks.size(); ++i) {
    ObjStatements& part = chunks[i].statements;
    const Base& base = bases[i];
    bases[i + 1] = {base.points + part.points.size(), base.uvs + part.uvs.size(),
                    base.normals + part.normals.size(), base.faces + part.faceOffsets.size() - 1,
                    base.corners + part.cornerPoints.size()};
    hasColors |= !part.colors.empty();
    hasUvs |= !part.cornerUvs.empty();
    hasNormals |= !part.cornerNormals.empty();
    for (ObjEvent event : part.events) {
      event.face += static_cast<FaceId>(base.faces);
      all.events.push_back(event);
    }
    for (const auto& [text, count] : part.warnings) all.warnings[text] += count;
  }
  const Base& total = bases.back();
  all.points.resize(total.points);
  all.uvs.resize(total.uvs);
  all.normals.resize(total.normals);
  all.faceOffsets.resize(total.faces + 1);
  all.cornerPoints.resize(total.corners);
  if (hasColors) all.colors.resize(total.points, {-1, 0, 0, 1});
  if (hasUvs) all.cornerUvs.resize(total.corners, ObjStatements::kAbsent);
  if (hasNormals) all.cornerNormals.resize(total.corners, ObjStatements::kAbsent);
  parallelFor(chunks.size(), 1, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) joinChunk(chunks[i], bases[i], all);
  });
  return all;
}

// Index arrays that stopped short hold nothing for the last corners.
void padIndices(ObjStatements& s) {
  if (!s.cornerUvs.empty()) s.cornerUvs.resize(s.cornerPoints.size(), ObjStatements::kAbsent);
  if (!s.cornerNormals.empty())
    s.cornerNormals.resize(s.cornerPoints.size(), ObjStatements::kAbsent);
}

CornerId firstOutOfRange(const std::vector<Index>& ids, std::size_t count, bool mayBeAbsent) {
  const auto limit = static_cast<Index>(count);
  for (std::size_t c = 0; c < ids.size(); ++c)
    if ((ids[c] < 0 || ids[c] >= limit) && !(mayBeAbsent && ids[c] == ObjStatements::kAbsent))
      return static_cast<CornerId>(c);
  return kNone;
}

}  // namespace

Result<ObjStatements> parseObjStatements(std::string_view text, const std::string& fileName) {
  if (text.size() > kLargestFile)
    return fail("{}: the file is too large; the limit is 4 GB", fileName);
  const std::vector<std::string_view> pieces = cutIntoChunks(text);
  std::vector<ObjChunk> chunks(pieces.size());
  parallelFor(pieces.size(), 1, [&](std::size_t begin, std::size_t end) {
    for (std::size_t i = begin; i < end; ++i) chunks[i] = parseObjChunk(pieces[i]);
  });
  std::size_t items = 0;
  for (const ObjChunk& chunk : chunks) {
    if (chunk.fault) return failAt(text, chunk.fault->at, fileName, chunk.fault->reason);
    const ObjStatements& s = chunk.statements;
    items += s.points.size() + s.uvs.size() + s.normals.size() + s.cornerPoints.size();
  }
  if (items > static_cast<std::size_t>(std::numeric_limits<Index>::max()) / 2)
    return fail("{}: the file holds more points or corners than ids can name", fileName);
  ObjStatements all = joinChunks(chunks);
  padIndices(all);

  const struct {
    const std::vector<Index>& ids;
    std::size_t count;
    const char* what;
  } channels[] = {{all.cornerPoints, all.points.size(), "point"},
                  {all.cornerUvs, all.uvs.size(), "UV"},
                  {all.cornerNormals, all.normals.size(), "normal"}};
  for (int channel = 0; channel < 3; ++channel) {
    const auto& [ids, count, what] = channels[channel];
    const CornerId bad = firstOutOfRange(ids, count, channel > 0);
    if (bad == kNone) continue;
    return failAt(text, findObjCorner(text, bad, channel), fileName,
                  fmt::format("{} index out of range; the file has {}", what, count));
  }
  return all;
}

}  // namespace host::io
