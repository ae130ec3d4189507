#pragma once

#include <maya/detail/FnTypes.h>

/// Names the kinds of objects; each has function sets that work on it.
class MFn {
 public:
  enum Type {
#define MAYA_FN_TYPE_(name) name,
    MAYA_FN_TYPES_(MAYA_FN_TYPE_)
#undef MAYA_FN_TYPE_
        kLast
  };
};
