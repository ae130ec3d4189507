#include <cmath>
#include <filesystem>

#include "host/builtins/common/command.h"
#include "host/io/png_writer.h"
#include "host/workspace/workspace.h"

namespace host::builtins {
namespace {

using workspace::View;
using workspace::Views;
using workspace::workspaceOf;

namespace fs = std::filesystem;

/// The file a picture goes to: as given when complete, else with frame number and extension.
std::string pictureFile(Context& context, const ParsedArgs& args) {
  if (args.has("completeFilename")) return args.text("completeFilename");
  const std::string base = args.text("filename", "playblast");
  const double rate = context.document.units().framesPerSecond();
  const double frame = args.has("frame") ? args.real("frame") * rate : 1;
  return base + fmt::format(".{:04}.png", std::lround(frame));
}

CommandResult playblast(Context& context, const ParsedArgs& args) {
  const std::string file = pictureFile(context, args);
  const std::string format = args.text("format", "image");
  const std::string compression = args.text("compression", "png");
  if (format != "image")
    return fail("playblast: the format \"{}\" is not available; use \"image\"", format);
  if (compression != "png")
    return fail("playblast: the compression \"{}\" is not available; use \"png\"", compression);

  Views& views = workspaceOf(context.session).views;
  View view = views.active();
  if (args.has("editorPanelName")) {
    const View* named = views.find(args.text("editorPanelName"));
    if (!named) return fail("playblast: there is no panel named {}", args.text("editorPanelName"));
    view = *named;
  }
  viewport::PortSize size = view.port;
  if (args.has("widthHeight"))
    size = {args.integer("widthHeight"), args.integer("widthHeight", 0, 1)};
  const double percent = args.integer("percent", 100) / 100.0;
  size = {static_cast<int>(size.width * percent), static_cast<int>(size.height * percent)};
  if (size.width < 1 || size.height < 1)
    return fail("playblast: a picture of {} x {} pixels", size.width, size.height);
  view.options.axisGizmo = args.boolean("showOrnaments", true);

  auto image = workspace::renderView(context.document, views, view, size);
  if (!image) return failWith(image.error());
  HOST_TRY(io::writePng(file, {image->width, image->height, std::move(image->rgba)}));
  return mel::Value(file);
}

}  // namespace

void registerPlayblast(CommandRegistry& registry) {
  defineQuery(registry, "playblast",
              Syntax()
                  .flag("f", "filename", {ArgType::String}, kCreate)
                  .flag("cf", "completeFilename", {ArgType::String}, kCreate)
                  .flag("fmt", "format", {ArgType::String}, kCreate)
                  .flag("c", "compression", {ArgType::String}, kCreate)
                  .flag("wh", "widthHeight", {ArgType::Int, ArgType::Int}, kCreate)
                  .flag("p", "percent", {ArgType::Int}, kCreate)
                  .flag("qlt", "quality", {ArgType::Int}, kCreate)
                  .flag("fr", "frame", {ArgType::Time}, kCreate)
                  .flag("v", "viewer", {ArgType::Bool}, kCreate)
                  .flag("os", "offScreen", {}, kCreate)
                  .flag("orn", "showOrnaments", {ArgType::Bool}, kCreate)
                  .flag("fo", "forceOverwrite", {}, kCreate)
                  .flag("epn", "editorPanelName", {ArgType::Name}, kCreate),
              playblast);
}

}  // namespace host::builtins
