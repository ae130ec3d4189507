#include "host/viewport/backends/gl_buffers.h"

#include "host/viewport/backends/gl_program.h"

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
  std::size_t at = 0;
  point(kPositionSlot, 3, GL_FLOAT, true, at, bytes(data->positions));
  point(kNormalSlot, 3, GL_FLOAT, !data->normals.empty(), at, bytes(data->normals));
  point(kColorSlot, 4, GL_UNSIGNED_BYTE, !data->colors.empty(), at, bytes(data->colors));
  point(kUvSlot, 2, GL_FLOAT, !data->uvs.empty(), at, bytes(data->uvs));
}

const math::Box& GlBuffers::bounds(const VertexDataPtr& data) {
  Bounds& bounds = bounds_[data.get()];
  if (bounds.original.lock() == data) return bounds.box;
  bounds = {data, {}};
  for (const Vec3f& p : data->positions) bounds.box.add(Vec3(p));
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
