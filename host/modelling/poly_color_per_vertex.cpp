// The node that keeps colours in the history; the command is beside those of colour sets.
#include "host/mesh/adjacency.h"
#include "host/modelling/declare/corner_values.h"
#include "host/modelling/declare/declaration.h"

namespace host::modelling {

namespace {

using mesh::Color4f;

/// Channels below this mean that nothing is said of a component.
constexpr double kUnsaid = -1;

std::optional<Color4f> colorAt(CornerValues& values, const Plug& compound, const Plug& alpha) {
  const auto rgb = values.triple(compound);
  const double a = values.number(alpha);
  if (rgb.x <= kUnsaid && rgb.y <= kUnsaid && rgb.z <= kUnsaid) return std::nullopt;
  return Color4f{static_cast<float>(rgb.x), static_cast<float>(rgb.y), static_cast<float>(rgb.z),
                 static_cast<float>(a)};
}

Result<void> color(HistoryContext& context) {
  mesh::Mesh& mesh = context.mesh;
  const std::string name = context.text("colorSetName");
  int index = name.empty() ? mesh.currentColorSet() : mesh.findColorSet(name);
  if (index < 0) index = mesh.addColorSet({name.empty() ? "colorSet1" : name, 4, false, {}, {}});
  mesh.setCurrentColorSet(index);
  mesh::ColorSet& set = mesh.editColorSet(index);
  set.clamped = context.boolean("clamped");
  const int representation = context.integer("representation");
  if (representation == 1 || representation == 3 || representation == 4)
    set.representation = representation;
  if (set.cornerIds.empty()) set.cornerIds.assign(at(mesh.cornerCount()), kNone);
  const auto give = [&](std::span<const CornerId> corners, const Color4f& value) {
    for (const CornerId corner : corners)
      set.cornerIds[corner] = static_cast<Index>(set.colors.size());
    if (!corners.empty()) set.colors.push_back(value);
  };
  CornerValues values(context.block);
  const Plug all = context.node().plug("colorPerVertex").child(0);
  for (const VertexId vertex : values.indices(all)) {
    if (vertex < 0 || vertex >= mesh.vertexCount()) continue;
    const Plug element = all.element(vertex);
    if (const auto whole = colorAt(values, element.child(0), element.child(1)))
      give(mesh.adjacency().vertexCorners(vertex), *whole);
    const Plug faces = element.child(2);
    for (const FaceId face : values.indices(faces)) {
      if (face < 0 || face >= mesh.faceCount()) continue;
      const CornerId corner = mesh.adjacency().findCorner(face, vertex);
      const Plug own = faces.element(face);
      const auto value = colorAt(values, own.child(0), own.child(1));
      if (corner != kNone && value) give(std::span(&corner, 1), *value);
    }
  }
  dropUnusedColors(set);
  return values.fault();
}

}  // namespace

void polyColorPerVertex(Declarations& add) {
  const auto rgb = [](const char* longName, const char* shortName, const std::string& child,
                      const std::string& shortChild) {
    return numbers(longName, shortName, "float3",
                   {single(child + "R", shortChild + "r", kUnsaid),
                    single(child + "G", shortChild + "g", kUnsaid),
                    single(child + "B", shortChild + "b", kUnsaid)});
  };
  add("", "Colours vertices and corners.")
      .node("polyColorPerVertex", typeCode("PCPV"))
      .parameter(
          compound("colorPerVertex", "cpvx",
                   {array(compound(
                       "vertexColor", "vclr",
                       {rgb("vertexColorRGB", "vrgb", "vertexColor", "vxc"),
                        single("vertexAlpha", "vxal", 1),
                        array(compound("vertexFaceColor", "vfcl",
                                       {rgb("vertexFaceColorRGB", "frgb", "vertexFaceColor", "vfc"),
                                        single("vertexFaceAlpha", "vfal", 1)}))}))}),
          "the colours")
      .noFlag()
      .parameter(text("colorSetName", "cn"), "the set; empty: the current one")
      .noFlag()
      .parameter(boolean("clamped", "clam", true), "colours are shown between 0 and 1")
      .noFlag()
      .parameter(choice("representation", "rprt", {"Unused", "A", "Unused", "RGB", "RGBA"}, 3),
                 "what of colours is in use")
      .noFlag()
      .recordedOnly()
      .operation(color);
}

}  // namespace host::modelling
