#include <fmt/format.h>

#include <cmath>

#include "host/dg/foreign_data.h"
#include "host/dg/numeric_data.h"
#include "host/io/ma/ma_node_writer.h"
#include "host/io/ma/ma_numbers.h"
#include "host/io/ma/ma_surfaces.h"
#include "host/scene/component.h"
#include "host/scene/curve_data.h"
#include "host/scene/poly_component_data.h"

namespace host::io {
namespace {

using dg::Attribute;
using dg::Value;

void appendType(std::string& text, std::string_view type) {
  text += fmt::format("-type \"{}\"", type);
}

/// `-type "..." count` and the numbers; false when one of them is not finite.
template <class Element, class Numbers>
bool appendCounted(std::string& text, std::string_view type, const std::vector<Element>& elements,
                   Numbers numbers) {
  appendType(text, type);
  text += ' ';
  appendNumber(text, static_cast<std::int64_t>(elements.size()));
  bool isGood = true;
  std::size_t written = 0;
  for (const Element& element : elements) {
    if (written++ % 16 == 15) text += "\n\t\t";
    for (const auto number : numbers(element)) {
      const bool isFinite = std::isfinite(static_cast<double>(number));
      isGood = isGood && isFinite;
      text += ' ';
      appendNumber(text, isFinite ? number : decltype(number){});
    }
  }
  text += ' ';
  return isGood;
}

void appendComponents(std::string& text, const std::vector<scene::Component>& components) {
  std::vector<std::string> words;
  for (const scene::Component& component : components)
    for (std::string& word : component.words()) words.push_back(std::move(word));
  appendType(text, "componentList");
  text += fmt::format(" {}", words.size());
  for (const std::string& word : words) text += fmt::format(" \"{}\"", word);
}

bool appendCurve(std::string& text, const math::NurbsCurve& curve) {
  appendType(text, "nurbsCurve");
  text += fmt::format(" {} {} {} {} 3\n\t\t{}", curve.degree, curve.spans(),
                      static_cast<int>(curve.form), curve.isRational() ? "yes" : "no",
                      curve.knots.size());
  bool isGood = true;
  const auto append = [&](double number) {
    isGood = isGood && std::isfinite(number);
    text += ' ';
    appendNumber(text, std::isfinite(number) ? number : 0.0);
  };
  for (const double knot : curve.knots) append(knot);
  text += fmt::format("\n\t\t{}", curve.points.size());
  for (std::size_t i = 0; i < curve.points.size(); ++i) {
    text += "\n\t\t";
    for (int axis = 0; axis < 3; ++axis) append(curve.points[i][axis]);
    if (curve.isRational()) append(curve.weights[i]);
  }
  text += "\n\t\t";
  return isGood;
}

void appendPolyComponents(std::string& text, const scene::PolyComponentData& data) {
  appendType(text, data.typeName());
  text +=
      fmt::format(" Index_Data {} {}", data.kind.empty() ? "UV" : data.kind, data.entries.size());
  std::size_t written = 0;
  for (const auto& [id, value] : data.entries) {
    text += written++ % 8 == 0 ? "\n\t\t" : " ";
    appendNumber(text, id);
    text += ' ';
    appendNumber(text, value);
  }
  text += ' ';
}

enum class Written { Yes, Unknown, NotFinite };
Written appendPayload(std::string& text, const dg::DataPtr& data) {
  const Value value(data);
  bool isGood = true;
  if (const auto* matrix = dg::dataAs<dg::MatrixData>(value)) {
    appendType(text, "matrix");
    for (int i = 0; i < 16; ++i) {
      const double number = matrix->value[i / 4][i % 4];
      isGood = isGood && std::isfinite(number);
      text += ' ';
      appendNumber(text, std::isfinite(number) ? number : 0.0);
    }
  } else if (const auto* weights = dg::dataAs<scene::PolyComponentData>(value)) {
    appendPolyComponents(text, *weights);
  } else if (const auto* list = dg::dataAs<scene::ComponentListData>(value)) {
    appendComponents(text, list->value);
  } else if (const auto* curve = dg::dataAs<scene::CurveData>(value)) {
    isGood = appendCurve(text, curve->curve);
  } else if (const auto* surface = dg::dataAs<scene::SurfaceData>(value)) {
    isGood = appendSurface(text, surface->surface);
  } else if (const auto* arrays = dg::dataAs<scene::ArrayAttrsData>(value)) {
    isGood = appendArrayAttrs(text, *arrays);
  } else if (const auto* texts = dg::dataAs<dg::StringArrayData>(value)) {
    appendType(text, "stringArray");
    text += fmt::format(" {}", texts->value.size());
    for (const std::string& each : texts->value) {
      text += ' ';
      appendQuoted(text, each);
    }
  } else if (const auto* integers = dg::dataAs<dg::IntArrayData>(value)) {
    appendCounted(text, "Int32Array", integers->value,
                  [](std::int32_t each) { return std::array{each}; });
  } else if (const auto* doubles = dg::dataAs<dg::DoubleArrayData>(value)) {
    isGood = appendCounted(text, "doubleArray", doubles->value,
                           [](double each) { return std::array{each}; });
  } else if (const auto* floats = dg::dataAs<dg::FloatArrayData>(value)) {
    isGood = appendCounted(text, "floatArray", floats->value,
                           [](float each) { return std::array{each}; });
  } else if (const auto* vectors = dg::dataAs<dg::VectorArrayData>(value)) {
    isGood = appendCounted(text, "vectorArray", vectors->value, [](const math::Vec3& each) {
      return std::array{each.x, each.y, each.z};
    });
  } else if (const auto* points = dg::dataAs<dg::PointArrayData>(value)) {
    isGood = appendCounted(text, "pointArray", points->value, [](const dg::Point4& each) {
      return std::array{each.x, each.y, each.z, each.w};
    });
  } else if (const auto* tuple = dg::dataAs<dg::NumericData>(value)) {
    appendType(text, tuple->kind);
    for (const double number : tuple->values) {
      isGood = isGood && std::isfinite(number);
      text += ' ';
      appendNumber(text, std::isfinite(number) ? number : 0.0);
    }
  } else if (const auto* foreign = dg::dataAs<dg::ForeignData>(value)) {
    const auto words = foreign->written();
    if (!words) return Written::Unknown;
    appendType(text, foreign->typeName());
    text += ' ' + *words;
  } else {
    return Written::Unknown;
  }
  return isGood ? Written::Yes : Written::NotFinite;
}

}  // namespace

/// False for what has no written form: no payload, or one of a kind that files do not know.
bool MaNodeWriter::appendValue(std::string& text, const Attribute& leaf, const Value& value) {
  if (const auto* words = std::get_if<std::string>(&value)) {
    appendType(text, "string");
    text += ' ';
    appendQuoted(text, *words);
    return true;
  }
  if (const auto* integer = std::get_if<std::int64_t>(&value)) {
    if (leaf.type == dg::AttributeType::Bool)
      text += *integer != 0 ? "yes" : "no";
    else
      appendNumber(text, *integer);
    return true;
  }
  if (const auto* real = std::get_if<double>(&value)) {
    appendLeafNumber(text, leaf, *real);
    return true;
  }
  const auto* data = std::get_if<dg::DataPtr>(&value);
  if (!data || !*data) return false;
  const Written written = appendPayload(text, *data);
  if (written == Written::Unknown && dg::dataAs<dg::ForeignData>(value))
    lost_ = node_.name() + "." + leaf.longName;
  if (written == Written::NotFinite) fault_ = node_.name() + "." + leaf.longName;
  return written != Written::Unknown;
}

}  // namespace host::io
