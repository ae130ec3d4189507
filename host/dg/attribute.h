#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/dg/data.h"

namespace host::dg {

enum class AttributeType : std::uint8_t {
  Bool,
  Char,
  Byte,
  Short,
  Long,
  Int64,
  Float,
  Double,  // numeric leaves
  Distance,
  Angle,
  Time,  // unit leaves: cm, radians, seconds
  Enum,
  String,
  Matrix,    // 16 doubles, MatrixData
  Message,   // carries no value
  Typed,     // a payload whose typeName() is dataType
  Generic,   // any leaf value or payload of acceptedTypes
  Compound,  // children; numeric triples ("double3", "float3", "long2", ...) are compounds with a
             // compoundType
};

enum class DisconnectBehavior : std::uint8_t { Delete, Reset, Nothing };

struct EnumField {
  std::string name;
  std::int64_t value = 0;
};

/// The description of an attribute: static (owned by a node type, shared by its nodes) or dynamic
/// (by one node). Immutable once it belongs to a type or a node, but for the flags that `Node`
/// keeps per node.
class Attribute : public std::enable_shared_from_this<Attribute> {
 public:
  std::string longName, shortName;
  std::string niceName;  ///< empty: made from the long name
  AttributeType type = AttributeType::Double;
  std::string dataType;      ///< Typed: the payload's type name, e.g. "mesh"
  std::string compoundType;  ///< Compound: "double3", "float2", ... or empty for a plain compound
  std::vector<std::string> acceptedTypes;  ///< Generic
  std::vector<EnumField> enumFields;

  bool isArray = false;
  bool readable = true, writable = true, connectable = true, storable = true, cached = true;
  bool keyable = false, channelBox = false, hidden = false;
  bool internalStorage =
      false;  ///< reads and writes go through NodeType::getInternal / setInternal
  bool worldSpace = false, usedAsColor = false, usedAsFilename = false;
  bool indexMatters = true, usesArrayDataBuilder = false, renderSource = false,
       affectsAppearance = false;
  DisconnectBehavior disconnectBehavior = DisconnectBehavior::Nothing;

  Value defaultValue;  ///< leaves; monostate means 0, "" or no payload by type
  std::optional<double> minimum, maximum, softMinimum, softMaximum;

  std::vector<std::shared_ptr<Attribute>> children;
  Attribute* parent = nullptr;  ///< the compound it belongs to

  // Set when the attribute joins a type or node.
  int topIndex = -1;    ///< index of its top-level ancestor in the owner's list
  int childIndex = -1;  ///< index in the parent's children
  int flatIndex =
      -1;  ///< position among all attributes of its type, nested ones included; -1 for dynamic ones
  bool isDynamic = false;
  bool isComputed = false;  ///< in some type, something affects it or a relative up or down; see
                            ///< NodeType::isComputed

  [[nodiscard]] bool isCompound() const { return type == AttributeType::Compound; }
  [[nodiscard]] bool isNumeric() const {
    return type <= AttributeType::Time || type == AttributeType::Enum;
  }
  [[nodiscard]] const Attribute& top() const;
  /// How many array levels lie on the way from the top-level attribute to this one, itself
  /// included.
  [[nodiscard]] int arrayLevels() const;
  [[nodiscard]] bool isNamed(std::string_view name) const {
    return name == longName || name == shortName;
  }
  /// Depth-first search of this attribute and all below it by long or short name.
  [[nodiscard]] const Attribute* find(std::string_view name) const;
  /// Brings a value to what this leaf can hold: kind, float rounding, integer width, enum; clamps
  /// nothing. Fails naming the attribute when the kinds do not fit.
  [[nodiscard]] Result<Value> convert(const Value& value) const;
  /// The value of a leaf that was never set: the default, or zero, "", the identity, no payload by
  /// type.
  [[nodiscard]] Value initialValue() const;
  /// The word for its type in declarations: "double", "long", "doubleAngle", "matrix", "mesh",
  /// "double3", ...
  [[nodiscard]] std::string_view typeWord() const;
  /// A copy of it and all below, belonging to nothing.
  [[nodiscard]] std::shared_ptr<Attribute> clone() const;
};
using AttributePtr = std::shared_ptr<Attribute>;

// Short forms for building node types. All return attributes ready to be added to a type or a
// compound.
[[nodiscard]] AttributePtr makeAttribute(std::string longName, std::string shortName,
                                         AttributeType type, Value defaultValue = {});
[[nodiscard]] AttributePtr makeTyped(std::string longName, std::string shortName,
                                     std::string dataType);
[[nodiscard]] AttributePtr makeEnum(std::string longName, std::string shortName,
                                    std::vector<EnumField> fields, std::int64_t defaultValue = 0);
[[nodiscard]] AttributePtr makeCompound(std::string longName, std::string shortName,
                                        std::vector<AttributePtr> children);
/// A numeric triple such as translate/translateX..Z: children are named with the suffixes X Y Z
/// (long) and x y z (short).
[[nodiscard]] AttributePtr makeTriple(std::string longName, std::string shortName,
                                      AttributeType childType, std::string compoundType,
                                      math::Vec3 defaultValue = {});

}  // namespace host::dg
