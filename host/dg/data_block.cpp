#include "host/dg/data_block.h"

namespace host::dg {

Value DataBlock::read(const Plug& plug) {
  auto value = graph_.get(plug);
  if (value) return *std::move(value);
  if (!inputFailure_) inputFailure_ = value.error();
  return graph_.stored(plug);
}

double DataBlock::real(const Attribute* attribute) {
  const Value value = read(Plug(&node_, attribute));
  if (const auto* number = std::get_if<double>(&value)) return *number;
  const auto* number = std::get_if<std::int64_t>(&value);
  return number ? static_cast<double>(*number) : 0.0;
}

std::int64_t DataBlock::integer(const Attribute* attribute) {
  const Value value = read(Plug(&node_, attribute));
  if (const auto* number = std::get_if<std::int64_t>(&value)) return *number;
  const auto* number = std::get_if<double>(&value);
  return number ? static_cast<std::int64_t>(*number) : 0;
}

std::string DataBlock::text(const Attribute* attribute) {
  const Value value = read(Plug(&node_, attribute));
  const auto* text = std::get_if<std::string>(&value);
  return text ? *text : std::string();
}

math::Vec3 DataBlock::vec3(const Attribute* compound) {
  math::Vec3 result;
  const std::size_t count = std::min<std::size_t>(3, compound->children.size());
  for (std::size_t axis = 0; axis < count; ++axis)
    result[static_cast<int>(axis)] = real(compound->children[axis].get());
  return result;
}

math::Matrix4 DataBlock::matrix(const Attribute* attribute) {
  const Value value = read(Plug(&node_, attribute));
  const auto* data = dataAs<MatrixData>(value);
  return data ? data->value : math::Matrix4{};
}

}  // namespace host::dg
