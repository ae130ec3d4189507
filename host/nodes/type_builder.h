#pragma once

#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "host/dg/data_block.h"
#include "host/dg/node.h"

namespace host::nodes {

using dg::Attribute;
using dg::AttributePtr;
using dg::AttributeType;
using dg::Computed;
using dg::DataBlock;
using dg::Node;
using dg::Plug;

// Attributes in one line each. Names are the long and the short one; distances cm, angles radians.
[[nodiscard]] AttributePtr boolean(std::string longName, std::string shortName, bool value = false);
[[nodiscard]] AttributePtr integer(std::string longName, std::string shortName,
                                   std::int64_t value = 0);
[[nodiscard]] AttributePtr shortInteger(std::string longName, std::string shortName,
                                        std::int64_t value = 0);
[[nodiscard]] AttributePtr real(std::string longName, std::string shortName, double value = 0);
[[nodiscard]] AttributePtr single(std::string longName, std::string shortName,
                                  double value = 0);  ///< float
[[nodiscard]] AttributePtr distance(std::string longName, std::string shortName,
                                    double centimeters = 0);
[[nodiscard]] AttributePtr angle(std::string longName, std::string shortName, double radians = 0);
[[nodiscard]] AttributePtr timeValue(std::string longName, std::string shortName,
                                     double seconds = 0);
[[nodiscard]] AttributePtr text(std::string longName, std::string shortName);
[[nodiscard]] AttributePtr matrix(std::string longName, std::string shortName);
[[nodiscard]] AttributePtr message(std::string longName, std::string shortName);
/// Fields in order, counting from 0.
[[nodiscard]] AttributePtr choice(std::string longName, std::string shortName,
                                  std::initializer_list<std::string_view> fields,
                                  std::int64_t value = 0);
/// A triple whose children are named X Y Z: double3 of the child type. `childShortName` is for
/// "rx" below "ro".
[[nodiscard]] AttributePtr triple(std::string longName, std::string shortName,
                                  AttributeType childType, math::Vec3 value = {},
                                  const std::string& childShortName = {});
/// A float3 whose children are named R G B. `childShortName` is for "sr" below "sc".
[[nodiscard]] AttributePtr color(std::string longName, std::string shortName, math::Vec3 value = {},
                                 std::string childShortName = {});
/// A compound of numbers of one type with children of any names.
[[nodiscard]] AttributePtr numbers(std::string longName, std::string shortName,
                                   std::string compoundType,
                                   std::initializer_list<AttributePtr> children);
[[nodiscard]] AttributePtr compound(std::string longName, std::string shortName,
                                    std::initializer_list<AttributePtr> children);

// Modifiers; each changes and returns the attribute, children included where that makes sense.
[[nodiscard]] AttributePtr keyable(AttributePtr attribute);
[[nodiscard]] AttributePtr channelBox(AttributePtr attribute);
[[nodiscard]] AttributePtr output(AttributePtr attribute);  ///< computed: not writable, not stored
[[nodiscard]] AttributePtr array(AttributePtr attribute);
[[nodiscard]] AttributePtr unordered(
    AttributePtr attribute);  ///< an array whose indices do not matter
[[nodiscard]] AttributePtr internal(AttributePtr attribute);
[[nodiscard]] AttributePtr hidden(AttributePtr attribute);
[[nodiscard]] AttributePtr notStored(AttributePtr attribute);
[[nodiscard]] AttributePtr limited(AttributePtr attribute, double minimum, double maximum);
[[nodiscard]] AttributePtr atLeast(AttributePtr attribute, double minimum);
[[nodiscard]] AttributePtr softLimited(AttributePtr attribute, double minimum, double maximum);

/// What every node has: message, caching, frozen, isHistoricallyInteresting, nodeState,
/// binMembership. For types without a base type; others inherit it.
void addNodeAttributes(dg::NodeType& type);

/// Puts a node type together and registers it. Without a base type it gets the attributes that
/// every node has.
class TypeBuilder {
 public:
  TypeBuilder(dg::TypeRegistry& types, std::string_view name, std::string_view base = {},
              std::uint32_t id = 0);

  const Attribute* add(AttributePtr attribute) { return type_->add(std::move(attribute)); }
  /// An attribute added before or inherited; asserts that it is there.
  [[nodiscard]] const Attribute* operator[](std::string_view name) const;
  [[nodiscard]] bool has(std::string_view name) const { return type_->find(name) != nullptr; }
  TypeBuilder& affects(std::initializer_list<const Attribute*> from,
                       std::initializer_list<const Attribute*> to);
  TypeBuilder& setAbstract();
  TypeBuilder& livesByItsOutputs();  ///< goes with the last node that it feeds
  [[nodiscard]] dg::NodeType& type() { return *type_; }
  const dg::NodeType* finish();

 private:
  dg::TypeRegistry& types_;
  std::unique_ptr<dg::NodeType> type_;
};

/// A four-letter code as a type id.
[[nodiscard]] constexpr std::uint32_t typeCode(const char (&code)[5]) {
  std::uint32_t id = 0;
  for (int i = 0; i < 4; ++i) id = id << 8 | static_cast<unsigned char>(code[i]);
  return id;
}

}  // namespace host::nodes
