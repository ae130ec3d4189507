#pragma once

#include <maya/MIOStream.h>
#include <maya/MStatus.h>
#include <maya/MTypes.h>

#define MCOLOR_DEFAULT_ALPHA 1.0F

/// A colour with alpha, red, green and blue from 0 to 1.
class MColor {
 public:
  enum MColorType { kRGB, kHSV, kCMY, kCMYK };

  MColor() = default;
  MColor(const float c[3]) : r(c[0]), g(c[1]), b(c[2]) {}
  MColor(float rr, float gg = 0.0F, float bb = 0.0F, float aa = 1.0F)
      : r(rr), g(gg), b(bb), a(aa) {}
  MColor(MColorType model, float c0, float c1, float c2, float alpha = MCOLOR_DEFAULT_ALPHA);
  MColor(MColorType model, unsigned char c0, unsigned char c1, unsigned char c2,
         unsigned char alpha = 255);

  bool set(MColorType model, float c0, float c1, float c2);
  bool set(MColorType model, float c0, float c1, float c2, float alpha);
  bool get(MColorType model, float& c0, float& c1, float& c2) const;
  bool get(MColorType model, float& c0, float& c1, float& c2, float& alpha) const;
  MStatus get(float dest[4]) const;

  float& operator()(unsigned int i) { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
  float operator()(unsigned int i) const { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
  float& operator[](unsigned int i) { return (*this)(i); }
  float operator[](unsigned int i) const { return (*this)(i); }

  MColor operator*(float s) const { return {r * s, g * s, b * s, a}; }
  MColor operator/(float s) const { return {r / s, g / s, b / s, a}; }
  MColor& operator*=(float s) { return *this = *this * s; }
  MColor& operator/=(float s) { return *this = *this / s; }
  MColor operator+(const MColor& o) const { return {r + o.r, g + o.g, b + o.b}; }
  MColor operator-(const MColor& o) const { return {r - o.r, g - o.g, b - o.b}; }
  MColor operator*(const MColor& o) const { return {r * o.r, g * o.g, b * o.b}; }
  MColor operator-() const { return {-r, -g, -b, a}; }
  MColor& operator+=(const MColor& o) { return *this = *this + o; }
  MColor& operator-=(const MColor& o) { return *this = *this - o; }
  MColor& operator*=(const MColor& o) { return *this = *this * o; }
  bool operator==(const MColor& o) const { return r == o.r && g == o.g && b == o.b && a == o.a; }
  bool operator!=(const MColor& o) const { return !(*this == o); }
  friend MColor operator*(float s, const MColor& c) { return c * s; }

  static const MColor kOpaqueBlack;

  float r = 0.0F;
  float g = 0.0F;
  float b = 0.0F;
  float a = 1.0F;
};

std::ostream& operator<<(std::ostream& os, const MColor& c);
