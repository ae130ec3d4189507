#include "host/nodes/shading/utility_nodes.h"

#include <algorithm>
#include <cmath>

#include "host/nodes/shading/curve_entries.h"
#include "host/nodes/shading/shade_kind.h"

namespace host::nodes {

namespace {

using Numbers = std::span<double>;

AttributePtr xyz(const std::string& longName, const std::string& shortName, math::Vec3 value = {}) {
  return triple(longName, shortName, AttributeType::Float, value);
}

/// A kind with all its inputs before its outputs.
void define(TypeBuilder& builder, ShadeKind kind) {
  evaluateBy(builder, std::move(kind));
  builder.finish();
}

void registerReverse(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "reverse", {}, typeCode("RRVS"));
  builder.type().classification = "utility/color";
  builder.add(keyable(xyz("input", "i")));
  builder.add(output(xyz("output", "o")));
  define(builder, {.inputs = {"input"},
                   .arrays = {},
                   .outputs = {"output"},
                   .evaluate = [](const ShadeInputs& in, Numbers out) {
                     for (std::size_t i = 0; i < 3; ++i) out[i] = 1 - in.values[i];
                   }});
}

double divided(double a, double b) {
  return b == 0 ? 0 : a / b;
}

void registerMultiplyDivide(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "multiplyDivide", {}, typeCode("RMDV"));
  builder.type().classification = "utility/general";
  builder.add(
      keyable(choice("operation", "op", {"No operation", "Multiply", "Divide", "Power"}, 1)));
  builder.add(keyable(xyz("input1", "i1")));
  builder.add(keyable(xyz("input2", "i2", {1, 1, 1})));
  builder.add(output(xyz("output", "o")));
  define(builder, {.inputs = {"operation", "input1", "input2"},
                   .arrays = {},
                   .outputs = {"output"},
                   .evaluate = [](const ShadeInputs& in, Numbers out) {
                     const auto operation = static_cast<int>(in.values[0]);
                     for (std::size_t i = 0; i < 3; ++i) {
                       const double a = in.values[1 + i], b = in.values[4 + i];
                       const double power = std::pow(a, b);
                       out[i] = operation == 1   ? a * b
                                : operation == 2 ? divided(a, b)
                                : operation == 3 ? (std::isfinite(power) ? power : 0)
                                                 : a;
                     }
                   }});
}

/// Sum, difference from the first, or mean of the rows of an array, one column.
double gathered(const std::vector<double>& rows, std::size_t width, std::size_t column,
                int operation) {
  double sum = 0;
  std::size_t count = 0;
  for (std::size_t at = column; at < rows.size(); at += width, ++count)
    sum += operation == 2 && count > 0 ? -rows[at] : rows[at];
  return operation == 3 && count > 0 ? sum / static_cast<double>(count) : sum;
}

void registerPlusMinusAverage(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "plusMinusAverage", {}, typeCode("RPMA"));
  builder.type().classification = "utility/general";
  builder.add(
      keyable(choice("operation", "op", {"No operation", "Sum", "Subtract", "Average"}, 1)));
  builder.add(array(keyable(single("input1D", "i1"))));
  builder.add(array(keyable(
      numbers("input2D", "i2", "float2", {single("input2Dx", "i2x"), single("input2Dy", "i2y")}))));
  builder.add(array(keyable(
      numbers("input3D", "i3", "float3",
              {single("input3Dx", "i3x"), single("input3Dy", "i3y"), single("input3Dz", "i3z")}))));
  builder.add(output(single("output1D", "o1")));
  builder.add(output(numbers("output2D", "o2", "float2",
                             {single("output2Dx", "o2x"), single("output2Dy", "o2y")})));
  builder.add(output(numbers(
      "output3D", "o3", "float3",
      {single("output3Dx", "o3x"), single("output3Dy", "o3y"), single("output3Dz", "o3z")})));
  define(builder, {.inputs = {"operation"},
                   .arrays = {"input1D", "input2D", "input3D"},
                   .outputs = {"output1D", "output2D", "output3D"},
                   .evaluate = [](const ShadeInputs& in, Numbers out) {
                     const auto operation = static_cast<int>(in.values[0]);
                     std::size_t at = 0;
                     for (std::size_t width = 1; width <= 3; ++width)
                       for (std::size_t column = 0; column < width; ++column) {
                         const std::vector<double>& rows = in.rows[width - 1];
                         // Without an operation the first one passes.
                         out[at++] = operation == 0 ? (column < rows.size() ? rows[column] : 0)
                                                    : gathered(rows, width, column, operation);
                       }
                   }});
}

void registerCondition(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "condition", {}, typeCode("RCND"));
  builder.type().classification = "utility/general";
  builder.add(keyable(choice(
      "operation", "op",
      {"Equal", "Not Equal", "Greater Than", "Greater or Equal", "Less Than", "Less or Equal"})));
  builder.add(keyable(single("firstTerm", "ft")));
  builder.add(keyable(single("secondTerm", "st")));
  builder.add(keyable(color("colorIfTrue", "ct")));
  builder.add(keyable(color("colorIfFalse", "cf", {1, 1, 1})));
  builder.add(output(color("outColor", "oc")));
  define(builder,
         {.inputs = {"operation", "firstTerm", "secondTerm", "colorIfTrue", "colorIfFalse"},
          .arrays = {},
          .outputs = {"outColor"},
          .evaluate = [](const ShadeInputs& in, Numbers out) {
            const double a = in.values[1], b = in.values[2];
            const bool answers[] = {a == b, a != b, a > b, a >= b, a < b, a <= b};
            const auto operation = std::clamp(static_cast<int>(in.values[0]), 0, 5);
            const std::size_t from = answers[operation] ? 3 : 6;
            for (std::size_t i = 0; i < 3; ++i) out[i] = in.values[from + i];
          }});
}

void registerBlends(dg::TypeRegistry& types) {
  TypeBuilder blend(types, "blendColors", {}, typeCode("RBLC"));
  blend.type().classification = "utility/color";
  blend.add(keyable(limited(single("blender", "b", 0.5), 0, 1)));
  blend.add(keyable(color("color1", "c1", {1, 0, 0})));
  blend.add(keyable(color("color2", "c2", {0, 0, 1})));
  blend.add(output(color("output", "op")));
  define(blend, {.inputs = {"blender", "color1", "color2"},
                 .arrays = {},
                 .outputs = {"output"},
                 .evaluate = [](const ShadeInputs& in, Numbers out) {
                   for (std::size_t i = 0; i < 3; ++i)
                     out[i] =
                         in.values[1 + i] * in.values[0] + in.values[4 + i] * (1 - in.values[0]);
                 }});

  TypeBuilder gamma(types, "gammaCorrect", {}, typeCode("RGAM"));
  gamma.type().classification = "utility/color";
  gamma.add(keyable(xyz("value", "v")));
  gamma.add(keyable(xyz("gamma", "g", {1, 1, 1})));
  gamma.add(output(xyz("outValue", "o")));
  define(gamma, {.inputs = {"value", "gamma"},
                 .arrays = {},
                 .outputs = {"outValue"},
                 .evaluate = [](const ShadeInputs& in, Numbers out) {
                   for (std::size_t i = 0; i < 3; ++i)
                     out[i] = in.values[i] > 0 && in.values[3 + i] != 0
                                  ? std::pow(in.values[i], 1 / in.values[3 + i])
                                  : 0;
                 }});

  TypeBuilder bright(types, "luminance", {}, typeCode("RLUM"));
  bright.type().classification = "utility/color";
  bright.add(keyable(color("value", "v")));
  bright.add(output(single("outValue", "o")));
  define(bright,
         {.inputs = {"value"},
          .arrays = {},
          .outputs = {"outValue"},
          .evaluate = [](const ShadeInputs& in, Numbers out) { out[0] = luminance(in.color(0)); }});
}

void registerRanges(dg::TypeRegistry& types) {
  TypeBuilder clamp(types, "clamp", {}, typeCode("RCL3"));
  clamp.type().classification = "utility/color";
  clamp.add(keyable(color("min", "mn")));
  clamp.add(keyable(color("max", "mx")));
  clamp.add(keyable(color("input", "ip")));
  clamp.add(output(color("output", "op")));
  define(clamp, {.inputs = {"min", "max", "input"},
                 .arrays = {},
                 .outputs = {"output"},
                 .evaluate = [](const ShadeInputs& in, Numbers out) {
                   for (std::size_t i = 0; i < 3; ++i)
                     out[i] = std::max(std::min(in.values[6 + i], in.values[3 + i]), in.values[i]);
                 }});

  TypeBuilder range(types, "setRange", {}, typeCode("RRAN"));
  range.type().classification = "utility/general";
  range.add(keyable(xyz("value", "v")));
  range.add(keyable(xyz("min", "n")));
  range.add(keyable(xyz("max", "m")));
  range.add(keyable(xyz("oldMin", "on")));
  range.add(keyable(xyz("oldMax", "om")));
  range.add(output(xyz("outValue", "o")));
  define(range, {.inputs = {"value", "min", "max", "oldMin", "oldMax"},
                 .arrays = {},
                 .outputs = {"outValue"},
                 .evaluate = [](const ShadeInputs& in, Numbers out) {
                   for (std::size_t i = 0; i < 3; ++i) {
                     const double low = in.values[9 + i], high = in.values[12 + i];
                     const double share = divided(
                         std::clamp(in.values[i], std::min(low, high), std::max(low, high)) - low,
                         high - low);
                     out[i] = in.values[3 + i] + share * (in.values[6 + i] - in.values[3 + i]);
                   }
                 }});
}

void registerRemapValue(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "remapValue", {}, typeCode("RMPV"));
  builder.type().classification = "utility/color";
  builder.add(keyable(single("inputValue", "i")));
  builder.add(keyable(single("inputMin", "imn")));
  builder.add(keyable(single("inputMax", "imx", 1)));
  builder.add(keyable(single("outputMin", "omn")));
  builder.add(keyable(single("outputMax", "omx", 1)));
  const auto interpolation = [](const char* longName, const char* shortName) {
    return choice(longName, shortName, {"None", "Linear", "Smooth", "Spline"});
  };
  builder.add(array(compound("value", "vl",
                             {single("value_Position", "vlp"), single("value_FloatValue", "vlfv"),
                              interpolation("value_Interp", "vli")})));
  builder.add(array(compound("color", "cl",
                             {single("color_Position", "clp"), color("color_Color", "clc"),
                              interpolation("color_Interp", "cli")})));
  builder.add(output(single("outValue", "ov")));
  builder.add(output(color("outColor", "oc")));
  define(builder, {.inputs = {"inputValue", "inputMin", "inputMax", "outputMin", "outputMax"},
                   .arrays = {"value", "color"},
                   .outputs = {"outValue", "outColor"},
                   .evaluate = [](const ShadeInputs& in, Numbers out) {
                     const auto& v = in.values;
                     const double at = std::clamp(divided(v[0] - v[1], v[2] - v[1]), 0.0, 1.0);
                     const CurveEntries values(in.rows[0], 1), colors(in.rows[1], 3);
                     double share = at;
                     values.read(at, std::span(&share, 1));
                     out[0] = v[3] + share * (v[4] - v[3]);
                     colors.read(at, out.subspan(1, 3));
                   }});
}

/// What a renderer tells shading networks of the place that it is at: the UVs here; the rest stands
/// at its defaults.
void registerSamplerInfo(dg::TypeRegistry& types) {
  TypeBuilder builder(types, "samplerInfo", {}, typeCode("SINF"));
  builder.type().classification = "utility/general";
  builder.add(numbers("uvCoord", "uv", "float2", {single("uCoord", "u"), single("vCoord", "v")}));
  builder.add(xyz("pointCamera", "p"));
  builder.add(xyz("pointObj", "po"));
  builder.add(xyz("pointWorld", "pw"));
  builder.add(xyz("normalCamera", "n", {0, 0, 1}));
  builder.add(xyz("rayDirection", "r", {0, 0, 1}));
  builder.add(boolean("flippedNormal", "fn"));
  builder.add(single("facingRatio", "fr"));
  builder.finish();
}

}  // namespace

void registerUtilityNodes(dg::TypeRegistry& types) {
  registerReverse(types);
  registerMultiplyDivide(types);
  registerPlusMinusAverage(types);
  registerCondition(types);
  registerBlends(types);
  registerRanges(types);
  registerRemapValue(types);
  registerSamplerInfo(types);
}

}  // namespace host::nodes
