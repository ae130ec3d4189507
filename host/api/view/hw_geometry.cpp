#include <maya/MHWGeometry.h>
#include <maya/MShaderManager.h>

#include <algorithm>
#include <cstring>

#include "host/api/core/access.h"

namespace MHWRender {

namespace {

unsigned int sizeOf(MGeometry::DataType type) {
  switch (type) {
    case MGeometry::kFloat:
    case MGeometry::kInt32:
    case MGeometry::kUnsignedInt32:
      return 4;
    case MGeometry::kDouble:
      return 8;
    case MGeometry::kInt16:
    case MGeometry::kUnsignedInt16:
      return 2;
    case MGeometry::kChar:
    case MGeometry::kUnsignedChar:
      return 1;
    default:
      return 0;
  }
}

/// Copies elements into a buffer at a place; it grows as far as they reach.
MStatus replaceIn(std::vector<unsigned char>& bytes, unsigned int& count, unsigned int elementSize,
                  const void* from, unsigned int start, unsigned int number, bool truncates) {
  if (!from || elementSize == 0) return MStatus::kInvalidParameter;
  const std::size_t end = std::size_t{start} + number;
  if (end > count || truncates) {
    bytes.resize(end * elementSize);
    count = static_cast<unsigned int>(end);
  }
  std::memcpy(bytes.data() + std::size_t{start} * elementSize, from,
              std::size_t{number} * elementSize);
  return MStatus::kSuccess;
}

template <class Buffer>
Buffer* at(const std::vector<std::unique_ptr<Buffer>>& all, int index) {
  const bool isThere = index >= 0 && static_cast<std::size_t>(index) < all.size();
  return isThere ? all[static_cast<std::size_t>(index)].get() : nullptr;
}
template <class Buffer>
bool removeFrom(std::vector<std::unique_ptr<Buffer>>& all, int index) {
  if (!at(all, index)) return false;
  all.erase(all.begin() + index);
  return true;
}

}  // namespace

MGeometry::MGeometry() = default;
MGeometry::~MGeometry() = default;
MString MGeometry::primitiveString(Primitive primitive) {
  static const char* const kNames[] = {"invalid",
                                       "points",
                                       "lines",
                                       "line strip",
                                       "triangles",
                                       "triangle strip",
                                       "adjacent triangles",
                                       "adjacent triangle strip",
                                       "adjacent lines",
                                       "adjacent line strip",
                                       "patch"};
  return kNames[std::clamp<int>(primitive, 0, kPatch)];
}
MString MGeometry::dataTypeString(DataType type) {
  static const char* const kNames[] = {"invalid",        "float",         "double",
                                       "char",           "unsigned char", "int16",
                                       "unsigned int16", "int32",         "unsigned int32"};
  return kNames[std::clamp<int>(type, 0, kUnsignedInt32)];
}
MString MGeometry::semanticString(Semantic semantic) {
  static const char* const kNames[] = {"invalid", "position", "normal",    "texture",
                                       "color",   "tangent",  "bitangent", "tangent with sign"};
  return kNames[std::clamp<int>(semantic, 0, kTangentWithSign)];
}
MVertexBuffer* MGeometry::createVertexBuffer(const MVertexBufferDescriptor& descriptor) {
  if (descriptor.dataTypeSize() == 0 || descriptor.dimension() < 1) return nullptr;
  vertices_.push_back(std::make_unique<MVertexBuffer>(descriptor));
  return vertices_.back().get();
}
int MGeometry::vertexBufferCount() const {
  return static_cast<int>(vertices_.size());
}
const MVertexBuffer* MGeometry::vertexBuffer(int index) const {
  return at(vertices_, index);
}
MVertexBuffer* MGeometry::vertexBuffer(int index) {
  return at(vertices_, index);
}
bool MGeometry::deleteVertexBuffer(int index) {
  return removeFrom(vertices_, index);
}
MIndexBuffer* MGeometry::createIndexBuffer(DataType type) {
  indices_.push_back(std::make_unique<MIndexBuffer>(type));
  return indices_.back().get();
}
int MGeometry::indexBufferCount() const {
  return static_cast<int>(indices_.size());
}
const MIndexBuffer* MGeometry::indexBuffer(int index) const {
  return at(indices_, index);
}
MIndexBuffer* MGeometry::indexBuffer(int index) {
  return at(indices_, index);
}
bool MGeometry::deleteIndexBuffer(int index) {
  return removeFrom(indices_, index);
}

unsigned int MVertexBufferDescriptor::dataTypeSize() const {
  return sizeOf(dataType_);
}
bool MVertexBufferDescriptorList::getDescriptor(int index,
                                                MVertexBufferDescriptor& descriptor) const {
  if (index < 0 || index >= length()) return false;
  descriptor = list_[static_cast<std::size_t>(index)];
  return true;
}
bool MVertexBufferDescriptorList::append(const MVertexBufferDescriptor& descriptor) {
  list_.push_back(descriptor);
  return true;
}
bool MVertexBufferDescriptorList::removeAt(int index) {
  if (index < 0 || index >= length()) return false;
  list_.erase(list_.begin() + index);
  return true;
}

void* MVertexBuffer::acquire(unsigned int size, bool) {
  count_ = size;
  bytes_.assign(std::size_t{size} * descriptor_.dataTypeSize() *
                    static_cast<std::size_t>(std::max(descriptor_.dimension(), 0)),
                0);
  return bytes_.data();
}
void MVertexBuffer::commit(void*) {}
MStatus MVertexBuffer::update(const void* buffer, unsigned int destOffset, unsigned int numVerts,
                              bool truncateIfSmaller) {
  return replaceIn(
      bytes_, count_,
      descriptor_.dataTypeSize() * static_cast<unsigned int>(std::max(descriptor_.dimension(), 0)),
      buffer, destOffset, numVerts, truncateIfSmaller);
}
void* MVertexBuffer::map() {
  return bytes_.data();
}
void* MIndexBuffer::acquire(unsigned int size, bool) {
  count_ = size;
  bytes_.assign(std::size_t{size} * sizeOf(type_), 0);
  return bytes_.data();
}
void MIndexBuffer::commit(void*) {}
MStatus MIndexBuffer::update(const void* buffer, unsigned int destOffset, unsigned int numIndices,
                             bool truncateIfSmaller) {
  return replaceIn(bytes_, count_, sizeOf(type_), buffer, destOffset, numIndices,
                   truncateIfSmaller);
}
void* MIndexBuffer::map() {
  return bytes_.data();
}

const unsigned int MRenderItem::sDormantFilledDepthPriority = 0;
const unsigned int MRenderItem::sDormantWireDepthPriority = 1;
const unsigned int MRenderItem::sHiliteWireDepthPriority = 2;
const unsigned int MRenderItem::sActiveWireDepthPriority = 3;
const unsigned int MRenderItem::sActiveLineDepthPriority = 4;
const unsigned int MRenderItem::sActivePointDepthPriority = 5;
const unsigned int MRenderItem::sSelectionDepthPriority = 6;

MRenderItem* MRenderItem::Create(const MString& name, RenderItemType type,
                                 MGeometry::Primitive primitive) {
  auto* item = new MRenderItem;
  item->name_ = name;
  item->type_ = type;
  item->primitive_ = primitive;
  return item;
}
MRenderItem* MRenderItem::Create(const MString& name, MGeometry::Primitive primitive,
                                 MGeometry::DrawMode mode, bool raise) {
  MRenderItem* item = Create(name, NonMaterialSceneItem, primitive);
  item->mode_ = mode;
  if (raise) item->priority_ = sActiveWireDepthPriority;
  return item;
}
void MRenderItem::Destroy(MRenderItem*& item) {
  delete item;
  item = nullptr;
}
bool MRenderItem::setShader(const MShaderInstance* shader, const MString*) {
  shader_ = const_cast<MShaderInstance*>(shader);
  return true;
}
bool MRenderItem::unsetShader() {
  shader_ = nullptr;
  return true;
}
bool MRenderItem::setMatrix(const MMatrix* matrix) {
  hasMatrix_ = matrix != nullptr;
  if (matrix) matrix_ = *matrix;
  return true;
}

MRenderItemList::MRenderItemList() = default;
MRenderItemList::~MRenderItemList() {
  clear();
}
int MRenderItemList::indexOf(const MString& name) const {
  for (std::size_t i = 0; i < items_.size(); ++i)
    if (items_[i]->name() == name) return static_cast<int>(i);
  return -1;
}
int MRenderItemList::indexOf(const MString& name, MGeometry::Primitive primitive,
                             MGeometry::DrawMode mode) const {
  for (std::size_t i = 0; i < items_.size(); ++i)
    if (items_[i]->name() == name && items_[i]->primitive() == primitive &&
        items_[i]->drawMode() == mode)
      return static_cast<int>(i);
  return -1;
}
const MRenderItem* MRenderItemList::itemAt(int index) const {
  return index >= 0 && index < length() ? items_[static_cast<std::size_t>(index)] : nullptr;
}
MRenderItem* MRenderItemList::itemAt(int index) {
  return index >= 0 && index < length() ? items_[static_cast<std::size_t>(index)] : nullptr;
}
bool MRenderItemList::append(MRenderItem* item) {
  if (!item || std::find(items_.begin(), items_.end(), item) != items_.end()) return false;
  items_.push_back(item);
  return true;
}
bool MRenderItemList::removeAt(int index) {
  if (!itemAt(index)) return false;
  delete items_[static_cast<std::size_t>(index)];
  items_.erase(items_.begin() + index);
  return true;
}
void MRenderItemList::clear() {
  for (MRenderItem* item : items_) delete item;
  items_.clear();
}

}  // namespace MHWRender
