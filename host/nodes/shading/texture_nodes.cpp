#include "host/nodes/shading/texture_nodes.h"

#include <algorithm>
#include <cmath>

#include "host/math/placement.h"
#include "host/nodes/shading/curve_entries.h"
#include "host/nodes/shading/shade_kind.h"

namespace host::nodes {

namespace {

using math::Vec3;

AttributePtr uvPair(const std::string& longName, const std::string& shortName,
                    const std::string& childName, const std::string& childShort, double value = 0) {
  return numbers(longName, shortName, "float2",
                 {single(childName + "U", childShort + "u", value),
                  single(childName + "V", childShort + "v", value)});
}

AttributePtr uvCoordinates() {
  return numbers("uvCoord", "uv", "float2", {single("uCoord", "u"), single("vCoord", "v")});
}

AttributePtr filterSize() {
  return hidden(numbers("uvFilterSize", "fs", "float2",
                        {single("uvFilterSizeX", "fsx"), single("uvFilterSizeY", "fsy")}));
}

/// What all textures have after their own colour: the names of these inputs, in order, follow the
/// two of the coordinates.
const std::vector<std::string> kBalance = {"uvCoord",   "colorGain",       "colorOffset",
                                           "alphaGain", "alphaOffset",     "defaultColor",
                                           "invert",    "alphaIsLuminance"};
constexpr std::size_t kBalanceValues = 15;

std::vector<std::string> withBalance(std::initializer_list<const char*> own) {
  std::vector<std::string> inputs = kBalance;
  inputs.insert(inputs.end(), own.begin(), own.end());
  return inputs;
}

bool isOutside(const ShadeInputs& in) {
  return in.values[0] < kOutsideFrame || in.values[1] < kOutsideFrame;
}

/// Writes outColor and outAlpha from a texture's plain colour by its colour balance.
void balance(const ShadeInputs& in, Vec3 color, double alpha, std::span<double> out) {
  if (isOutside(in)) {
    const Vec3 outside = in.color(10);
    for (int i = 0; i < 3; ++i) out[at(i)] = outside[i];
    out[3] = 0;
    return;
  }
  const Vec3 gain = in.color(2), offset = in.color(5);
  if (in.values[13] != 0) color = Vec3{1, 1, 1} - color;
  for (int i = 0; i < 3; ++i) color[i] = color[i] * gain[i] + offset[i];
  if (in.values[14] != 0) alpha = luminance(color);
  for (int i = 0; i < 3; ++i) out[at(i)] = color[i];
  out[3] = alpha * in.values[8] + in.values[9];
}

double fraction(double x) {
  return x - std::floor(x);
}

// Two by two squares in the unit square, the first colour at its lower left and upper right.
void evaluateChecker(const ShadeInputs& in, std::span<double> out) {
  const Vec3 first = in.color(kBalanceValues), second = in.color(kBalanceValues + 3);
  const double contrast = in.values[kBalanceValues + 6];
  const bool isFirst = (fraction(in.values[0]) < 0.5) == (fraction(in.values[1]) < 0.5);
  const double share = 0.5 + (isFirst ? 0.5 : -0.5) * contrast;
  const Vec3 color = first * share + second * (1 - share);
  balance(in, color, share, out);
}

/// Where along a ramp of a type a place of the unit square is.
double alongRamp(int type, double u, double v) {
  const double x = u - 0.5, y = v - 0.5;
  constexpr double kTurn = 6.283185307179586;
  switch (type) {
    case 1:  // U
      return u;
    case 2:  // diagonal
      return 0.5 * (u + v);
    case 3:  // radial: once around
      return 0.5 + std::atan2(y, x) / kTurn;
    case 4:  // circular: from the middle to the corners
      return std::min(1.0, 2 * std::hypot(x, y) / std::sqrt(2.0));
    case 5:  // box
      return 2 * std::max(std::abs(x), std::abs(y));
    default:  // V; UxV and four corners need more than one way along
      return v;
  }
}

void evaluateRamp(const ShadeInputs& in, std::span<double> out) {
  const auto type = static_cast<int>(in.values[kBalanceValues]);
  const auto interpolation = static_cast<int>(in.values[kBalanceValues + 1]);
  const double uWave = in.values[kBalanceValues + 2], vWave = in.values[kBalanceValues + 3];
  constexpr double kTurn = 6.283185307179586;
  const double u = fraction(in.values[0]), v = fraction(in.values[1]);
  // Waves push the ramp sideways, once to and fro over the square.
  const double pushedV = v + 0.5 * uWave * std::sin(u * kTurn);
  const double pushedU = u + 0.5 * vWave * std::sin(v * kTurn);
  const double at = std::clamp(alongRamp(type, pushedU, pushedV), 0.0, 1.0);
  // Entries as rows of position, colour and the ramp's interpolation.
  std::vector<double> rows;
  for (std::size_t i = 0; i + 4 <= in.rows[0].size(); i += 4) {
    rows.insert(rows.end(), in.rows[0].begin() + static_cast<std::ptrdiff_t>(i),
                in.rows[0].begin() + static_cast<std::ptrdiff_t>(i + 4));
    rows.push_back(interpolation == 1 ? 1 : interpolation == 0 ? 0 : 2);
  }
  double color[3] = {0, 0, 0};
  CurveEntries(rows, 3).read(at, color);
  const Vec3 value{color[0], color[1], color[2]};
  balance(in, value, luminance(value), out);
}

/// How a layer lies on what is under it, one channel.
double layered(int mode, double top, double alpha, double below) {
  switch (mode) {
    case 0:  // none: the layer alone
      return top;
    case 2:  // in
      return top * alpha;
    case 3:  // out
      return top * (1 - alpha);
    case 4:  // add
      return below + top * alpha;
    case 5:  // subtract
      return below - top * alpha;
    case 6:  // multiply
      return below * (top * alpha + 1 - alpha);
    case 7:  // difference
      return std::abs(top - below) * alpha + below * (1 - alpha);
    case 8:  // lighten
      return std::max(top, below) * alpha + below * (1 - alpha);
    case 9:  // darken
      return std::min(top, below) * alpha + below * (1 - alpha);
    default:  // over
      return top * alpha + below * (1 - alpha);
  }
}

// The first layer lies on top.
void evaluateLayers(const ShadeInputs& in, std::span<double> out) {
  const std::vector<double>& rows = in.rows[0];
  constexpr std::size_t kRow = 6;  // colour, alpha, mode, visibility
  double clear = 1;
  for (std::size_t i = 0; i < 4; ++i) out[i] = 0;
  for (std::size_t end = rows.size() / kRow * kRow; end >= kRow; end -= kRow) {
    const double* row = &rows[end - kRow];
    if (row[5] == 0) continue;
    for (std::size_t channel = 0; channel < 3; ++channel)
      out[channel] = layered(static_cast<int>(row[4]), row[channel], row[3], out[channel]);
    clear *= 1 - std::clamp(row[3], 0.0, 1.0);
  }
  out[3] = in.values[0] != 0 ? luminance({out[0], out[1], out[2]}) : 1 - clear;
  for (std::size_t i = 4; i < 7; ++i) out[i] = clear;
}

struct Texel {
  Vec3 color;
  double alpha;
};

Texel texelAt(const Picture& picture, int x, int y) {
  const auto wrap = [](int at, int size) { return ((at % size) + size) % size; };
  const std::size_t row = at(picture.height - 1 - wrap(y, picture.height));
  const auto column = at(wrap(x, picture.width));
  const std::uint8_t* at =
      picture.rgba.data() + 4 * (row * static_cast<std::size_t>(picture.width) + column);
  return {{linearOfLevel(at[0]), linearOfLevel(at[1]), linearOfLevel(at[2])}, at[3] / 255.0};
}

Texel pictureAt(const Picture& picture, double u, double v) {
  const double x = fraction(u) * picture.width - 0.5, y = fraction(v) * picture.height - 0.5;
  const int left = static_cast<int>(std::floor(x)), low = static_cast<int>(std::floor(y));
  const double right = x - left, up = y - low;
  Texel sum{{}, 0};
  const auto add = [&](int column, int row, double weight) {
    const Texel texel = texelAt(picture, column, row);
    sum.color = sum.color + texel.color * weight;
    sum.alpha += texel.alpha * weight;
  };
  add(left, low, (1 - right) * (1 - up));
  add(left + 1, low, right * (1 - up));
  add(left, low + 1, (1 - right) * up);
  add(left + 1, low + 1, right * up);
  return sum;
}

// Without its picture a file texture is of its default colour, and opaque.
void evaluateFile(const ShadeInputs& in, std::span<double> out) {
  Texel texel{in.color(10), 1};
  if (in.picture && !isOutside(in)) texel = pictureAt(*in.picture, in.values[0], in.values[1]);
  balance(in, texel.color, texel.alpha, out);
  const double opacity = in.values[14] != 0 ? 1 : texel.alpha;
  for (std::size_t i = 4; i < 7; ++i) out[i] = isOutside(in) ? 1 : 1 - opacity;
}

void evaluatePlacement(const ShadeInputs& in, std::span<double> out) {
  const auto& v = in.values;
  const auto isOn = [&](std::size_t at) { return v[at] != 0; };
  const math::Placement placement{.coverageU = v[2],
                                  .coverageV = v[3],
                                  .translateFrameU = v[4],
                                  .translateFrameV = v[5],
                                  .rotateFrame = v[6],
                                  .mirrorU = isOn(7),
                                  .mirrorV = isOn(8),
                                  .stagger = isOn(9),
                                  .wrapU = isOn(10),
                                  .wrapV = isOn(11),
                                  .repeatU = v[12],
                                  .repeatV = v[13],
                                  .offsetU = v[14],
                                  .offsetV = v[15],
                                  .rotateUv = v[16]};
  const math::TextureUv uv = math::placed(placement, v[0], v[1]);
  out[0] = uv.isInside ? uv.u : 10 * kOutsideFrame;
  out[1] = uv.isInside ? uv.v : 10 * kOutsideFrame;
}

void registerTexture2d(dg::TypeRegistry& types) {
  TypeBuilder texture(types, "texture2d");
  texture.setAbstract();
  texture.type().classification = "texture/2d";
  texture.add(uvCoordinates());
  texture.add(filterSize());
  texture.add(keyable(softLimited(single("filter", "f", 1), 0, 1)));
  texture.add(keyable(softLimited(single("filterOffset", "fo"), 0, 1)));
  texture.add(boolean("invert", "i"));
  texture.add(boolean("alphaIsLuminance", "ail"));
  texture.add(keyable(color("colorGain", "cg", {1, 1, 1})));
  texture.add(keyable(color("colorOffset", "co")));
  texture.add(keyable(single("alphaGain", "ag", 1)));
  texture.add(keyable(single("alphaOffset", "ao")));
  texture.add(keyable(color("defaultColor", "dc", {0.5, 0.5, 0.5})));
  texture.add(output(color("outColor", "oc")));
  texture.add(output(single("outAlpha", "oa")));
  texture.finish();
}

void registerFile(dg::TypeRegistry& types) {
  TypeBuilder file(types, "file", "texture2d", typeCode("RTFT"));
  AttributePtr name = text("fileTextureName", "ftn");
  name->usedAsFilename = true;
  file.add(std::move(name));
  file.add(boolean("disableFileLoad", "dfl"));
  file.add(boolean("useFrameExtension", "ufe"));
  file.add(integer("frameExtension", "fe", 1));
  file.add(integer("frameOffset", "io"));
  file.add(
      choice("filterType", "ft", {"Off", "Mipmap", "Box", "Quadratic", "Quartic", "Gaussian"}, 3));
  file.add(hidden(uvPair("coverage", "c", "coverage", "c", 1)));
  file.add(hidden(uvPair("translateFrame", "tf", "translateFrame", "tf")));
  file.add(hidden(angle("rotateFrame", "rf")));
  file.add(hidden(boolean("mirrorU", "mu")));
  file.add(hidden(boolean("mirrorV", "mv")));
  file.add(hidden(boolean("stagger", "s")));
  file.add(hidden(boolean("wrapU", "wu", true)));
  file.add(hidden(boolean("wrapV", "wv", true)));
  file.add(hidden(uvPair("repeatUV", "re", "repeat", "re", 1)));
  file.add(hidden(uvPair("offset", "of", "offset", "of")));
  file.add(hidden(angle("rotateUV", "ro")));
  file.add(hidden(uvPair("noiseUV", "n", "noise", "n")));
  for (const auto& [longName, shortName] :
       {std::pair{"vertexCameraOne", "c1"}, {"vertexCameraTwo", "c2"}, {"vertexCameraThree", "c3"}})
    file.add(hidden(
        triple(longName, std::string("v") + shortName, AttributeType::Float, {}, shortName)));
  for (const auto& [longName, shortName] :
       {std::pair{"vertexUvOne", "1"}, {"vertexUvTwo", "2"}, {"vertexUvThree", "3"}})
    file.add(
        hidden(numbers(longName, std::string("vt") + shortName, "float2",
                       {single(std::string(longName) + "U", std::string("t") + shortName + "u"),
                        single(std::string(longName) + "V", std::string("t") + shortName + "v")})));
  file.add(output(color("outTransparency", "ot")));
  file.add(output(
      numbers("outSize", "os", "float2", {single("outSizeX", "osx"), single("outSizeY", "osy")})));
  evaluateBy(file, {.inputs = kBalance,
                    .arrays = {},
                    .outputs = {"outColor", "outAlpha", "outTransparency"},
                    .evaluate = evaluateFile,
                    .showsPicture = true});
  file.finish();
}

void registerPlacement(dg::TypeRegistry& types) {
  TypeBuilder place(types, "place2dTexture", {}, typeCode("RPL2"));
  place.add(uvCoordinates());
  place.add(filterSize());
  place.add(keyable(uvPair("coverage", "c", "coverage", "c", 1)));
  place.add(keyable(uvPair("translateFrame", "tf", "translateFrame", "tf")));
  place.add(keyable(angle("rotateFrame", "rf")));
  place.add(boolean("mirrorU", "mu"));
  place.add(boolean("mirrorV", "mv"));
  place.add(boolean("stagger", "s"));
  place.add(boolean("wrapU", "wu", true));
  place.add(boolean("wrapV", "wv", true));
  place.add(keyable(uvPair("repeatUV", "re", "repeat", "re", 1)));
  place.add(keyable(uvPair("offset", "of", "offset", "of")));
  place.add(keyable(angle("rotateUV", "r")));
  place.add(keyable(uvPair("noiseUV", "n", "noise", "n")));
  place.add(boolean("fast", "fa"));
  for (const auto& [longName, shortName] :
       {std::pair{"vertexUvOne", "1"}, {"vertexUvTwo", "2"}, {"vertexUvThree", "3"}})
    place.add(
        hidden(numbers(longName, std::string("vt") + shortName, "float2",
                       {single(std::string(longName) + "U", std::string("t") + shortName + "u"),
                        single(std::string(longName) + "V", std::string("t") + shortName + "v")})));
  place.add(hidden(triple("vertexCameraOne", "vc1", AttributeType::Float, {}, "c1")));
  place.add(output(numbers("outUV", "o", "float2", {single("outU", "ou"), single("outV", "ov")})));
  place.add(
      output(numbers("outUvFilterSize", "ofs", "float2",
                     {single("outUvFilterSizeX", "ofsx"), single("outUvFilterSizeY", "ofsy")})));
  evaluateBy(place,
             {.inputs = {"uvCoord", "coverage", "translateFrame", "rotateFrame", "mirrorU",
                         "mirrorV", "stagger", "wrapU", "wrapV", "repeatUV", "offset", "rotateUV"},
              .arrays = {},
              .outputs = {"outUV"},
              .evaluate = evaluatePlacement});
  place.finish();
}

void registerRamp(dg::TypeRegistry& types) {
  TypeBuilder ramp(types, "ramp", "texture2d", typeCode("RTRA"));
  ramp.add(keyable(choice("type", "t",
                          {"V Ramp", "U Ramp", "Diagonal Ramp", "Radial Ramp", "Circular Ramp",
                           "Box Ramp", "UV Ramp", "Four Corner Ramp", "Tartan Ramp"})));
  ramp.add(keyable(choice(
      "interpolation", "in",
      {"None", "Linear", "Exponential Up", "Exponential Down", "Smooth", "Bump", "Spike"}, 1)));
  ramp.add(array(compound("colorEntryList", "cel",
                          {single("position", "ep"), color("color", "ec", {1, 0, 0})})));
  ramp.add(keyable(single("uWave", "uw")));
  ramp.add(keyable(single("vWave", "vw")));
  ramp.add(keyable(single("noise", "n")));
  ramp.add(keyable(single("noiseFreq", "nf", 0.5)));
  for (const auto& [longName, shortName] :
       {std::pair{"hueNoise", "hn"}, {"satNoise", "sn"}, {"valNoise", "vn"}})
    ramp.add(keyable(single(longName, shortName)));
  for (const auto& [longName, shortName] :
       {std::pair{"hueNoiseFreq", "hnf"}, {"satNoiseFreq", "snf"}, {"valNoiseFreq", "vnf"}})
    ramp.add(keyable(single(longName, shortName, 0.5)));
  evaluateBy(ramp, {.inputs = withBalance({"type", "interpolation", "uWave", "vWave"}),
                    .arrays = {"colorEntryList"},
                    .outputs = {"outColor", "outAlpha"},
                    .evaluate = evaluateRamp});
  ramp.finish();
}

void registerLayeredTexture(dg::TypeRegistry& types) {
  TypeBuilder layers(types, "layeredTexture", {}, typeCode("LYRT"));
  layers.type().classification = "texture/other";
  layers.add(array(
      compound("inputs", "cs",
               {color("color", "c"), single("alpha", "a", 1),
                choice("blendMode", "bm",
                       {"None", "Over", "In", "Out", "Add", "Subtract", "Multiply", "Difference",
                        "Lighten", "Darken", "Saturate", "Desaturate", "Illuminate"},
                       1),
                boolean("isVisible", "iv", true)})));
  layers.add(boolean("alphaIsLuminance", "ail"));
  layers.add(color("hardwareColor", "hc", {0.5, 0.5, 0.5}));
  layers.add(output(color("outColor", "oc")));
  layers.add(output(single("outAlpha", "oa")));
  layers.add(output(color("outTransparency", "ot")));
  evaluateBy(layers, {.inputs = {"alphaIsLuminance"},
                      .arrays = {"inputs"},
                      .outputs = {"outColor", "outAlpha", "outTransparency"},
                      .evaluate = evaluateLayers});
  layers.finish();
}

/// A bump moves no surface here: the normal passes as it came.
void registerBump(dg::TypeRegistry& types) {
  TypeBuilder bump(types, "bump2d", {}, typeCode("RBU2"));
  bump.type().classification = "utility/general";
  bump.add(keyable(single("bumpValue", "bv")));
  bump.add(keyable(single("bumpDepth", "bd", 1)));
  bump.add(choice("bumpInterp", "bi", {"Bump", "Tangent Space Normals", "Object Space Normals"}));
  bump.add(single("bumpFilter", "bf", 1));
  bump.add(single("bumpFilterOffset", "bfo"));
  bump.add(boolean("adjustEdges", "ae"));
  bump.add(boolean("provide3dInfo", "p3d"));
  const Attribute* in =
      bump.add(hidden(triple("normalCamera", "n", AttributeType::Float, {0, 0, 1})));
  const Attribute* out = bump.add(output(triple("outNormal", "o", AttributeType::Float)));
  bump.affects({in, bump["bumpValue"], bump["bumpDepth"]}, {out});
  bump.type().compute = [in, out](Node& node, const Plug& plug,
                                  DataBlock& block) -> Result<Computed> {
    if (plug.attribute() != out && plug.attribute()->parent != out) return Computed::Unhandled;
    const math::Vec3 normal = block.vec3(in);
    for (int axis = 0; axis < 3; ++axis) block.output(Plug(&node, out).child(axis), normal[axis]);
    return Computed::Done;
  };
  bump.finish();
}

}  // namespace

void registerTextureNodes(dg::TypeRegistry& types) {
  registerTexture2d(types);
  registerFile(types);
  TypeBuilder checker(types, "checker", "texture2d", typeCode("RTCH"));
  checker.add(keyable(color("color1", "c1", {1, 1, 1})));
  checker.add(keyable(color("color2", "c2")));
  checker.add(keyable(limited(single("contrast", "ct", 1), 0, 1)));
  evaluateBy(checker, {.inputs = withBalance({"color1", "color2", "contrast"}),
                       .arrays = {},
                       .outputs = {"outColor", "outAlpha"},
                       .evaluate = evaluateChecker});
  checker.finish();
  registerRamp(types);
  registerLayeredTexture(types);
  registerBump(types);
  registerPlacement(types);
}

}  // namespace host::nodes
