#include "host/ui/control_type.h"

#include <unordered_map>

#include "host/ui/behaviours.h"

namespace host::ui {

namespace {

constexpr Attribute kCommon[] = {
    {"ann", "annotation", "s"},
    {"bgc", "backgroundColor", "fff"},
    {"ebg", "enableBackground", "b"},
    {"hlc", "highlightColor", "fff"},
    {"nbg", "noBackground", "b"},
    {"en", "enable", "b", "1"},
    {"ekf", "enableKeyboardFocus", "b", "1"},
    {"m", "manage", "b", "1"},
    {"vis", "visible", "b", "1"},
    {"vcc", "visibleChangeCommand", "c"},
    {"w", "width", "i"},
    {"h", "height", "i"},
    {"dtg", "docTag", "s"},
    {"po", "preventOverride", "b"},
    {"sbm", "statusBarMessage", "s"},
    {"dgc", "dragCallback", "c"},
    {"dpc", "dropCallback", "c"},
    {"io", "isObscured", "", "0", kQuery},
    {"fpn", "fullPathName", "", "", kQuery, 0, nullptr, getFullPath},
    {"p", "parent", "s", "", kCreateQuery, 0, refuseSet, getParentPath},
    {"pma", "popupMenuArray", "", "", kQuery, kList, nullptr, getPopupNames},
    {"npm", "numberOfPopupMenus", "", "", kQuery, 0, nullptr, getPopupCount},
};

constexpr Attribute kLayout[] = {
    {"ca", "childArray", "", "", kQuery, kList, nullptr, getChildNames},
    {"nch", "numberOfChildren", "", "", kQuery, 0, nullptr, getChildCount},
    {"gsp", "generalSpacing", "i"},
};

constexpr Attribute kColumns[] = {
    {"adj", "adjustableColumn", "i"},
    {"ad1", "adjustableColumn1", "i", "", kAll, kOptionalArgs},
    {"ad2", "adjustableColumn2", "i", "", kAll, kOptionalArgs},
    {"ad3", "adjustableColumn3", "i", "", kAll, kOptionalArgs},
    {"ad4", "adjustableColumn4", "i", "", kAll, kOptionalArgs},
    {"ad5", "adjustableColumn5", "i", "", kAll, kOptionalArgs},
    {"ad6", "adjustableColumn6", "i", "", kAll, kOptionalArgs},
    {"cw", "columnWidth", "ii", "", kAll, kMulti | kKeyed},
    {"cw1", "columnWidth1", "i"},
    {"cw2", "columnWidth2", "ii"},
    {"cw3", "columnWidth3", "iii"},
    {"cw4", "columnWidth4", "iiii"},
    {"cw5", "columnWidth5", "iiiii"},
    {"cw6", "columnWidth6", "iiiiii"},
    {"cal", "columnAlign", "is", "", kAll, kMulti | kKeyed},
    {"cl1", "columnAlign1", "s"},
    {"cl2", "columnAlign2", "ss"},
    {"cl3", "columnAlign3", "sss"},
    {"cl4", "columnAlign4", "ssss"},
    {"cl5", "columnAlign5", "sssss"},
    {"cl6", "columnAlign6", "ssssss"},
    {"cat", "columnAttach", "isi", "", kAll, kMulti | kKeyed},
    {"ct1", "columnAttach1", "s"},
    {"ct2", "columnAttach2", "ss"},
    {"ct3", "columnAttach3", "sss"},
    {"ct4", "columnAttach4", "ssss"},
    {"ct5", "columnAttach5", "sssss"},
    {"ct6", "columnAttach6", "ssssss"},
    {"co1", "columnOffset1", "i"},
    {"co2", "columnOffset2", "ii"},
    {"co3", "columnOffset3", "iii"},
    {"co4", "columnOffset4", "iiii"},
    {"co5", "columnOffset5", "iiiii"},
    {"co6", "columnOffset6", "iiiiii"},
    {"rat", "rowAttach", "isi", "", kAll, kMulti | kKeyed},
};

}  // namespace

AttributeTable commonAttributes() {
  return kCommon;
}
AttributeTable layoutAttributes() {
  return kLayout;
}
AttributeTable columnAttributes() {
  return kColumns;
}

const Attribute* ControlType::find(std::string_view longName) const {
  for (const AttributeTable table : tables)
    for (const Attribute& attribute : table)
      if (attribute.longName == longName) return &attribute;
  return nullptr;
}

const std::vector<ControlType>& controlTypes() {
  static const std::vector<ControlType> types = [] {
    std::vector<ControlType> all;
    addWindowTypes(all);
    addLayoutTypes(all);
    addButtonTypes(all);
    addChoiceTypes(all);
    addFieldTypes(all);
    addFieldGroupTypes(all);
    addMenuTypes(all);
    addListTypes(all);
    addDisplayTypes(all);
    return all;
  }();
  return types;
}

const ControlType* findControlType(std::string_view name) {
  static const std::unordered_map<std::string_view, const ControlType*> byName = [] {
    std::unordered_map<std::string_view, const ControlType*> map;
    for (const ControlType& type : controlTypes()) map.emplace(type.name, &type);
    return map;
  }();
  const auto found = byName.find(name);
  return found == byName.end() ? nullptr : found->second;
}

}  // namespace host::ui
