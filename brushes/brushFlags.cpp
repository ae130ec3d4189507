#include "brushes/brushFlags.h"

#include <maya/MArgParser.h>
#include <maya/MDistance.h>
#include <maya/MGlobal.h>
#include <maya/MString.h>
#include <maya/MSyntax.h>

#include <charconv>

#include "shared/mesh/mathHelper.h"

namespace {

using set = brushSettings;

constexpr const char* kSpaces[] = {"screen", "world", nullptr};
constexpr const char* kPressures[] = {"none", "radius", "strength", "both", nullptr};
constexpr const char* kDistances[] = {"volume", "surface", nullptr};
constexpr const char* kAxes[] = {"x", "y", "z", nullptr};
constexpr const char* kMirrorSpaces[] = {"object", "world", nullptr};
constexpr const char* kTurns[] = {"fixed", "stroke", "pen", nullptr};

constexpr double kLargestRadius = 1e6;

brushFlag row(const char* shortName, const char* longName, brushFlag::takes kind,
              const char* help) {
  brushFlag flag;
  flag.shortName = shortName;
  flag.longName = longName;
  flag.kind = kind;
  flag.help = help;
  return flag;
}
brushFlag yesNo(const char* shortName, const char* longName, bool set::*box, const char* help) {
  brushFlag flag = row(shortName, longName, brushFlag::kYesNo, help);
  flag.box = box;
  return flag;
}
brushFlag choice(const char* shortName, const char* longName, int set::*whole,
                 const char* const* words, const char* help) {
  brushFlag flag = row(shortName, longName, words ? brushFlag::kChoice : brushFlag::kMode, help);
  flag.whole = whole;
  flag.words = words;
  return flag;
}
brushFlag number(const char* shortName, const char* longName, double set::*place, double low,
                 double high, const char* help, brushFlag::takes kind = brushFlag::kNumber) {
  brushFlag flag = row(shortName, longName, kind, help);
  flag.number = place;
  flag.low = low;
  flag.high = high;
  return flag;
}
brushFlag whole(const char* shortName, const char* longName, int set::*place, int low, int high,
                const char* help) {
  brushFlag flag = row(shortName, longName, brushFlag::kWhole, help);
  flag.whole = place;
  flag.low = low;
  flag.high = high;
  return flag;
}
brushFlag text(const char* shortName, const char* longName, std::string set::*place,
               const char* help) {
  brushFlag flag = row(shortName, longName, brushFlag::kText, help);
  flag.text = place;
  return flag;
}
brushFlag ramp(const char* shortName, const char* longName, falloffCurve set::*place,
               const char* help) {
  brushFlag flag = row(shortName, longName, brushFlag::kRamp, help);
  flag.ramp = place;
  return flag;
}

std::vector<brushFlag> makeFlags() {
  return {
      choice("mo", "mode", &set::mode, nullptr,
             "what a stroke does; the words depend on the brush"),
      number("r", "radius", &set::radius, 0.0, kLargestRadius,
             "radius in the world, in the current linear unit; counts with `-radiusSpace world`",
             brushFlag::kLength),
      number("sr", "screenRadius", &set::screenRadius, 0.0, 10000.0,
             "radius in pixels; counts with `-radiusSpace screen`"),
      choice("rs", "radiusSpace", &set::radiusSpace, kSpaces, "which of the two radii counts"),
      number("st", "strength", &set::strength, 0.0, 1.0, "how much a stroke does"),
      yesNo("inv", "invert", &set::invert,
            "pulls instead of pushing, spreads instead of pinching; `Ctrl` turns it over"),
      ramp("fo", "falloff", &set::falloff,
           "from the centre to the rim: smooth, linear, sharp, round, flat, or a ramp "
           "\"value,position,interpolation,...\" as gradient controls have it"),
      number("sp", "spacing", &set::spacing, 0.01, 2.0, "way between dabs, in radii"),
      number("sm", "smoothing", &set::smoothing, 0.0, 1.0, "how far the pointer's way is smoothed"),
      choice("pr", "pressure", &set::pressure, kPressures, "what the pen's pressure scales"),
      choice("di", "distance", &set::distance, kDistances,
             "whether the radius is measured through space or along the surface"),
      yesNo("is", "islands", &set::islands,
            "with `-distance volume`: brushes what lies within the radius but does not hang "
            "together with the place under the pointer, too"),
      yesNo("bf", "backFaces", &set::backFaces, "brushes what faces away from the viewer, too"),
      yesNo("mi", "mirror", &set::mirror, "brushes both sides of a plane"),
      choice("ma", "mirrorAxis", &set::mirrorAxis, kAxes, "the axis that is 0 on the plane"),
      choice("ms", "mirrorSpace", &set::mirrorSpace, kMirrorSpaces,
             "the plane is the object's or the world's"),
      yesNo("lb", "lockBorders", &set::lockBorders, "borders stay where they are"),
      yesNo("pi", "pins", &set::pins, "pinned vertices and UVs stay where they are"),
      text(
          "al", "alpha", &set::alpha,
          "image that weighs the brush: a file, or a name in the module's data/modelingToolAlphas; "
          "empty: none"),
      choice("tu", "stampTurn", &set::stampTurn, kTurns,
             "whether the image stands upright, turns with the stroke or with the pen's tilt"),
      number("ta", "stampAngle", &set::stampAngle, -360.0, 360.0,
             "degrees that the image is turned on top, counter-clockwise"),
      whole("ri", "relaxIterations", &set::relaxIterations, 1, 50, "rounds of relaxing a dab"),
      yesNo("ws", "wholeShells", &set::wholeShells, "UV brushes: a shell moves as one"),
  };
}

std::string join(const char* const* words) {
  std::string all;
  for (const char* const* word = words; *word; ++word) {
    if (word != words) all += word[1] ? ", " : " or ";
    all += *word;
  }
  return all;
}

std::string textOf(double value) {
  char digits[32];
  return std::string(digits, std::to_chars(digits, digits + sizeof digits, value).ptr);
}

MStatus refuse(const brushFlag& flag, const std::string& why) {
  MGlobal::displayError((std::string("-") + flag.longName + " " + why).c_str());
  return MS::kInvalidParameter;
}

MStatus refuseRange(const brushFlag& flag, double scale, double given) {
  return refuse(flag, "takes " + textOf(flag.low * scale) + " to " + textOf(flag.high * scale) +
                          ", not " + textOf(given * scale));
}

int placeOf(const char* const* words, const MString& wanted) {
  for (int i = 0; words[i]; ++i)
    if (wanted == words[i]) return i;
  return -1;
}

/// Takes one flag's argument into the settings.
MStatus take(const MArgParser& arguments, const brushFlag& flag, const char* const* modes,
             brushSettings& settings) {
  MStatus status;
  switch (flag.kind) {
    case brushFlag::kYesNo:
      return arguments.getFlagArgument(flag.longName, 0, settings.*flag.box);
    case brushFlag::kWhole: {
      int value = 0;
      status = arguments.getFlagArgument(flag.longName, 0, value);
      if (status != MS::kSuccess) return status;
      if (!(value >= flag.low && value <= flag.high)) return refuseRange(flag, 1.0, value);
      settings.*flag.whole = value;
      return status;
    }
    case brushFlag::kChoice:
    case brushFlag::kMode: {
      MString word;
      status = arguments.getFlagArgument(flag.longName, 0, word);
      if (status != MS::kSuccess) return status;
      const char* const* words = flag.words ? flag.words : modes;
      const int place = placeOf(words, word);
      if (place < 0) return refuse(flag, "takes " + join(words) + ", not '" + word.asChar() + "'");
      settings.*flag.whole = place;
      return status;
    }
    case brushFlag::kNumber:
    case brushFlag::kLength: {
      double value = 0.0, scale = 1.0;
      if (flag.kind == brushFlag::kLength) {
        MDistance length;
        status = arguments.getFlagArgument(flag.longName, 0, length);
        value = length.asCentimeters();
        scale = static_cast<double>(mathHelper().unitsPerCentimetre());
      } else {
        status = arguments.getFlagArgument(flag.longName, 0, value);
      }
      if (status != MS::kSuccess) return status;
      if (!(value >= flag.low && value <= flag.high)) return refuseRange(flag, scale, value);
      settings.*flag.number = value;
      return status;
    }
    case brushFlag::kText: {
      MString given;
      status = arguments.getFlagArgument(flag.longName, 0, given);
      settings.*flag.text = given.asChar();
      return status;
    }
    case brushFlag::kRamp: {
      MString given;
      std::string problem;
      status = arguments.getFlagArgument(flag.longName, 0, given);
      if (status == MS::kSuccess && !(settings.*flag.ramp).setText(given.asChar(), problem))
        return refuse(flag, problem);
      return status;
    }
  }
  return MS::kInvalidParameter;
}

MSyntax::MArgType typeOf(brushFlag::takes kind) {
  switch (kind) {
    case brushFlag::kYesNo:
      return MSyntax::kBoolean;
    case brushFlag::kWhole:
      return MSyntax::kLong;
    case brushFlag::kNumber:
      return MSyntax::kDouble;
    case brushFlag::kLength:
      return MSyntax::kDistance;
    default:
      return MSyntax::kString;
  }
}

}  // namespace

const std::vector<brushFlag>& brushFlags() {
  static const std::vector<brushFlag> flags = makeFlags();
  return flags;
}

MStatus addBrushFlags(MSyntax& syntax) {
  for (const brushFlag& flag : brushFlags()) {
    const MStatus status = syntax.addFlag(flag.shortName, flag.longName, typeOf(flag.kind));
    if (status != MS::kSuccess) return status;
  }
  return MS::kSuccess;
}

MStatus editBrushFlags(const MArgParser& arguments, const char* const* modes,
                       brushSettings& settings) {
  brushSettings wanted = settings;
  for (const brushFlag& flag : brushFlags()) {
    if (!arguments.isFlagSet(flag.longName)) continue;
    const MStatus status = take(arguments, flag, modes, wanted);
    if (status != MS::kSuccess) return status;
  }
  settings = wanted;
  return MS::kSuccess;
}

std::string brushFlagValue(const brushFlag& flag, const char* const* modes,
                           const brushSettings& settings) {
  switch (flag.kind) {
    case brushFlag::kYesNo:
      return settings.*flag.box ? "1" : "0";
    case brushFlag::kWhole:
      return std::to_string(settings.*flag.whole);
    case brushFlag::kChoice:
      return flag.words[settings.*flag.whole];
    case brushFlag::kMode:
      return modes[settings.*flag.whole];
    case brushFlag::kNumber:
      return textOf(settings.*flag.number);
    case brushFlag::kLength:
      return textOf(
          MDistance(settings.*flag.number, MDistance::kCentimeters).as(MDistance::uiUnit()));
    case brushFlag::kText:
      return settings.*flag.text;
    case brushFlag::kRamp:
      return (settings.*flag.ramp).text();
  }
  return {};
}

std::string brushFlagRow(const brushFlag& flag, const char* const* modes) {
  constexpr const char* kKinds[] = {"yesNo",  "whole",  "choice", "choice",
                                    "number", "length", "text",   "ramp"};
  const double scale = flag.kind == brushFlag::kLength
                           ? MDistance(1.0, MDistance::kCentimeters).as(MDistance::uiUnit())
                           : 1.0;
  std::string words;
  const char* const* each = flag.kind == brushFlag::kMode ? modes : flag.words;
  for (; each && *each; ++each) words += (words.empty() ? "" : ",") + std::string(*each);
  return std::string(flag.longName) + "|" + kKinds[flag.kind] + "|" + textOf(flag.low * scale) +
         "|" + textOf(flag.high * scale) + "|" + words + "|" + flag.help;
}

std::string brushFlagTable() {
  const brushSettings unset;
  std::string table = "| flag | takes | at first | |\n|---|---|---|---|\n";
  for (const brushFlag& flag : brushFlags()) {
    table += std::string("| `-") + flag.longName + "` `-" + flag.shortName + "` | ";
    if (flag.kind == brushFlag::kYesNo)
      table += "0 or 1";
    else if (flag.kind == brushFlag::kChoice)
      table += join(flag.words);
    else if (flag.kind == brushFlag::kMode)
      table += "a word";
    else if (flag.kind == brushFlag::kText)
      table += "a text";
    else if (flag.kind == brushFlag::kRamp)
      table += "a ramp";
    else
      table += textOf(flag.low) + " to " + textOf(flag.high);
    const std::string first =
        flag.kind == brushFlag::kMode ? "the brush's first" : brushFlagValue(flag, nullptr, unset);
    table += " | " + first + " | " + flag.help + " |\n";
  }
  return table;
}
