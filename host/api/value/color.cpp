#include <maya/MColor.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr float kHueRange = 360.0F;

MColor fromHsv(float hue, float saturation, float value) {
  const float h = (hue / kHueRange - std::floor(hue / kHueRange)) * 6.0F;
  const auto channel = [&](float offset) {
    const float k = std::fmod(offset + h, 6.0F);
    return value - value * saturation * std::clamp(std::min(k, 4.0F - k), 0.0F, 1.0F);
  };
  return {channel(5.0F), channel(3.0F), channel(1.0F)};
}

void toHsv(const MColor& c, float& hue, float& saturation, float& value) {
  const float low = std::min({c.r, c.g, c.b});
  value = std::max({c.r, c.g, c.b});
  const float span = value - low;
  saturation = value > 0.0F ? span / value : 0.0F;
  if (!(span > 0.0F))
    hue = 0.0F;
  else if (value == c.r)
    hue = (c.g - c.b) / span;
  else if (value == c.g)
    hue = 2.0F + (c.b - c.r) / span;
  else
    hue = 4.0F + (c.r - c.g) / span;
  hue *= kHueRange / 6.0F;
  if (hue < 0.0F) hue += kHueRange;
}

}  // namespace

const MColor MColor::kOpaqueBlack(0.0F, 0.0F, 0.0F, 1.0F);

MColor::MColor(MColorType model, float c0, float c1, float c2, float alpha) {
  set(model, c0, c1, c2, alpha);
}

MColor::MColor(MColorType model, unsigned char c0, unsigned char c1, unsigned char c2,
               unsigned char alpha) {
  const auto unit = [](unsigned char c) { return static_cast<float>(c) / 255.0F; };
  set(model, unit(c0) * (model == kHSV ? kHueRange : 1.0F), unit(c1), unit(c2), unit(alpha));
}

bool MColor::set(MColorType model, float c0, float c1, float c2) {
  return set(model, c0, c1, c2, model == kCMYK ? 0.0F : 1.0F);
}

bool MColor::set(MColorType model, float c0, float c1, float c2, float alpha) {
  switch (model) {
    case kRGB:
      *this = MColor(c0, c1, c2, alpha);
      return true;
    case kHSV:
      *this = fromHsv(c0, c1, c2);
      a = alpha;
      return true;
    case kCMY:
      *this = MColor(1.0F - c0, 1.0F - c1, 1.0F - c2, alpha);
      return true;
    case kCMYK: {  // the fourth value is black here
      const float rest = 1.0F - alpha;
      *this = MColor((1.0F - c0) * rest, (1.0F - c1) * rest, (1.0F - c2) * rest);
      return true;
    }
  }
  return false;
}

bool MColor::get(MColorType model, float& c0, float& c1, float& c2) const {
  float alpha = 0.0F;
  return get(model, c0, c1, c2, alpha);
}

bool MColor::get(MColorType model, float& c0, float& c1, float& c2, float& alpha) const {
  alpha = a;
  switch (model) {
    case kRGB:
      c0 = r;
      c1 = g;
      c2 = b;
      return true;
    case kHSV:
      toHsv(*this, c0, c1, c2);
      return true;
    case kCMY:
      c0 = 1.0F - r;
      c1 = 1.0F - g;
      c2 = 1.0F - b;
      return true;
    case kCMYK: {
      const float light = std::max({r, g, b});
      const auto ink = [light](float c) { return light > 0.0F ? (light - c) / light : 0.0F; };
      c0 = ink(r);
      c1 = ink(g);
      c2 = ink(b);
      alpha = 1.0F - light;
      return true;
    }
  }
  return false;
}

MStatus MColor::get(float dest[4]) const {
  dest[0] = r;
  dest[1] = g;
  dest[2] = b;
  dest[3] = a;
  return MStatus::kSuccess;
}

std::ostream& operator<<(std::ostream& os, const MColor& c) {
  return os << '[' << c.r << ", " << c.g << ", " << c.b << ", " << c.a << ']';
}
