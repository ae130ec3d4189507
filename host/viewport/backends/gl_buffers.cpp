#include "host/viewport/backends/gl_buffers.h"

#include <algorithm>
#include <type_traits>

#include "host/viewport/backends/gl_program.h"
#include "host/viewport/vertex_patches.h"

namespace host::viewport {

namespace {

template <class T>
std::size_t bytes(const std::vector<T>& array) {
  return array.size() * sizeof(T);
}

GLsizeiptr signedSize(std::size_t size) {
  return static_cast<GLsizeiptr>(size);
}

/// The arrays one after another in one buffer.
GLuint upload(const VertexData& data) {
  GLuint id = 0;
  glGenBuffers(1, &id);
  glBindBuffer(GL_ARRAY_BUFFER, id);
  const std::size_t total =
      bytes(data.positions) + bytes(data.normals) + bytes(data.colors) + bytes(data.uvs);
  glBufferData(GL_ARRAY_BUFFER, signedSize(total), nullptr, GL_STATIC_DRAW);
  std::size_t at = 0;
  const auto put = [&](const auto& array) {
    if (!array.empty())
      glBufferSubData(GL_ARRAY_BUFFER, signedSize(at), signedSize(bytes(array)), array.data());
    at += bytes(array);
  };
  put(data.positions);
  put(data.normals);
  put(data.colors);
  put(data.uvs);
  return id;
}

GLuint upload(const IndexData& indices) {
  GLuint id = 0;
  glGenBuffers(1, &id);
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, id);
  glBufferData(GL_ELEMENT_ARRAY_BUFFER, signedSize(bytes(indices)), indices.data(), GL_STATIC_DRAW);
  return id;
}

/// Drops the error of a driver that doesn't know a parameter.
void clearUnknown() {
  while (glGetError() != GL_NO_ERROR) {
  }
}

GLuint upload(const Texture& texture) {
  GLuint id = 0;
  glGenTextures(1, &id);
  glBindTexture(GL_TEXTURE_2D, id);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, texture.width, texture.height, 0, GL_RGBA,
               GL_UNSIGNED_BYTE, texture.rgba.data());
  glGenerateMipmap(GL_TEXTURE_2D);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  constexpr GLfloat kAnisotropy = 8;  // surfaces seen at a slant keep their detail
  glTexParameterf(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY, kAnisotropy);
  clearUnknown();
  return id;
}

/// Changes places and normals of the bound copy where the patches since its revision say so, in
/// runs: vertices near one another go in one write. @return false when the patches don't reach back
bool patch(const VertexData& data, const VertexPatches& told, std::uint64_t revision) {
  if (!told.reachBackTo(revision)) return false;
  std::vector<std::uint32_t> changed;
  for (const VertexPatch& one : told.patches)
    if (one.revision > revision)
      changed.insert(changed.end(), one.vertices.begin(), one.vertices.end());
  std::ranges::sort(changed);
  constexpr std::size_t kGap = 32;
  const auto put = [](const std::vector<Vec3f>& array, std::size_t offset, std::size_t from,
                      std::size_t to) {
    glBufferSubData(GL_ARRAY_BUFFER, signedSize(offset + from * sizeof(Vec3f)),
                    signedSize((to - from) * sizeof(Vec3f)), array.data() + from);
  };
  for (std::size_t i = 0; i < changed.size();) {
    const std::size_t from = changed[i];
    std::size_t to = from + 1;
    for (; i < changed.size() && changed[i] < to + kGap; ++i) to = changed[i] + 1;
    put(data.positions, 0, from, to);
    if (!data.normals.empty()) put(data.normals, bytes(data.positions), from, to);
  }
  return true;
}

void destroy(const VertexData*, GLuint id) {
  glDeleteBuffers(1, &id);
}
void destroy(const IndexData*, GLuint id) {
  glDeleteBuffers(1, &id);
}
void destroy(const Texture*, GLuint id) {
  glDeleteTextures(1, &id);
}

/// The copy of `original`, made now if there is none; an entry of a dead original at the same
/// address doesn't count.
template <class Copies, class Original>
GLuint copyOf(Copies& copies, const Original& original) {
  auto& copy = copies[original.get()];
  if (copy.id && copy.original.lock() == original) return copy.id;
  if (copy.id) destroy(original.get(), copy.id);
  copy.original = original;
  copy.id = upload(*original);
  if constexpr (std::is_same_v<Original, VertexDataPtr>)
    copy.revision = patchesOf(original).revision;
  return copy.id;
}

template <class Copies>
void dropDead(Copies& copies, bool all) {
  std::erase_if(copies, [&](const auto& entry) {
    const bool isDead = all || entry.second.original.expired();
    if (isDead) destroy(entry.first, entry.second.id);
    return isDead;
  });
}

void point(GlAttribute slot, GLint components, GLenum type, bool isPresent, std::size_t& at,
           std::size_t size) {
  if (!isPresent) {
    glDisableVertexAttribArray(slot);
    glVertexAttrib4f(slot, 1, 1, 1, 1);
    return;
  }
  glEnableVertexAttribArray(slot);
  glVertexAttribPointer(slot, components, type, type == GL_UNSIGNED_BYTE ? GL_TRUE : GL_FALSE, 0,
                        reinterpret_cast<const void*>(at));
  at += size;
}

}  // namespace

GlBuffers::~GlBuffers() {
  dropDead(vertices_, true);
  dropDead(indices_, true);
  dropDead(textures_, true);
}

void GlBuffers::bindVertices(const VertexDataPtr& data) {
  glBindBuffer(GL_ARRAY_BUFFER, copyOf(vertices_, data));
  auto& copy = vertices_[data.get()];
  const VertexPatches& told = patchesOf(data);
  if (copy.revision != told.revision && !patch(*data, told, copy.revision)) {
    glDeleteBuffers(1, &copy.id);
    copy.id = upload(*data);
  }
  copy.revision = told.revision;
  std::size_t at = 0;
  point(kPositionSlot, 3, GL_FLOAT, true, at, bytes(data->positions));
  point(kNormalSlot, 3, GL_FLOAT, !data->normals.empty(), at, bytes(data->normals));
  point(kColorSlot, 4, GL_UNSIGNED_BYTE, !data->colors.empty(), at, bytes(data->colors));
  point(kUvSlot, 2, GL_FLOAT, !data->uvs.empty(), at, bytes(data->uvs));
}

const math::Box& GlBuffers::bounds(const VertexDataPtr& data) {
  Bounds& bounds = bounds_[data.get()];
  const VertexPatches& told = patchesOf(data);
  if (bounds.original.lock() != data || !told.reachBackTo(bounds.revision)) {
    bounds = {data, {}, told.revision};
    for (const Vec3f& p : data->positions) bounds.box.add(Vec3(p));
  }
  for (const VertexPatch& one : told.patches)
    if (one.revision > bounds.revision)
      for (const std::uint32_t v : one.vertices) bounds.box.add(Vec3(data->positions[v]));
  bounds.revision = told.revision;
  return bounds.box;
}

void GlBuffers::bindIndices(const IndexDataPtr& indices) {
  glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, copyOf(indices_, indices));
}

void GlBuffers::bindTexture(const TexturePtr& texture) {
  glBindTexture(GL_TEXTURE_2D, copyOf(textures_, texture));
}

void GlBuffers::dropUnused() {
  dropDead(vertices_, false);
  dropDead(indices_, false);
  dropDead(textures_, false);
  std::erase_if(bounds_, [](const auto& entry) { return entry.second.original.expired(); });
}

}  // namespace host::viewport
