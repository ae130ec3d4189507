#include "host/app/unwrap.h"

#include <charconv>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include "host/app/options.h"
#include "host/app/progress.h"
#include "host/base/cancel.h"
#include "host/builtins/uv/uv_picture.h"
#include "host/io/obj_reader.h"
#include "host/io/obj_writer.h"
#include "host/io/png_writer.h"
#include "host/io/tiff_writer.h"
#include "host/io/whole_file.h"
#include "host/ops/uv/unwrap.h"

namespace host::app {
namespace {

namespace fs = std::filesystem;

struct UnwrapJob {
  std::vector<std::string> inputs;
  std::string output, seams, report, picture;
  double packing = 0.2;
  double stretch = -1;  ///< not said
  int mapSize = 1024;
};

void printUsage(FILE* out) {
  std::fprintf(
      out,
      "Usage: qxmt unwrap IN.obj ... -o OUT.obj|FOLDER [options]\n"
      "Cuts meshes open, unfolds them and lays the shells out in the unit square.\n\n"
      "  -o FILE|FOLDER        where the result goes; a folder for several inputs\n"
      "  --seams hard          cut at hard edges\n"
      "  --seams angle=DEGREES cut at edges that bend more than this\n"
      "  --seams uvs           cut where the UVs of the file part (the default if it has any)\n"
      "  --seams FILE          cut at edges given as pairs of vertex ids from 0, a line each\n"
      "                        What cannot be laid flat then is cut further by itself.\n"
      "  --stretch LIMIT       cut shells further that come out above this (4 is none; 0: never).\n"
      "                        6 for hard and angle=, which may take seams back that end inside\n"
      "                        a shell; 0 else\n"
      "  --packing PERCENT     gap between shells, 0 to 5 percent of the square (0.2)\n"
      "  --map-size PIXELS     size of the map that the report measures (1024)\n"
      "  --report FILE         a line of JSON for each mesh\n"
      "  --picture FILE        the layout as .png or .tif\n"
      "Exit status: 0 done; 1 a mesh could not be unwrapped; 2 bad usage; 3 a file could not\n"
      "be read or written.\n");
}

int complain(int status, const std::string& message) {
  std::fprintf(stderr, "qxmt unwrap: %s\n", message.c_str());
  return status;
}

template <class Number>
bool readNumber(std::string_view text, Number& number) {
  std::conditional_t<AnyId<Number>, Index, Number> read{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
  if (error != std::errc() || end != text.data() + text.size()) return false;
  number = read;
  return true;
}

/// Reads the words. @return -1 to go on
int parse(const std::vector<std::string>& words, UnwrapJob& job) {
  for (std::size_t i = 0; i < words.size(); ++i) {
    const std::string& word = words[i];
    if (word == "-h" || word == "--help") {
      printUsage(stdout);
      return kDone;
    }
    if (word.size() < 2 || word[0] != '-') {
      job.inputs.push_back(word);
      continue;
    }
    if (i + 1 == words.size())
      return complain(kBadUsage, word + " needs a value; see qxmt unwrap --help");
    const std::string& value = words[++i];
    bool isGood = true;
    if (word == "-o")
      job.output = value;
    else if (word == "--seams")
      job.seams = value;
    else if (word == "--report")
      job.report = value;
    else if (word == "--picture")
      job.picture = value;
    else if (word == "--packing")
      isGood = readNumber(value, job.packing) && job.packing >= 0 && job.packing <= 5;
    else if (word == "--stretch")
      isGood = readNumber(value, job.stretch) && (job.stretch == 0 || job.stretch >= 4.2);
    else if (word == "--map-size")
      isGood = readNumber(value, job.mapSize) && job.mapSize >= 16 && job.mapSize <= 16384;
    else
      return complain(kBadUsage, "there is no option " + word + "; see qxmt unwrap --help");
    if (!isGood) return complain(kBadUsage, value + " is no value for " + word);
  }
  if (job.inputs.empty() || job.output.empty())
    return complain(kBadUsage, "say which files to unwrap and, with -o, where the result goes");
  if (job.seams.starts_with("angle=")) {
    double degrees = 0;
    if (!readNumber(std::string_view(job.seams).substr(6), degrees) ||
        !(degrees >= 0 && degrees <= 180))
      return complain(kBadUsage, "--seams angle=DEGREES takes 0 to 180");
  }
  const std::string end = fs::path(job.picture).extension().string();
  if (!job.picture.empty() && end != ".png" && end != ".tif" && end != ".tiff")
    return complain(kBadUsage, "a picture is written as .png or .tif");
  if (job.inputs.size() > 1 && !job.picture.empty() && !fs::is_directory(job.picture))
    return complain(kBadUsage, "for several files, --picture needs a folder that is there");
  return -1;
}

Result<std::vector<std::pair<VertexId, VertexId>>> readPairs(const std::string& file) {
  std::ifstream in(file);
  if (!in) return fail("{} can't be read", file);
  std::vector<std::pair<VertexId, VertexId>> pairs;
  std::string line;
  for (int number = 1; std::getline(in, line); ++number) {
    if (const auto comment = line.find('#'); comment != std::string::npos) line.resize(comment);
    std::istringstream words(line);
    std::string first, second, more;
    if (!(words >> first)) continue;
    std::pair<VertexId, VertexId> pair;
    if (!(words >> second) || words >> more || !readNumber(first, pair.first) ||
        !readNumber(second, pair.second))
      return fail("{}:{}: two vertex ids were expected", file, number);
    pairs.push_back(pair);
  }
  return pairs;
}

Result<ops::SeamFlags> seamsOf(const UnwrapJob& job, const mesh::Mesh& mesh, std::size_t meshes) {
  if (job.seams == "hard") return ops::hardEdgeSeams(mesh);
  double degrees = 0;
  if (job.seams.starts_with("angle=") && readNumber(std::string_view(job.seams).substr(6), degrees))
    return ops::angleSeams(mesh, degrees);
  if (job.seams.empty() || job.seams == "uvs") {
    const bool hasUvs = !mesh.uvSet(mesh.currentUvSet()).cornerIds.empty();
    if (!hasUvs && job.seams == "uvs") return fail("it has no UVs to take seams from");
    return hasUvs ? ops::uvSeams(mesh, mesh.currentUvSet())
                  : ops::SeamFlags(at(mesh.edgeCount()), 0);
  }
  auto pairs = readPairs(job.seams);
  if (!pairs) return failWith(pairs.error());
  if (meshes > 1) return fail("a file of seams fits files of one object only");
  auto seams = ops::seamsBetween(mesh, *pairs);
  if (!seams) return failAt(job.seams, seams.error());
  return seams;
}

struct Unwrapped {
  io::ObjScene scene;
  std::string report;
  bool isWhole = true;
};

/// Unwraps one file's meshes; prints what had to be left.
Result<Unwrapped> unwrapScene(const UnwrapJob& job, const std::string& input, io::ObjScene scene) {
  std::vector<mesh::Mesh> meshes;
  std::vector<ops::SeamFlags> seams;
  for (const io::ObjObject& object : scene.objects) {
    auto flags = seamsOf(job, object.mesh, scene.objects.size());
    if (!flags) return failWith(flags.error());
    seams.push_back(std::move(*flags));
    meshes.push_back(object.mesh);
  }
  if (meshes.empty()) return fail("there is no mesh in it");
  ops::UnwrapOptions options;
  options.packing = job.packing;
  options.mapSize = job.mapSize;
  const bool isAngle = job.seams.starts_with("angle=");
  options.dropsSlits = isAngle && job.stretch != 0;
  options.mostStretch = job.stretch >= 0 ? job.stretch : isAngle || job.seams == "hard" ? 6 : 0;
  auto results = ops::unwrap(meshes, std::move(seams), options);
  if (!results) return failWith(results.error());
  Unwrapped out{std::move(scene), {}, true};
  for (std::size_t i = 0; i < meshes.size(); ++i) {
    io::ObjObject& object = out.scene.objects[i];
    object.mesh = std::move(meshes[i]);
    const ops::UnwrapResult& result = (*results)[i];
    const std::string name = object.name.empty() ? fs::path(input).stem().string() : object.name;
    out.report += ops::uvReportJson(result.report, name) + "\n";
    for (const std::string& sentence : result.left) complain(kScriptFailed, name + ": " + sentence);
    if (result.facesWithoutUvs > 0)
      complain(kScriptFailed,
               fmt::format("{}: {} faces without area have no UVs", name, result.facesWithoutUvs));
    out.isWhole = out.isWhole && result.left.empty();
    std::fprintf(stderr,
                 "%s: %d shells, %d cut open, %d cut further, stretch %.4f, coverage %.1f %%\n",
                 name.c_str(), result.shells, result.opened, result.relieved,
                 result.report.symmetricDirichlet, 100 * result.report.coverage);
  }
  return out;
}

Result<void> writePicture(const UnwrapJob& job, const std::string& file,
                          const io::ObjScene& scene) {
  builtins::UvPictureOptions options;
  options.width = options.height = job.mapSize;
  options.fill = builtins::UvPictureOptions::Fill::Shells;
  options.line = {40, 40, 46};
  options.hasBackground = true;
  const mesh::Mesh& first = scene.objects.front().mesh;
  io::Image image = builtins::drawUvs(first, first.currentUvSet(), options);
  for (std::size_t i = 1; i < scene.objects.size(); ++i)
    builtins::drawUvsOver(image, scene.objects[i].mesh, scene.objects[i].mesh.currentUvSet(),
                          options);
  return fs::path(file).extension() == ".png" ? io::writePng(file, image)
                                              : io::writeTiff(file, image);
}

/// Where a file's result goes; empty and complained about when nowhere.
std::string outputFor(const UnwrapJob& job, const std::string& input) {
  const bool isFolder = job.inputs.size() > 1 || fs::is_directory(job.output);
  if (!isFolder) return job.output;
  std::error_code error;
  fs::create_directories(job.output, error);
  if (!fs::is_directory(job.output)) return {};
  return (fs::path(job.output) / fs::path(input).filename()).string();
}

int unwrapFile(const UnwrapJob& job, const std::string& input, std::string& reports) {
  const std::string output = outputFor(job, input);
  if (output.empty()) return complain(kFileFailed, "the folder " + job.output + " can't be made");
  auto scene = io::readObj(input);
  if (!scene) return complain(kFileFailed, scene.error().message);
  auto unwrapped = unwrapScene(job, input, std::move(*scene));
  if (!unwrapped) return complain(kScriptFailed, input + ": " + unwrapped.error().message);
  if (isCancelled()) return complain(kScriptFailed, "Interrupted.");
  if (auto written = io::writeObj(output, unwrapped->scene); !written)
    return complain(kFileFailed, written.error().message);
  reports += unwrapped->report;
  if (!job.picture.empty()) {
    const std::string picture =
        fs::is_directory(job.picture)
            ? (fs::path(job.picture) / fs::path(input).stem()).string() + ".png"
            : job.picture;
    if (auto drawn = writePicture(job, picture, unwrapped->scene); !drawn)
      return complain(kFileFailed, drawn.error().message);
  }
  return unwrapped->isWhole ? kDone : kScriptFailed;
}

}  // namespace

int runUnwrap(const std::vector<std::string>& arguments) {
  UnwrapJob job;
  if (const int ended = parse(arguments, job); ended >= 0) return ended;
  if (job.inputs.size() > 1) {
    std::set<std::string> names;
    for (const std::string& input : job.inputs)
      if (!names.insert(fs::path(input).filename().string()).second)
        return complain(kBadUsage, "two inputs are called " + fs::path(input).filename().string());
  }
  std::signal(SIGINT, [](int) { requestCancel(); });
  showProgressOnTerminal();
  int status = kDone;
  std::string reports;
  for (const std::string& input : job.inputs) {
    status = std::max(status, unwrapFile(job, input, reports));
    if (isCancelled()) break;
  }
  if (!job.report.empty() && !isCancelled())
    if (auto written = io::writeFileAtomically(job.report, reports); !written)
      return complain(kFileFailed, written.error().message);
  return status;
}

}  // namespace host::app
