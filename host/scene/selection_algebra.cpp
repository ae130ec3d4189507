#include "host/scene/selection_algebra.h"

namespace host::scene {

SelectionList unionOf(const SelectionList& a, const SelectionList& b) {
  SelectionList sum = a;
  sum.merge(b, SelectionMerge::Add);
  return sum;
}

SelectionList differenceOf(const SelectionList& a, const SelectionList& b) {
  SelectionList rest = a;
  rest.merge(b, SelectionMerge::Remove);
  return rest;
}

SelectionList intersectionOf(const SelectionList& a, const SelectionList& b) {
  return differenceOf(a, differenceOf(a, b));
}

}  // namespace host::scene
