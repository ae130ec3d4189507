#pragma once

#include <maya/MArrayDataHandle.h>
#include <maya/MDataBlock.h>
#include <maya/MDataHandle.h>

#include <array>
#include <variant>

#include "host/api/core/access.h"
#include "host/api/data/value_store.h"

namespace host::api {

/// The values that one computation, or a caller outside of one, works on.
struct BlockRep final : SharedRep {
  explicit BlockRep(dg::NodePtr nodeIn) : node(std::move(nodeIn)) {}
  const dg::NodePtr node;
  MDGContext context;
  bool isOpen = true;  ///< the computation that it was made for still runs
  /// During a computation: the input handles given out, so that a reference taken from one outlives
  /// it. They hold this block in turn until close().
  std::vector<Handle> inputs;
  bool keepsInputs = false;
  bool isEdit = false;  ///< what is written into it is an edit of the node, not a result

  void close() {
    isOpen = false;
    keepsInputs = false;
    inputs.clear();
  }
};

/// Numbers as the API hands out references to them, with the layout that its array types have.
template <class T, std::size_t Count>
struct Numbers {
  using Array = T[Count];
  Array n;
};
using HandleBuffer =
    std::variant<std::monostate, bool, char, unsigned char, short, int, MInt64, void*, float,
                 double, Numbers<short, 2>, Numbers<short, 3>, Numbers<int, 2>, Numbers<int, 3>,
                 Numbers<float, 2>, Numbers<float, 3>, Numbers<double, 2>, Numbers<double, 3>,
                 Numbers<double, 4>, MVector, MFloatVector, MMatrix, MFloatMatrix, MString>;

/// What a data handle refers to. A reference given out is to a buffer here, which goes back to the
/// store when another form is asked for, when the handle is marked clean, and at its end.
struct HandleRep final : SharedRep {
  HandleRep(StorePtr storeIn, const dg::Plug& plugIn, bool isWritableIn, Handle blockIn = {});
  ~HandleRep() override;

  /// The buffer in the form T, filled from the store when it has another form.
  template <class T>
  [[nodiscard]] T& as();
  void flush();
  void write(dg::Value value);
  void writeNumbers(const double* numbers, int count);
  /// Up to 16 numbers of a number, pair, triple or matrix; returns how many.
  int readNumbers(double* numbers) const;
  [[nodiscard]] double firstNumber() const;
  /// A handle to a child, which lives as long as this one when it is read only.
  [[nodiscard]] MDataHandle child(const dg::Plug& childPlug);
  /// The payload as an object; edits of an object of a writable handle arrive in the store.
  [[nodiscard]] MObject object();
  MStatus setObject(const MObject& data);

  const StorePtr store;
  const dg::NodePtr node;  ///< null for values of no node
  const dg::Plug plug;
  const bool isWritable;
  const Handle block;

 private:
  void flushNumbers();
  void reload();
  HandleBuffer buffer_;
  MObject object_;
  std::vector<Handle> children_;
};

[[nodiscard]] MDataHandle wrapHandle(HandleRep* rep);
[[nodiscard]] inline HandleRep* repOf(const MDataHandle& handle) {
  return Access::rep<HandleRep>(handle);
}
/// A handle with values of its own, copied from the node as evaluated.
[[nodiscard]] MDataHandle copyOfPlug(const dg::Plug& plug);
/// A handle with values of its own that starts with one leaf value.
[[nodiscard]] MDataHandle looseHandle(const dg::Plug& plug, const dg::Value& value);
/// The leaf value that a handle has now.
[[nodiscard]] dg::Value valueOf(const MDataHandle& handle);

struct ArrayRep final : SharedRep {
  ArrayRep(StorePtr storeIn, const dg::Plug& plugIn, bool isWritableIn, Handle blockIn);
  StorePtr store;
  dg::NodePtr node;
  dg::Plug plug;
  bool isWritable;
  Handle block;
  std::vector<Index> indices;
  std::size_t position = 0;
  Handle
      lastInput;  ///< the element read last, so that a reference to its value holds until the next
};

struct BuilderRep final : SharedRep {
  std::shared_ptr<LooseStore> store = std::make_shared<LooseStore>();
  dg::NodePtr node;
  dg::Plug plug;
  Handle last;  ///< the handle given out last, which may still hold what was written through a
                ///< reference
};

}  // namespace host::api
