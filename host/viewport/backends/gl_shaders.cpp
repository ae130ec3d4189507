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

namespace {

// Where a texture's picture is at a UV of the surface: the frame turned, shifted and scaled, then
// the picture repeated, shifted and turned within it.
constexpr const char* kPlacement = R"(
uniform vec4 frame;       // coverage, translation
uniform vec4 repeat;      // repeats, offset
uniform vec2 turns;       // of the frame, of the picture
uniform ivec4 wrapping;   // bits 1: wrap, 2: mirror (u, v); stagger
vec2 turned(vec2 p, float angle) {
  float c = cos(angle), s = sin(angle);
  p -= 0.5;
  return vec2(p.x * c - p.y * s, p.x * s + p.y * c) + 0.5;
}
float framed(float at, float coverage, bool wraps, inout bool inside) {
  if (coverage == 1.0 && wraps) return at;
  if (wraps) at = fract(at);
  at = coverage == 0.0 ? -1.0 : at / coverage;
  inside = inside && at >= 0.0 && at <= 1.0;
  return at;
}
vec2 placed(vec2 uv, out bool inside) {
  inside = true;
  uv = turned(uv, -turns.x) - frame.zw;
  uv.x = framed(uv.x, frame.x, (wrapping.x & 1) != 0, inside);
  uv.y = framed(uv.y, frame.y, (wrapping.y & 1) != 0, inside);
  uv = uv * repeat.xy + repeat.zw;
  vec2 cell = floor(uv);
  vec2 odd = mod(abs(cell), 2.0);
  if ((wrapping.x & 2) != 0 && odd.x > 0.5) uv.x = 2.0 * cell.x + 1.0 - uv.x;
  if ((wrapping.y & 2) != 0 && odd.y > 0.5) uv.y = 2.0 * cell.y + 1.0 - uv.y;
  if (wrapping.z != 0 && odd.y > 0.5) uv.x += 0.5;
  return turned(uv, -turns.y);
}
)";

// Lights of the scene; what arrives at a place, as diffuse light and as highlights.
constexpr const char* kLights = R"(
uniform int lightCount;
uniform ivec4 lightKind[8];        // ambient, directional, point, spot
uniform vec3 lightColor[8], lightPosition[8], lightDirection[8];
uniform vec4 lightShape[8];        // decay, cosines of the cone, dropoff or ambient shade
void addLights(vec3 p, vec3 n, vec3 v, inout vec3 light, inout vec3 gloss) {
  for (int i = 0; i < lightCount; ++i) {
    int kind = lightKind[i].x;
    vec3 to = kind == 1 ? -lightDirection[i] : lightPosition[i] - p;
    float away = length(to);
    to /= max(away, 1e-9);
    vec3 color = lightColor[i];
    if (kind >= 2) color *= pow(max(away, 1e-6), -lightShape[i].x);
    if (kind == 3) {
      float along = dot(-to, lightDirection[i]);
      color *= smoothstep(lightShape[i].z, max(lightShape[i].y, lightShape[i].z + 1e-4), along);
      color *= pow(max(along, 0.0), lightShape[i].w);
    }
    float facing = max(dot(n, to), 0.0);
    if (kind == 0) {
      light += color * mix(1.0, facing, lightShape[i].w);
      continue;
    }
    light += color * facing;
    if (facing > 0.0) gloss += color * pow(max(dot(n, normalize(to + v)), 0.0), glossPower);
  }
}
)";

}  // namespace

// A studio: a warm key light high on the left, a cool fill from the right, sky and floor light by
// the world's vertical, a faint rim, and a broad soft highlight. Light is added up linearly and
// compressed gently towards white.
std::string surfaceFragment(bool drops) {
  const char* const kind = drops ? "#define DROPS 1\n" : "#define DROPS 0\n";
  return std::string(kVersion) + kind + R"(
in vec3 viewPosition, viewNormal;
in vec4 surfaceColor;
in vec2 surfaceUv;
uniform int orthographic, lit, textured, checkerboard, lighting;
uniform vec3 worldUp;
uniform sampler2D picture;
uniform int hasMaterial, placing;
uniform vec4 materialColor, outsideColor;   // linear light; how much of it is stopped
uniform vec3 incandescence, ambient, specular;
uniform float diffuse, glossPower;
out vec4 result;
vec3 toLinear(vec3 c) { return pow(c, vec3(2.2)); }
vec3 toScreen(vec3 c) { return pow(max(c, vec3(0.0)), vec3(1.0 / 2.2)); }
)" + kPlacement +
         kLights + R"(
vec3 compressed(vec3 color) { return color * (1.0 + color * 0.16) / (1.0 + color * 0.34); }
void studio(vec3 n, vec3 v, out vec3 light, out vec3 gloss, out vec3 sheen) {
  const vec3 key = normalize(vec3(-0.50, 0.80, 0.62));
  const vec3 fill = normalize(vec3(0.85, 0.05, 0.45));
  const vec3 rim = normalize(vec3(0.35, 0.55, -0.75));
  float up = dot(n, worldUp);
  light = mix(vec3(0.120, 0.112, 0.108), vec3(0.30, 0.33, 0.38), smoothstep(-1.0, 1.0, up));
  light += vec3(1.02, 0.97, 0.90) * 0.92 * max(0.0, (dot(n, key) + 0.12) / 1.12);
  light += vec3(0.62, 0.74, 0.95) * 0.24 * max(0.0, (dot(n, fill) + 0.3) / 1.3);
  light += vec3(0.80, 0.88, 1.00) * 0.30 * max(0.0, dot(n, rim));
  gloss = vec3(1.0, 0.98, 0.95) * pow(max(dot(n, normalize(key + v)), 0.0), glossPower);
  gloss += vec3(0.62, 0.74, 0.95) * 0.25 * pow(max(dot(n, normalize(fill + v)), 0.0), glossPower);
  sheen = pow(1.0 - max(dot(n, v), 0.0), 4.0) * smoothstep(-0.8, 0.8, up) *
          vec3(0.16, 0.18, 0.21);
}
vec3 shade(vec3 base, vec3 n, vec3 v) {
  vec3 light = vec3(0.0), gloss = vec3(0.0), sheen = vec3(0.0);
  if (lighting == 0) studio(n, v, light, gloss, sheen);
  else addLights(viewPosition, n, v, light, gloss);
  // Dark surfaces have less of a sheen: they would look dusty.
  sheen *= mix(0.35, 1.0, smoothstep(0.0, 0.4, max(base.r, max(base.g, base.b))));
  return compressed(base * (light + ambient) + gloss * specular + sheen + incandescence);
}
void main() {
#if DROPS
  if (checkerboard != 0 && mod(floor(gl_FragCoord.x) + floor(gl_FragCoord.y), 2.0) > 0.5) discard;
#endif
  vec4 color = surfaceColor;
  vec3 base = toLinear(color.rgb);
  if (hasMaterial != 0) {
    base = materialColor.rgb;
    float opacity = materialColor.a;
    if (textured != 0) {
      bool inside = true;
      vec2 at = placing != 0 ? placed(surfaceUv, inside) : surfaceUv;
      vec4 texel = texture(picture, at);
      base = inside ? toLinear(texel.rgb) : outsideColor.rgb;
      opacity = inside ? texel.a : outsideColor.a;
    }
    base *= diffuse;
    color.a *= opacity;
#if DROPS
    if (color.a <= 0.004) discard;
#endif
  } else if (textured != 0) {
    vec4 texel = texture(picture, surfaceUv);
    base *= toLinear(texel.rgb);
    color.a *= texel.a;
  }
  vec3 shown = base;
  if (lit != 0 && lighting != 2) {
    vec3 v = orthographic != 0 ? vec3(0.0, 0.0, 1.0) : normalize(-viewPosition);
    vec3 n = normalize(viewNormal);
    if (!gl_FrontFacing) n = -n;
    shown = shade(base, n, v);
  }
  color.rgb = toScreen(shown);
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
uniform int whole;          // shown or hidden by its centre alone
uniform sampler2D depth;    // of the surfaces
in vec4 strokeColor[];
out vec4 pointColor;
noperspective out vec2 place;   // pixels from the centre
void main() {
  vec4 p = gl_in[0].gl_Position;
  if (p.z + p.w <= 0.0) return;
  if (whole != 0) {
    vec3 at = p.xyz / p.w * 0.5 + 0.5;
    if (at.z > texture(depth, at.xy).r) return;
  }
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
  // Towards the nearer neighbour; there is none beyond the picture's rim.
  bvec2 first = lessThan(across, pixel), last = greaterThan(across, 1.0 - pixel);
  vec3 dx = !first.x && (last.x || abs(left.z) < abs(right.z)) ? left : right;
  vec3 dy = !first.y && (last.y || abs(below.z) < abs(above.z)) ? below : above;
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
    vec2 where = across + offset;
    if (where != clamp(where, vec2(0.0), vec2(1.0))) continue;
    vec3 to = at(where) - p;
    float length2 = dot(to, to);
    // What rises by a few degrees only is the same surface, bent at an edge of its triangles.
    float slope = dot(to, n) * inversesqrt(length2 + 1e-12);
    float rise = max(slope - 0.14, 0.0) / 0.86;
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
  if (texture(depth, across).r >= 1.0) {
    // Background by this sample, but others of the pixel may be of a surface: they take after the
    // surface next to them.
    float near = 0.0, count = 0.0;
    for (int y = -1; y <= 1; ++y)
      for (int x = -1; x <= 1; ++x) {
        vec2 where = across + vec2(x, y) / portSize;
        if (texture(depth, where).r >= 1.0) continue;
        near += texture(occlusion, where).r;
        count += 1.0;
      }
    if (count == 0.0) discard;
    result = vec4(vec3(near / count), 1.0);
    return;
  }
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
