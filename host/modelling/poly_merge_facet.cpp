#include "host/modelling/declare/declaration.h"
#include "host/ops/topology/merge_faces.h"

namespace host::modelling {

namespace {

Result<void> merge(HistoryContext& context) {
  const auto mode = context.choice("mergeMode", 7);
  if (!mode) return failWith(mode.error());
  const FaceId first = context.integer("firstFacet"), second = context.integer("secondFacet");
  if (first < 0 || second < 0) return fail("say which faces: -firstFacet and -secondFacet");
  // 0 to 2 bring the middles together, 3 to 5 only the planes.
  auto made = ops::mergeFaces(
      context.mesh, first, second,
      {.moves = *mode < 6, .place = static_cast<ops::MergePlace>(*mode % 3), .centers = *mode < 3});
  if (!made) return failWith(made.error());
  context.makes(*std::move(made));
  return {};
}

}  // namespace

void polyMergeFacet(Declarations& add) {
  add("polyMergeFacet", "Makes a face a hole of another; two polygons go around the hole.")
      .node("polyMergeFace", typeCode("PMEF"))
      .takes(ComponentType::Face)
      .leaves(Leaves::Made)
      .parameter(choice("mergeMode", "mm",
                        {"First", "Halfway", "Last", "First projected", "Halfway projected",
                         "Last projected", "None"},
                        6),
                 "0 to 2 the hole, both or the face move to the other's middle, 3 to 5 only to "
                 "its plane, 6 nothing moves")
      .parameter(boolean("useAreaTolerance", "uat", true), "of older files")
      .noFlag()
      .recordedOnly()
      .parameter(integer("firstFacet", "ff", -1), "the number of the face")
      .parameter(integer("secondFacet", "sf", -1), "the number of the one that becomes a hole")
      .trial("-ff 0 -sf 2", "object")
      .trial("-ff 0 -sf 2 -mm 0", "object")
      .trial("-ff 0 -sf 2 -mm 4", "object")
      .operation(merge);
}

}  // namespace host::modelling
