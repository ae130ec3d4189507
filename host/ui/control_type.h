#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/base/result.h"
#include "host/ui/values.h"

namespace host::ui {

class Tree;
struct Control;
struct Attribute;

/// When a flag may be given; combined by or.
enum Modes : std::uint8_t {
  kCreate = 1,
  kEdit = 2,
  kQuery = 4,
  kCreateEdit = 3,
  kCreateQuery = 5,
  kEditQuery = 6,
  kAll = 7,
};

/// What else is particular to a flag; combined by or.
enum Traits : std::uint8_t {
  kMulti = 1,         ///< may be used several times in a call; each use is set in turn
  kKeyed = 2,         ///< kMulti, and the first argument says which entry is set: a column, a child
  kLate = 4,          ///< set after the others of a call: a value comes after its range
  kOptionalArgs = 8,  ///< arguments may be left out at the end
  kList = 16,         ///< querying gives an array, however many there are
};

using Setter = Result<void> (*)(Tree&, Control&, const Attribute&, const Values&);
using Getter = Values (*)(const Tree&, const Control&, const Attribute&);
/// What a person does to a control. Returns the scripts that are to run, in order.
using Gesture = Result<std::vector<std::string>> (*)(Tree&, Control&, const Values&);

/// A flag of a kind of control. Without a setter its arguments are kept as they are; without a
/// getter they are given back.
struct Attribute {
  std::string_view shortName, longName;
  std::string_view kinds;  ///< a letter an argument: b truth value, i int, f float, s text, c
                           ///< script; none: a switch
  std::string_view initial =
      {};  ///< value before it is set: one text, or numbers between blanks; empty: zeros
  std::uint8_t modes = kAll;
  std::uint8_t traits = 0;
  Setter set = nullptr;
  Getter get = nullptr;
};

using AttributeTable = std::span<const Attribute>;

enum class Kind : std::uint8_t { Window, Layout, Control, Menu, MenuItem, Collection };

/// One kind of control: its flags, in tables that kinds share.
struct ControlType {
  std::string_view name;
  Kind kind = Kind::Control;
  std::vector<AttributeTable> tables;
  Gesture gesture = nullptr;  ///< null: a person can't change it
  bool holdsMenuItems = false;

  /// By long name.
  [[nodiscard]] const Attribute* find(std::string_view longName) const;
};

/// All kinds, by family.
[[nodiscard]] const std::vector<ControlType>& controlTypes();
[[nodiscard]] const ControlType* findControlType(std::string_view name);

// Flags of all controls and of all layouts.
[[nodiscard]] AttributeTable commonAttributes();
[[nodiscard]] AttributeTable layoutAttributes();
/// Column widths, alignments and offsets of rows and of groups.
[[nodiscard]] AttributeTable columnAttributes();

// The families.
void addWindowTypes(std::vector<ControlType>& types);
void addLayoutTypes(std::vector<ControlType>& types);
void addButtonTypes(std::vector<ControlType>& types);
void addChoiceTypes(std::vector<ControlType>& types);
void addFieldTypes(std::vector<ControlType>& types);
void addFieldGroupTypes(std::vector<ControlType>& types);
void addMenuTypes(std::vector<ControlType>& types);
void addListTypes(std::vector<ControlType>& types);
void addDisplayTypes(std::vector<ControlType>& types);

}  // namespace host::ui
