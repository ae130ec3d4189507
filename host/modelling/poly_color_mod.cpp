#include <algorithm>
#include <cmath>

#include "host/math/ramp.h"
#include "host/modelling/declare/corner_values.h"
#include "host/modelling/declare/declaration.h"

namespace host::modelling {

namespace {

using mesh::Color4f;

/// Hue in turns, saturation and value of a colour.
struct Hsv {
  double hue = 0, saturation = 0, value = 0;
};

Hsv toHsv(const Color4f& color) {
  const double r = color.r, g = color.g, b = color.b;
  const double most = std::max({r, g, b}), spread = most - std::min({r, g, b});
  Hsv hsv{0, most > 0 ? spread / most : 0, most};
  if (!(spread > 0)) return hsv;
  if (most == r)
    hsv.hue = (g - b) / spread;
  else if (most == g)
    hsv.hue = 2 + (b - r) / spread;
  else
    hsv.hue = 4 + (r - g) / spread;
  hsv.hue /= 6;
  return hsv;
}

Color4f toColor(const Hsv& hsv, float alpha) {
  const auto channel = [&](double shift) {
    const double turn = hsv.hue + shift - std::floor(hsv.hue + shift);
    const double away = std::clamp(std::abs(turn * 6 - 3) - 1, 0.0, 1.0);
    return static_cast<float>(hsv.value * (1 - hsv.saturation * (1 - away)));
  };
  return {channel(0), channel(2.0 / 3), channel(1.0 / 3), alpha};
}

/// A curve of the node: what it makes of a channel. Without points nothing changes.
class Curve {
 public:
  Curve(CornerValues& values, const Plug& array) {
    for (const Index index : values.indices(array)) {
      const Plug point = array.element(index);
      math::RampEntry entry;
      entry.position = values.number(point.child(0));
      entry.value[0] = values.number(point.child(1));
      entry.interpolation = static_cast<math::RampInterpolation>(
          std::clamp(static_cast<int>(values.number(point.child(2))), 0, 3));
      entries_.push_back(entry);
    }
  }
  [[nodiscard]] double at(double channel) const {
    return entries_.empty() ? channel : math::rampAt(entries_, channel)[0];
  }
  void apply(float& channel) const { channel = static_cast<float>(at(double{channel})); }

 private:
  std::vector<math::RampEntry> entries_;
};

Result<void> modify(HistoryContext& context) {
  mesh::Mesh& mesh = context.mesh;
  const std::string name = context.text("baseColorName");
  const int index = name.empty() ? mesh.currentColorSet() : mesh.findColorSet(name);
  if (index < 0) return {};
  CornerValues values(context.block);
  const auto curve = [&](const char* attribute) {
    return Curve(values, context.node().plug(attribute));
  };
  const Curve red = curve("redScale"), green = curve("greenScale"), blue = curve("blueScale");
  const Curve alpha = curve("alphaScale"), intensity = curve("intensityScale");
  const double hue = context.real("huev") / 360, saturation = context.real("satv"),
               value = context.real("value");
  if (auto done = values.fault(); !done) return done;
  for (Color4f& color : mesh.editColorSet(index).colors) {
    red.apply(color.r);
    green.apply(color.g);
    blue.apply(color.b);
    alpha.apply(color.a);
    Hsv hsv = toHsv(color);
    const double bright = intensity.at(hsv.value) * value;
    if (hue == 0 && saturation == 1 && bright == hsv.value) continue;
    hsv.hue += hue;
    hsv.saturation = std::clamp(hsv.saturation * saturation, 0.0, 1.0);
    hsv.value = bright;
    color = toColor(hsv, color.a);
  }
  return {};
}

}  // namespace

void polyColorMod(Declarations& add) {
  const auto curve = [](const std::string& longName, const char* shortName) {
    return array(compound(longName, shortName,
                          {single(longName + "_Position", std::string(shortName) + "p"),
                           single(longName + "_FloatValue", std::string(shortName) + "fv"),
                           choice(longName + "_Interp", std::string(shortName) + "i",
                                  {"None", "Linear", "Smooth", "Spline"})}));
  };
  add("polyColorMod", "Changes hue, saturation, brightness and channels of a colour set.")
      .node("polyColorMod", typeCode("PCMD"))
      .takes(ComponentType::Face)
      .parameter(text("baseColorName", "bcn"), "the set; empty: the current one")
      .parameter(curve("redScale", "r"), "the curve that red goes by")
      .noFlag()
      .parameter(curve("greenScale", "g"), "the curve that green goes by")
      .noFlag()
      .parameter(curve("blueScale", "b"), "the curve that blue goes by")
      .noFlag()
      .parameter(curve("alphaScale", "a"), "the curve that alpha goes by")
      .noFlag()
      .parameter(curve("intensityScale", "n"), "the curve that the brightness goes by")
      .noFlag()
      .parameter(keyable(single("huev", "h")), "degrees by which hues turn")
      .parameter(keyable(single("satv", "s", 1)), "what saturations are multiplied by")
      .parameter(keyable(single("value", "v", 1)), "what the brightness is multiplied by")
      .trial("-h 90 -s 0.5", "object")
      .operation(modify);
}

}  // namespace host::modelling
