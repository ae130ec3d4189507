// uvSnapshot: a picture of the UV layout.
#include <filesystem>

#include "host/builtins/common/command.h"
#include "host/builtins/uv/uv_picture.h"
#include "host/io/picture_file.h"
#include "host/nodes/mesh_components.h"
#include "host/ops/uv/uv_ids.h"

namespace host::builtins {

using nodes::MeshItem;
using nodes::meshItems;

namespace {

/// The file's name and format: the flag's, else the name's end, else png. A name without an end
/// gets the format's.
Result<std::pair<std::string, io::PictureFormat>> fileOf(const ParsedArgs& args) {
  std::filesystem::path name = args.text("name", "outUV");
  std::string word = args.text("fileFormat");
  if (word.empty() && name.has_extension()) word = name.extension().string().substr(1);
  const std::optional format = word.empty() ? io::PictureFormat::Png : io::pictureFormat(word);
  if (!format)
    return fail("uvSnapshot: pictures are written as png, jpg, bmp or tif, not '{}'.", word);
  if (!name.has_extension()) name += fmt::format(".{}", io::pictureExtension(*format));
  return std::pair{name.string(), *format};
}

Result<UvPictureOptions> optionsOf(const ParsedArgs& args) {
  constexpr int kMostPixels = 16384;
  UvPictureOptions options;
  options.width = args.integer("xResolution", 512);
  options.height = args.integer("yResolution", 512);
  if (options.width < 1 || options.height < 1 || options.width > kMostPixels ||
      options.height > kMostPixels)
    return fail("uvSnapshot: a picture has 1 to {} pixels each way.", kMostPixels);
  options.isAntialiased = args.has("antiAliased");
  const char* names[] = {"redColor", "greenColor", "blueColor"};
  for (std::size_t i = 0; i < 3; ++i)
    options.line[i] = static_cast<std::uint8_t>(std::clamp(args.integer(names[i], 255), 0, 255));
  options.uMin = args.real("uMin", 0);
  options.uMax = args.real("uMax", 1);
  options.vMin = args.real("vMin", 0);
  options.vMax = args.real("vMax", 1);
  if (!(options.uMin < options.uMax) || !(options.vMin < options.vMax))
    return fail(ErrorKind::BadArgument,
                "uvSnapshot: the range must be from a smaller to a greater number.");
  const std::string colors = args.text("colorBy", "none");
  if (colors == "shell")
    options.fill = UvPictureOptions::Fill::Shells;
  else if (colors == "stretch")
    options.fill = UvPictureOptions::Fill::Stretch;
  else if (colors != "none")
    return fail("uvSnapshot: -colorBy is none, shell or stretch, not '{}'.", colors);
  return options;
}

/// Whole tiles around all UVs, where no flag says the range.
void coverAllTiles(const ParsedArgs& args, const std::vector<std::pair<mesh::Mesh, int>>& meshes,
                   UvPictureOptions& options) {
  double uMin = 0, uMax = 1, vMin = 0, vMax = 1;
  for (const auto& [mesh, set] : meshes)
    for (const mesh::Vec2f& p : mesh.uvSet(set).points) {
      if (!std::isfinite(p.u) || !std::isfinite(p.v)) continue;
      uMin = std::min<double>(uMin, std::floor(p.u));
      uMax = std::max<double>(uMax, std::ceil(p.u));
      vMin = std::min<double>(vMin, std::floor(p.v));
      vMax = std::max<double>(vMax, std::ceil(p.v));
    }
  if (!args.has("uMin")) options.uMin = uMin;
  if (!args.has("uMax")) options.uMax = uMax;
  if (!args.has("vMin")) options.vMin = vMin;
  if (!args.has("vMax")) options.vMax = vMax;
}

CommandResult uvSnapshot(Context& context, const ParsedArgs& args) {
  auto file = fileOf(args);
  if (!file) return failWith(std::move(file.error()));
  auto options = optionsOf(args);
  if (!options) return failWith(std::move(options.error()));
  auto items = meshItems(context.document.selection());
  if (!items) return failWith(std::move(items.error()));
  if (items->empty()) return fail("uvSnapshot: select polygon objects.");
  if (std::filesystem::exists(file->first) && !args.has("overwrite"))
    return fail("uvSnapshot: '{}' is there already; -overwrite replaces it.", file->first);
  std::vector<std::pair<mesh::Mesh, int>> meshes;
  for (const MeshItem& item : *items) {
    const auto set = ops::findUvSet(item.mesh, args.text("uvSetName"));
    if (!set)
      return fail("uvSnapshot: '{}': {}", item.path.transform().partialName(), set.error().message);
    meshes.emplace_back(item.mesh, *set);
  }
  if (args.has("entireUVRange")) coverAllTiles(args, meshes, *options);
  io::Image image = drawUvs(meshes[0].first, meshes[0].second, *options);
  for (std::size_t i = 1; i < meshes.size(); ++i)
    drawUvsOver(image, meshes[i].first, meshes[i].second, *options);
  const auto written = io::writePicture(file->first, image, file->second);
  if (!written) return failAt("uvSnapshot", written.error());
  return mel::Value();
}

}  // namespace

void registerUvSnapshot(CommandRegistry& registry) {
  Syntax syntax;
  syntax.flag("aa", "antiAliased")
      .flag("b", "blueColor", {ArgType::Int})
      .flag("euv", "entireUVRange")
      .flag("ff", "fileFormat", {ArgType::String})
      .flag("g", "greenColor", {ArgType::Int})
      .flag("n", "name", {ArgType::String})
      .flag("o", "overwrite")
      .flag("r", "redColor", {ArgType::Int})
      .flag("umx", "uMax", {ArgType::Double})
      .flag("umn", "uMin", {ArgType::Double})
      .flag("uvs", "uvSetName", {ArgType::String})
      .flag("vmx", "vMax", {ArgType::Double})
      .flag("vmn", "vMin", {ArgType::Double})
      .flag("xr", "xResolution", {ArgType::Int})
      .flag("yr", "yResolution", {ArgType::Int})
      .flag("cb", "colorBy", {ArgType::String});
  defineQuery(registry, "uvSnapshot", syntax, uvSnapshot);
}

}  // namespace host::builtins
