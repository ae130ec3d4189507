#include <algorithm>
#include <cmath>

#include "host/base/cancel.h"
#include "host/base/messages.h"
#include "host/builtins/common/command.h"
#include "host/edits/time.h"
#include "host/io/picture_file.h"
#include "host/workspace/workspace.h"

namespace host::builtins {
namespace {

using workspace::View;
using workspace::Views;
using workspace::workspaceOf;

/// What is written: where, in which format, and at which frames.
struct Job {
  io::PictureFormat format = io::PictureFormat::Png;
  std::vector<double> seconds;  ///< the times asked for; empty: the scene as it is
  std::string base, completeName;
  int padding = 4;
};

Result<std::vector<double>> timesOf(Context& context, const ParsedArgs& args) {
  std::vector<double> times;
  for (int use = 0; use < args.uses("frame"); ++use)
    times.push_back(args.values("frame", use).front().floatValue());
  if (!args.has("startTime") && !args.has("endTime")) return times;
  const double rate = context.document.units().framesPerSecond();
  const double first = args.real("startTime", 1 / rate), last = args.real("endTime", first);
  constexpr double kMostFrames = 1e6;
  if (last < first || (last - first) * rate > kMostFrames)
    return fail("playblast: there are no frames from {:g} to {:g}.", first * rate, last * rate);
  const auto count = std::lround((last - first) * rate) + 1;
  for (long i = 0; i < count; ++i) times.push_back(first + static_cast<double>(i) / rate);
  return times;
}

Result<Job> jobOf(Context& context, const ParsedArgs& args) {
  Job job;
  job.base = args.text("filename", "playblast");
  job.completeName = args.text("completeFilename");
  const std::string kind = args.text("format", "image");
  if (kind != "image")
    return fail("playblast: the format \"{}\" is not available; use \"image\"", kind);
  // A complete name says its format; the flag does for numbered files.
  const std::string compression = args.text("compression", "png");
  const auto named = io::pictureFormatOf(job.completeName);
  const auto wanted = io::pictureFormat(compression);
  if (!wanted)
    return fail(
        "playblast: the compression \"{}\" is not available; use \"png\", \"jpg\", "
        "\"bmp\" or \"tif\"",
        compression);
  if (named && args.has("compression") && *named != *wanted)
    return fail("playblast: {} is no name for a picture of the kind \"{}\"", job.completeName,
                compression);
  if (!job.completeName.empty() && !named && !args.has("compression"))
    postMessage(MessageKind::Warning,
                fmt::format("{} names none of the formats png, jpg, bmp and tif: it is a PNG file",
                            job.completeName));
  job.format = named.value_or(wanted.value_or(io::PictureFormat::Png));
  auto times = timesOf(context, args);
  if (!times) return failWith(times.error());
  job.seconds = std::move(*times);
  if (!job.completeName.empty() && job.seconds.size() > 1)
    return fail("playblast: {} frames do not go into the one file {}; use -filename.",
                job.seconds.size(), job.completeName);
  job.padding = std::clamp(args.integer("framePadding", 4), 0, 9);
  return job;
}

Result<View> viewOf(Context& context, const ParsedArgs& args) {
  Views& views = workspaceOf(context.session).views;
  View view = views.active();
  if (args.has("editorPanelName")) {
    const View* named = views.find(args.text("editorPanelName"));
    if (!named) return fail("playblast: there is no panel named {}", args.text("editorPanelName"));
    view = *named;
  }
  view.options.axisGizmo = args.boolean("showOrnaments", true);
  return view;
}

Result<viewport::PortSize> sizeOf(const View& view, const ParsedArgs& args) {
  viewport::PortSize size = view.port;
  if (args.has("widthHeight"))
    size = {args.integer("widthHeight"), args.integer("widthHeight", 0, 1)};
  const double percent = args.integer("percent", 100) / 100.0;
  size = {static_cast<int>(size.width * percent), static_cast<int>(size.height * percent)};
  if (size.width < 1 || size.height < 1)
    return fail("playblast: a picture of {} x {} pixels", size.width, size.height);
  return size;
}

/// The scene at other times while it lives: nobody can tell afterwards.
class OtherTime {
 public:
  explicit OtherTime(scene::Document& document)
      : document_(document), unrecorded_(document.journal(), nullptr) {
    if (const auto now = edits::currentTime(document_)) before_ = *now;
  }
  ~OtherTime() {
    if (hasMoved_) (void)edits::setCurrentTime(document_, before_);
  }
  OtherTime(const OtherTime&) = delete;
  OtherTime& operator=(const OtherTime&) = delete;
  Result<void> go(double seconds) {
    hasMoved_ = true;
    return edits::setCurrentTime(document_, seconds);
  }

 private:
  scene::Document& document_;
  const scene::Journal::Scope unrecorded_;
  double before_ = 0;
  bool hasMoved_ = false;
};

CommandResult playblast(Context& context, const ParsedArgs& args) {
  const auto job = jobOf(context, args);
  if (!job) return failWith(job.error());
  const auto view = viewOf(context, args);
  if (!view) return failWith(view.error());
  const auto size = sizeOf(*view, args);
  if (!size) return failWith(size.error());

  Views& views = workspaceOf(context.session).views;
  const std::string extension(io::pictureExtension(job->format));
  const double rate = context.document.units().framesPerSecond();
  const auto drawInto = [&](const std::string& file) -> Result<void> {
    auto image = workspace::renderView(context.document, views, *view, *size);
    if (!image) return failWith(image.error());
    return io::writePicture(file, {image->width, image->height, std::move(image->rgba)},
                            job->format, args.integer("quality", 90));
  };
  const auto fileAt = [&](double seconds) {
    if (!job->completeName.empty()) return job->completeName;
    return fmt::format("{}.{:0{}}.{}", job->base, std::lround(seconds * rate), job->padding,
                       extension);
  };
  if (job->seconds.empty()) {
    const std::string file = fileAt(1 / rate);
    HOST_TRY(drawInto(file));
    return mel::Value(file);
  }
  OtherTime time(context.document);
  LongWork work("Playblast", job->seconds.size());
  for (const double seconds : job->seconds) {
    if (isCancelled()) return cancelled();
    HOST_TRY(time.go(seconds));
    HOST_TRY(drawInto(fileAt(seconds)));
    work.advance();
  }
  if (job->seconds.size() == 1) return mel::Value(fileAt(job->seconds.front()));
  return mel::Value(job->base + "." + std::string(at(job->padding), '#') + "." + extension);
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
                  .multiUse()
                  .flag("st", "startTime", {ArgType::Time}, kCreate)
                  .flag("et", "endTime", {ArgType::Time}, kCreate)
                  .flag("fp", "framePadding", {ArgType::Int}, kCreate)
                  .flag("cc", "clearCache", {ArgType::Bool}, kCreate)
                  .flag("v", "viewer", {ArgType::Bool}, kCreate)
                  .flag("os", "offScreen", {}, kCreate)
                  .flag("orn", "showOrnaments", {ArgType::Bool}, kCreate)
                  .flag("fo", "forceOverwrite", {}, kCreate)
                  .flag("epn", "editorPanelName", {ArgType::Name}, kCreate),
              playblast);
}

}  // namespace host::builtins
