#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/ui/tree.h"

/// What several families of controls share: setters, getters and gestures for their tables.
namespace host::ui {

// Places in the tree.
Values getFullPath(const Tree&, const Control& control, const Attribute&);
Values getParentPath(const Tree&, const Control& control, const Attribute&);
/// Short names of the child layouts and controls, in order.
Values getChildNames(const Tree&, const Control& control, const Attribute&);
Values getChildCount(const Tree&, const Control& control, const Attribute&);
Values getPopupNames(const Tree&, const Control& control, const Attribute&);
Values getPopupCount(const Tree&, const Control& control, const Attribute&);
Result<void> refuseSet(Tree&, Control&, const Attribute&, const Values&);

/// Two numbers at once for `width` and `height`.
Result<void> setSize(Tree&, Control& control, const Attribute&, const Values& values);
Values getSize(const Tree&, const Control& control, const Attribute&);

/// `value` or `value1` ... kept between `minValue` and `maxValue`; where there is a field range of
/// its own, the slider's range grows with the value up to it. Every field of the group is set when
/// more values come.
Result<void> setRanged(Tree&, Control& control, const Attribute&, const Values& values);
/// All fields of a group: "value" gives value1, value2, ... as many as the group has.
Values getFields(const Tree&, const Control& control, const Attribute&);

/// "labelArray3" sets label1, label2 and label3.
Result<void> setNumbered(Tree&, Control& control, const Attribute&, const Values& values);
Values getNumbered(const Tree&, const Control& control, const Attribute&);

/// "name" + number, as the attribute of a group that is so called; empty when it has none.
[[nodiscard]] std::string_view numbered(const Control& control, std::string_view name, int number);

/// The scripts of these attributes that are not empty, `#1` ... replaced by the values.
[[nodiscard]] std::vector<std::string> scriptsOf(const Control& control,
                                                 const std::vector<std::string_view>& names,
                                                 const Values& values = {});

/// The child that a pane layout shows in a pane, from 1; empty when it shows none.
[[nodiscard]] Values paneAt(const Control& layout, std::size_t index);

/// Makes a button its collection's selected one; null: none.
void selectInCollection(Control& collection, Control* button);

// Gestures.
Result<std::vector<std::string>> pressGesture(Tree&, Control& control,
                                              const Values& values);  ///< runs `command`
Result<std::vector<std::string>> valueGesture(Tree&, Control& control,
                                              const Values& values);  ///< sets `value`
Result<std::vector<std::string>> toggleGesture(
    Tree&, Control& control, const Values& values);  ///< on or off; nothing: toggles
Result<std::vector<std::string>> textGesture(Tree&, Control& control,
                                             const Values& values);  ///< sets `text`
Result<std::vector<std::string>> fieldGesture(Tree&, Control& control,
                                              const Values& values);  ///< one field of a group

}  // namespace host::ui
