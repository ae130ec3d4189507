#include "host/modelling/declare/declaration.h"
#include "host/ops/uv/report.h"
#include "host/ops/uv/stretch_color.h"
#include "host/ops/uv/uv_ids.h"

namespace host::modelling {

namespace {

/// One colour a face, in a colour set that becomes the current one.
Result<void> paint(HistoryContext& context) {
  const auto set = ops::findUvSet(context.mesh, context.text("uvSetName"));
  if (!set) return failWith(set.error());
  const std::string name = context.text("colorSetName");
  mesh::Mesh& mesh = context.mesh;
  const std::vector<float> stretch = ops::faceStretch(mesh, *set);
  mesh::ColorSet colors;
  colors.name = name.empty() ? "uvStretch" : name;
  colors.colors.reserve(at(mesh.faceCount()));
  colors.cornerIds.reserve(at(mesh.cornerCount()));
  constexpr mesh::Color4f kWithoutUvs{0.25f, 0.25f, 0.25f, 1};
  for (FaceId f = 0; f < mesh.faceCount(); ++f) {
    const bool hasUvs = mesh.cornerUv(*set, mesh.firstCorner(f)) != kNone;
    colors.colors.push_back(hasUvs && !stretch.empty() ? ops::stretchColor(stretch[at(f)])
                                                       : kWithoutUvs);
    colors.cornerIds.insert(colors.cornerIds.end(), at(mesh.faceSize(f)), f);
  }
  int at = mesh.findColorSet(colors.name);
  if (at < 0)
    at = mesh.addColorSet(std::move(colors));
  else
    mesh.setColorSet(at, std::move(colors));
  mesh.setCurrentColorSet(at);
  return {};
}

Result<void> showColors(Context& context, const ParsedArgs& args, Node&, const MeshItem& item,
                        const std::vector<Index>&) {
  const auto set = ops::findUvSet(item.mesh, args.text("uvSetName"));
  if (!set) return failWith(set.error());
  return context.document.graph().set(item.path.node()->plug("displayColors"),
                                      dg::Value(std::int64_t{1}));
}

}  // namespace

/// This host's own: what a view shows of a map's stretch. It follows what changes below it in the
/// history; deleting the node ends it.
void polyUvStretchColor(Declarations& add) {
  add("polyUVStretchColor",
      "Colours faces by how their UVs stretch them: blue squeezed, red stretched.")
      .node("polyUVStretchColor", typeCode("PUSC"), "polyModifierUV")
      .takes(ComponentType::Face)
      .parameter(text("colorSetName", "cs"), "the colour set that is filled; empty: uvStretch")
      .afterFlags(showColors)
      .trial("", "object")
      .operation(paint);
}

}  // namespace host::modelling
