#pragma once

/// The coordinate spaces that calls read and write in.
class MSpace {
 public:
  enum Space {
    kInvalid = 0,
    kTransform = 1,     ///< after the shape's own transform, before its parents
    kPreTransform = 2,  ///< before any transform: the local space of the transform node
    kObject = 2,
    kPostTransform = 3,
    kWorld = 4,
    kLast = 5
  };
};
