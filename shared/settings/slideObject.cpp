#include "shared/settings/slideObject.h"

#include <maya/MObjectHandle.h>

namespace {

struct heldObject {
  MDagPath path;
  MObjectHandle node;
};

heldObject& held() {
  static heldObject object;
  return object;
}

}  // namespace

MDagPath slideObject::current() {
  const heldObject& object = held();
  return object.node.isValid() && object.path.isValid() ? object.path : MDagPath();
}

void slideObject::set(const MDagPath& mesh) {
  held() = mesh.isValid() ? heldObject{mesh, MObjectHandle(mesh.node())} : heldObject();
}
