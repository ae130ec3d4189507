#include "host/viewport/backends/gl_shaders.h"

namespace host::viewport::shaders {

namespace {

constexpr const char* kVersion = "#version 150 compatibility\n";

// Moves a view-space position towards the viewer by `pull` pixels' worth of world, along its own
// line of sight, so that its place on the screen stays. pixelSize: world length a pixel covers at
// depth 1 (perspective) or everywhere.
constexpr const char* kTransform = R"(
uniform mat4 modelView, projection;
uniform float pull, pixelSize;
uniform int orthographic;
vec4 pulled(vec3 position, float share) {
  vec4 p = modelView * vec4(position, 1.0);
  if (orthographic != 0) p.z += share * pull * pixelSize;
  else p.xyz *= 1.0 - share * pull * pixelSize;
  return p;
}
)";

}  // namespace

std::string surfaceVertex() {
  return std::string(kVersion) + kTransform + R"(
in vec3 position, normal;
in vec4 color;
in vec2 uv;
uniform mat3 normalMatrix;
uniform vec4 tint;
out vec3 viewPosition, viewNormal;
out vec4 surfaceColor;
out vec2 surfaceUv;
void main() {
  vec4 p = pulled(position, 1.0);
  viewPosition = p.xyz;
  viewNormal = normalMatrix * normal;
  surfaceColor = color * tint;
  surfaceUv = uv;
  gl_Position = projection * p;
}
)";
}

// A studio: a warm key light high on the left, a cool fill from the right, sky and floor light by
// the world's vertical, a faint rim, and a broad soft highlight. Light is added up linearly and
// compressed gently towards white.
std::string surfaceFragment() {
  return std::string(kVersion) + R"(
in vec3 viewPosition, viewNormal;
in vec4 surfaceColor;
in vec2 surfaceUv;
uniform int orthographic, lit, textured, checkerboard;
uniform vec3 worldUp;
uniform sampler2D picture;
out vec4 result;
vec3 toLinear(vec3 c) { return pow(c, vec3(2.2)); }
vec3 toScreen(vec3 c) { return pow(c, vec3(1.0 / 2.2)); }
vec3 shade(vec3 base, vec3 n, vec3 v) {
  const vec3 key = normalize(vec3(-0.50, 0.80, 0.62));
  const vec3 fill = normalize(vec3(0.85, 0.05, 0.45));
  const vec3 rim = normalize(vec3(0.35, 0.55, -0.75));
  float up = dot(n, worldUp);
  vec3 light = mix(vec3(0.120, 0.112, 0.108), vec3(0.30, 0.33, 0.38), smoothstep(-1.0, 1.0, up));
  light += vec3(1.02, 0.97, 0.90) * 0.92 * max(0.0, (dot(n, key) + 0.12) / 1.12);
  light += vec3(0.62, 0.74, 0.95) * 0.24 * max(0.0, (dot(n, fill) + 0.3) / 1.3);
  light += vec3(0.80, 0.88, 1.00) * 0.30 * max(0.0, dot(n, rim));
  float facing = max(dot(n, v), 0.0);
  float edge = pow(1.0 - facing, 4.0);
  vec3 halfway = normalize(key + v);
  float gloss = pow(max(dot(n, halfway), 0.0), 28.0) * 0.16;
  vec3 color = base * light + gloss * vec3(1.0, 0.98, 0.95);
  color += edge * vec3(0.16, 0.18, 0.21) * smoothstep(-0.8, 0.8, up);
  return color * (1.0 + color * 0.16) / (1.0 + color * 0.34);
}
void main() {
  if (checkerboard != 0 && mod(floor(gl_FragCoord.x) + floor(gl_FragCoord.y), 2.0) > 0.5) discard;
  vec4 color = surfaceColor;
  if (textured != 0) color *= texture(picture, surfaceUv);
  if (lit != 0) {
    vec3 v = orthographic != 0 ? vec3(0.0, 0.0, 1.0) : normalize(-viewPosition);
    vec3 n = normalize(viewNormal);
    if (!gl_FrontFacing) n = -n;
    color.rgb = toScreen(shade(toLinear(color.rgb), n, v));
  }
  result = color;
}
)";
}

std::string strokeVertex() {
  return std::string(kVersion) + kTransform + R"(
in vec3 position, normal;
in vec4 color;
uniform vec4 tint;
uniform mat3 normalMatrix;
uniform int sided;   // whether there are normals
out vec4 strokeColor;
void main() {
  strokeColor = color * tint;
  float share = 1.0;
  if (sided != 0) {
    vec3 at = (modelView * vec4(position, 1.0)).xyz;
    vec3 v = orthographic != 0 ? vec3(0.0, 0.0, 1.0) : -normalize(at);
    vec3 n = normalMatrix * normal;
    share = smoothstep(-0.25, 0.05, dot(n, v) * inversesqrt(max(dot(n, n), 1e-12)));
    if (dot(n, n) == 0.0) share = 1.0;
  }
  gl_Position = projection * pulled(position, share);
}
)";
}

// A line becomes a rectangle one pixel wider than asked on every side; the fragment stage cuts it
// to size smoothly.
std::string lineGeometry() {
  return std::string(kVersion) + R"(
layout(lines) in;
layout(triangle_strip, max_vertices = 4) out;
uniform vec2 portSize;
uniform float width;
uniform int fadeShort;
in vec4 strokeColor[];
out vec4 lineColor;
noperspective out vec2 place;   // pixels along and across, from the first end
flat out float lineLength;
void corner(vec4 end, vec2 offset, vec2 where, vec4 color) {
  lineColor = color;
  place = where;
  gl_Position = end + vec4(offset * 2.0 / portSize * end.w, 0.0, 0.0);
  EmitVertex();
}
void main() {
  vec4 a = gl_in[0].gl_Position, b = gl_in[1].gl_Position;
  float nearA = a.z + a.w, nearB = b.z + b.w;
  if (nearA <= 0.0 && nearB <= 0.0) return;
  if (nearA <= 0.0) a = mix(a, b, nearA / (nearA - nearB) + 1e-5);
  if (nearB <= 0.0) b = mix(b, a, nearB / (nearB - nearA) + 1e-5);
  vec2 along = (b.xy / b.w - a.xy / a.w) * 0.5 * portSize;
  lineLength = length(along);
  vec4 low = min(a / a.w, b / b.w), high = max(a / a.w, b / b.w);
  if (low.x > 1.05 || low.y > 1.05 || high.x < -1.05 || high.y < -1.05) return;
  float visibility = fadeShort != 0 ? 0.10 + 0.90 * smoothstep(1.0, 9.0, lineLength) : 1.0;
  if (fadeShort != 0 && lineLength < 0.15) return;
  vec2 direction = lineLength > 1e-4 ? along / lineLength : vec2(1.0, 0.0);
  float reach = width * 0.5 + 1.0;
  vec2 side = vec2(-direction.y, direction.x) * reach;
  vec2 cap = direction * reach;
  vec4 colorA = strokeColor[0], colorB = strokeColor[1];
  colorA.a *= visibility;
  colorB.a *= visibility;
  corner(a, -cap - side, vec2(-reach, -reach), colorA);
  corner(a, -cap + side, vec2(-reach, reach), colorA);
  corner(b, cap - side, vec2(lineLength + reach, -reach), colorB);
  corner(b, cap + side, vec2(lineLength + reach, reach), colorB);
  EndPrimitive();
}
)";
}

// Thin lines end squarely at their ends, so that translucent ones don't darken where they meet;
// wide ones are round.
std::string lineFragment() {
  return std::string(kVersion) + R"(
uniform float width;
uniform int dash;   // 0 none, 1 dotted, 2 dashed
in vec4 lineColor;
noperspective in vec2 place;
flat in float lineLength;
out vec4 result;
void main() {
  float beyond = max(-place.x, place.x - lineLength);
  float distance = abs(place.y);
  float ends = 1.0;
  if (width > 1.6) distance = length(vec2(max(beyond, 0.0), place.y));
  else ends = clamp(0.5 - beyond, 0.0, 1.0);
  float coverage = clamp(width * 0.5 + 0.5 - distance, 0.0, min(width, 1.0)) * ends;
  if (dash != 0) {
    float period = dash == 1 ? 2.0 * max(width, 2.0) : 10.0;
    float on = dash == 1 ? 0.5 : 0.6;
    if (fract(place.x / period) > on) discard;
  }
  if (coverage <= 0.004) discard;
  result = vec4(lineColor.rgb, lineColor.a * coverage);
}
)";
}

std::string pointGeometry() {
  return std::string(kVersion) + R"(
layout(points) in;
layout(triangle_strip, max_vertices = 4) out;
uniform vec2 portSize;
uniform float width;
in vec4 strokeColor[];
out vec4 pointColor;
noperspective out vec2 place;   // pixels from the centre
void main() {
  vec4 p = gl_in[0].gl_Position;
  if (p.z + p.w <= 0.0) return;
  float reach = width * 0.5 + 1.0;
  for (int i = 0; i < 4; ++i) {
    place = vec2((i & 1) == 0 ? -reach : reach, (i & 2) == 0 ? -reach : reach);
    pointColor = strokeColor[0];
    gl_Position = p + vec4(place * 2.0 / portSize * p.w, 0.0, 0.0);
    EmitVertex();
  }
  EndPrimitive();
}
)";
}

std::string pointFragment() {
  return std::string(kVersion) + R"(
uniform float width;
uniform vec4 outline;
uniform int square;
in vec4 pointColor;
noperspective in vec2 place;
out vec4 result;
void main() {
  float radius = width * 0.5;
  float distance = square != 0 ? max(abs(place.x), abs(place.y)) : length(place);
  float coverage = clamp(radius + 0.5 - distance, 0.0, 1.0);
  if (coverage <= 0.004) discard;
  float rim = outline.a > 0.0 ? clamp(distance - (radius - 1.5) + 0.5, 0.0, 1.0) : 0.0;
  vec4 color = mix(pointColor, outline, rim);
  result = vec4(color.rgb, color.a * coverage);
}
)";
}

std::string screenVertex() {
  return std::string(kVersion) + R"(
out vec2 across;
void main() {
  across = vec2(gl_VertexID == 1 ? 2.0 : 0.0, gl_VertexID == 2 ? 2.0 : 0.0);
  gl_Position = vec4(across * 2.0 - 1.0, 0.0, 1.0);
}
)";
}

// A vertical gradient, a little darker towards the corners, with noise of half a level against
// banding.
std::string backgroundFragment() {
  return std::string(kVersion) + R"(
in vec2 across;
uniform vec4 top, bottom;
out vec4 result;
float noise(vec2 p) { return fract(52.9829189 * fract(dot(p, vec2(0.06711056, 0.00583715)))); }
void main() {
  vec4 color = mix(bottom, top, smoothstep(0.0, 1.0, across.y));
  vec2 off = across - vec2(0.5, 0.55);
  color.rgb *= 1.06 - 0.32 * dot(off, off);
  result = color + (noise(gl_FragCoord.xy) - 0.5) / 255.0;
}
)";
}

// Ambient occlusion from the depth of the opaque surfaces (after Bavoil and Sainz 2009, without
// marching): how much of a disc around the pixel rises above its tangent plane, out to a radius
// that is a fixed share of the picture.
std::string occlusionFragment() {
  return std::string(kVersion) + R"(
in vec2 across;
uniform sampler2D depth;
uniform mat4 unprojection;
uniform vec2 portSize;
uniform float pixelSize, radiusPixels;
uniform int orthographic;
out vec4 result;
vec3 at(vec2 where) {
  vec4 p = unprojection * vec4(vec3(where, texture(depth, where).r) * 2.0 - 1.0, 1.0);
  return p.xyz / p.w;
}
void main() {
  if (texture(depth, across).r >= 1.0) { result = vec4(1.0); return; }
  vec3 p = at(across);
  vec2 pixel = 1.0 / portSize;
  vec3 left = p - at(across - vec2(pixel.x, 0.0)), right = at(across + vec2(pixel.x, 0.0)) - p;
  vec3 below = p - at(across - vec2(0.0, pixel.y)), above = at(across + vec2(0.0, pixel.y)) - p;
  vec3 dx = abs(left.z) < abs(right.z) ? left : right;
  vec3 dy = abs(below.z) < abs(above.z) ? below : above;
  vec3 n = normalize(cross(dx, dy));
  float radius = radiusPixels * pixelSize * (orthographic != 0 ? 1.0 : -p.z);
  float noise = fract(52.9829189 * fract(dot(gl_FragCoord.xy, vec2(0.06711056, 0.00583715))));
  float turn = 6.2831853 * noise;
  float sum = 0.0;
  const int kSamples = 14;
  for (int i = 0; i < kSamples; ++i) {
    float share = (float(i) + 0.5) / float(kSamples);
    float angle = turn + float(i) * 2.3999632;
    vec2 offset = vec2(cos(angle), sin(angle)) * sqrt(share) * radiusPixels * pixel;
    vec3 to = at(across + offset) - p;
    float length2 = dot(to, to);
    float rise = max(dot(to, n) - 0.03 * radius, 0.0) * inversesqrt(length2 + 1e-12);
    sum += rise * max(0.0, 1.0 - length2 / (radius * radius * 2.2));
  }
  result = vec4(vec3(max(0.0, 1.0 - 1.5 * sum / float(kSamples))), 1.0);
}
)";
}

// Averages the 4 by 4 pixels over which the noise repeats, leaving out those at another depth.
std::string occlusionBlurFragment() {
  return std::string(kVersion) + R"(
in vec2 across;
uniform sampler2D depth, occlusion;
uniform mat4 unprojection;
uniform vec2 portSize;
uniform float pixelSize;
uniform int orthographic;
out vec4 result;
float viewZ(vec2 where) {
  vec4 p = unprojection * vec4(vec3(where, texture(depth, where).r) * 2.0 - 1.0, 1.0);
  return p.z / p.w;
}
void main() {
  if (texture(depth, across).r >= 1.0) discard;
  float z = viewZ(across);
  float scale = 1.0 / (12.0 * pixelSize * (orthographic != 0 ? 1.0 : -z));
  float sum = 0.0, weights = 0.0;
  for (int y = -2; y <= 2; ++y)
    for (int x = -2; x <= 2; ++x) {
      vec2 where = across + vec2(x, y) / portSize;
      float weight = max(0.0, 1.0 - abs(viewZ(where) - z) * scale) + 1e-4;
      sum += texture(occlusion, where).r * weight;
      weights += weight;
    }
  result = vec4(vec3(sum / weights), 1.0);
}
)";
}

}  // namespace host::viewport::shaders
