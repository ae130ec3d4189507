#pragma once

#include <maya/MDagPath.h>
#include <maya/MMatrix.h>
#include <maya/MSelectionMask.h>
#include <maya/MString.h>
#include <maya/MTypes.h>
#include <maya/MUserData.h>

#include <memory>
#include <vector>

namespace host::api {
struct DrawDoor;
}

class MBoundingBox;

namespace MHWRender {

class MShaderInstance;
class MVertexBuffer;
class MVertexBufferDescriptor;
class MIndexBuffer;

/// Vertex streams and index buffers that a geometry override fills.
class MGeometry {
 public:
  enum Primitive {
    kInvalidPrimitive,
    kPoints,
    kLines,
    kLineStrip,
    kTriangles,
    kTriangleStrip,
    kAdjacentTriangles,
    kAdjacentTriangleStrip,
    kAdjacentLines,
    kAdjacentLineStrip,
    kPatch
  };
  /// Values combine.
  enum DrawMode {
    kWireframe = 1 << 0,
    kShaded = 1 << 1,
    kTextured = 1 << 2,
    kBoundingBox = 1 << 3,
    kSelectionOnly = 1 << 4,
    kAll = kWireframe | kShaded | kTextured | kBoundingBox
  };
  enum DataType {
    kInvalidType,
    kFloat,
    kDouble,
    kChar,
    kUnsignedChar,
    kInt16,
    kUnsignedInt16,
    kInt32,
    kUnsignedInt32
  };
  enum Semantic {
    kInvalidSemantic,
    kPosition,
    kNormal,
    kTexture,
    kColor,
    kTangent,
    kBitangent,
    kTangentWithSign
  };

  MGeometry();
  ~MGeometry();
  MGeometry(const MGeometry&) = delete;
  MGeometry& operator=(const MGeometry&) = delete;

  static MString primitiveString(Primitive primitive);
  static MString dataTypeString(DataType type);
  static MString semanticString(Semantic semantic);

  /// Buffers are the geometry's own and go with it.
  MVertexBuffer* createVertexBuffer(const MVertexBufferDescriptor& descriptor);
  int vertexBufferCount() const;
  const MVertexBuffer* vertexBuffer(int index) const;
  MVertexBuffer* vertexBuffer(int index);
  bool deleteVertexBuffer(int index);
  MIndexBuffer* createIndexBuffer(DataType type);
  int indexBufferCount() const;
  const MIndexBuffer* indexBuffer(int index) const;
  MIndexBuffer* indexBuffer(int index);
  bool deleteIndexBuffer(int index);

 private:
  std::vector<std::unique_ptr<MVertexBuffer>> vertices_;
  std::vector<std::unique_ptr<MIndexBuffer>> indices_;
};

/// What one stream of vertex data holds.
class MVertexBufferDescriptor {
 public:
  MVertexBufferDescriptor() = default;
  MVertexBufferDescriptor(const MString& bufferName, MGeometry::Semantic semantic,
                          MGeometry::DataType dataType, int dimension)
      : name_(bufferName), semantic_(semantic), dataType_(dataType), dimension_(dimension) {}

  MString name() const { return name_; }
  void setName(const MString& name) { name_ = name; }
  MGeometry::Semantic semantic() const { return semantic_; }
  void setSemantic(MGeometry::Semantic semantic) { semantic_ = semantic; }
  MString semanticName() const { return semanticName_; }
  void setSemanticName(const MString& name) { semanticName_ = name; }
  MGeometry::DataType dataType() const { return dataType_; }
  void setDataType(MGeometry::DataType type) { dataType_ = type; }
  /// Bytes of one number.
  unsigned int dataTypeSize() const;
  int dimension() const { return dimension_; }
  void setDimension(int dimension) { dimension_ = dimension; }
  /// Streams lie one by one here, never interleaved.
  int offset() const { return 0; }
  void setOffset(int) {}
  int stride() const { return dimension_; }
  void setStride(int) {}
  bool equals(const MVertexBufferDescriptor& other) const {
    return name_ == other.name_ && semantic_ == other.semantic_ && dataType_ == other.dataType_ &&
           dimension_ == other.dimension_;
  }

 private:
  MString name_, semanticName_;
  MGeometry::Semantic semantic_ = MGeometry::kInvalidSemantic;
  MGeometry::DataType dataType_ = MGeometry::kInvalidType;
  int dimension_ = 0;
};

class MVertexBufferDescriptorList {
 public:
  int length() const { return static_cast<int>(list_.size()); }
  bool getDescriptor(int index, MVertexBufferDescriptor& descriptor) const;
  bool append(const MVertexBufferDescriptor& descriptor);
  bool removeAt(int index);
  void clear() { list_.clear(); }

 private:
  std::vector<MVertexBufferDescriptor> list_;
};

/// One stream of vertex data, in memory until the view takes it.
class MVertexBuffer {
 public:
  explicit MVertexBuffer(const MVertexBufferDescriptor& descriptor) : descriptor_(descriptor) {}
  const MVertexBufferDescriptor& descriptor() const { return descriptor_; }
  unsigned int vertexCount() const { return count_; }
  /// Memory for so many vertices, to be written and given back by `commit`.
  void* acquire(unsigned int size, bool writeOnly = true);
  void commit(void* buffer);
  MStatus update(const void* buffer, unsigned int destOffset, unsigned int numVerts,
                 bool truncateIfSmaller);
  void* map();
  void unmap() {}
  void unload() {}
  /// There is no buffer of a graphics library behind it.
  void* resourceHandle() const { return nullptr; }

 private:
  friend struct host::api::DrawDoor;
  MVertexBufferDescriptor descriptor_;
  std::vector<unsigned char> bytes_;
  unsigned int count_ = 0;
};

/// Which vertices make the primitives.
class MIndexBuffer {
 public:
  explicit MIndexBuffer(MGeometry::DataType type) : type_(type) {}
  MGeometry::DataType dataType() const { return type_; }
  unsigned int size() const { return count_; }
  void* acquire(unsigned int size, bool writeOnly = true);
  void commit(void* buffer);
  MStatus update(const void* buffer, unsigned int destOffset, unsigned int numIndices,
                 bool truncateIfSmaller);
  void* map();
  void unmap() {}
  void unload() {}
  void* resourceHandle() const { return nullptr; }

 private:
  friend struct host::api::DrawDoor;
  MGeometry::DataType type_;
  std::vector<unsigned char> bytes_;
  unsigned int count_ = 0;
};

/// One thing that is drawn: primitives of one kind with one shader.
class MRenderItem {
 public:
  enum RenderItemType {
    InternalItem,
    InternalMaterialItem,
    MaterialSceneItem,
    NonMaterialSceneItem,
    DecorationItem,
    OverrideNonMaterialItem
  };
  static const unsigned int sDormantFilledDepthPriority;
  static const unsigned int sDormantWireDepthPriority;
  static const unsigned int sHiliteWireDepthPriority;
  static const unsigned int sActiveWireDepthPriority;
  static const unsigned int sActiveLineDepthPriority;
  static const unsigned int sActivePointDepthPriority;
  static const unsigned int sSelectionDepthPriority;

  static MRenderItem* Create(const MString& name, RenderItemType type,
                             MGeometry::Primitive primitive);
  /// The older form: `raise` puts it over what lies at its depth.
  static MRenderItem* Create(const MString& name, MGeometry::Primitive primitive,
                             MGeometry::DrawMode mode, bool raise);
  static void Destroy(MRenderItem*& item);

  MString name() const { return name_; }
  RenderItemType type() const { return type_; }
  MGeometry::Primitive primitive() const { return primitive_; }
  MGeometry::Primitive primitive(int& stride) const {
    stride = 0;
    return primitive_;
  }
  void setPrimitive(MGeometry::Primitive primitive) { primitive_ = primitive; }
  MGeometry::DrawMode drawMode() const { return mode_; }
  void setDrawMode(MGeometry::DrawMode mode) { mode_ = mode; }
  unsigned int depthPriority() const { return priority_; }
  void depthPriority(unsigned int priority) { priority_ = priority; }
  bool isEnabled() const { return isEnabled_; }
  void enable(bool on) { isEnabled_ = on; }

  /// The shader is the manager's and must live as long as it is used here.
  bool setShader(const MShaderInstance* shader, const MString* customStreamName = nullptr);
  MShaderInstance* getShader() const { return shader_; }
  bool unsetShader();
  /// Instead of the object's matrix; null for that one.
  bool setMatrix(const MMatrix* matrix);
  void associateWithIndexBuffer(const MIndexBuffer* buffer) const { indices_ = buffer; }
  const MDagPath& sourceDagPath() const { return path_; }
  void setCustomData(MUserData* data) { data_ = data; }
  MUserData* customData() const { return data_; }

  // Views cast no shadows, and pick whole objects.
  bool castsShadows() const { return false; }
  void castsShadows(bool) {}
  bool receivesShadows() const { return false; }
  void receivesShadows(bool) {}
  bool excludedFromPostEffects() const { return true; }
  void setExcludedFromPostEffects(bool) {}
  void setSelectionMask(const MSelectionMask& mask) { mask_ = mask; }
  MSelectionMask selectionMask() const { return mask_; }

 private:
  friend struct host::api::DrawDoor;
  friend class MRenderItemList;
  MRenderItem() = default;
  MString name_;
  RenderItemType type_ = NonMaterialSceneItem;
  MGeometry::Primitive primitive_ = MGeometry::kTriangles;
  MGeometry::DrawMode mode_ = MGeometry::kAll;
  unsigned int priority_ = 0;
  bool isEnabled_ = true, hasMatrix_ = false;
  MShaderInstance* shader_ = nullptr;
  mutable const MIndexBuffer* indices_ = nullptr;
  MMatrix matrix_;
  MDagPath path_;
  MSelectionMask mask_;
  MUserData* data_ = nullptr;
};

/// The items of one object, kept from frame to frame. They are the list's own.
class MRenderItemList {
 public:
  MRenderItemList();
  ~MRenderItemList();
  MRenderItemList(const MRenderItemList&) = delete;
  MRenderItemList& operator=(const MRenderItemList&) = delete;

  int length() const { return static_cast<int>(items_.size()); }
  /// -1 when there is none of that name.
  int indexOf(const MString& name) const;
  int indexOf(const MString& name, MGeometry::Primitive primitive, MGeometry::DrawMode mode) const;
  const MRenderItem* itemAt(int index) const;
  MRenderItem* itemAt(int index);
  bool append(MRenderItem* item);
  bool removeAt(int index);
  void clear();

 private:
  friend struct host::api::DrawDoor;
  std::vector<MRenderItem*> items_;
};

/// What a view needs of an object's geometry to draw its items.
class MGeometryRequirements {
 public:
  const MVertexBufferDescriptorList& vertexRequirements() const { return vertices_; }
  bool addVertexRequirement(const MVertexBufferDescriptor& descriptor) {
    return vertices_.append(descriptor);
  }

 private:
  MVertexBufferDescriptorList vertices_;
};

}  // namespace MHWRender
