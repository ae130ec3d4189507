#include "shared/settings/toolOptions.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

namespace {

constexpr const char* const kSlideTexts[] = {"Load Object, or slide on itself", nullptr};
constexpr const char* const kDirections[] = {"normal_direction_vertex_QXMT_RB",
                                             "normal_direction_camera_QXMT_RB", nullptr};
constexpr const char* const kAxes[] = {"mirrorX_QXMT_RB", "mirrorY_QXMT_RB", "mirrorZ_QXMT_RB",
                                       nullptr};
constexpr const char* const kSpaces[] = {"objectSpace_QXMT_RB", "worldSpace_QXMT_RB", nullptr};
constexpr const char* const kDragTypes[] = {"dragSelectTypeNormal_QXMT_RB", nullptr};

template <bool toolSettings::*setting>
void storeFlag(toolSettings& settings, int answer) {
  settings.*setting = answer != 0;
}
template <int toolSettings::*setting>
void storeNumber(toolSettings& settings, int answer) {
  settings.*setting = answer;
}
/// An answer that is none of the known ones keeps what was.
template <int toolSettings::*setting>
void storeChoice(toolSettings& settings, int answer) {
  if (answer >= 0) settings.*setting = answer;
}

void storeSpace(toolSettings& settings, int answer) {
  if (answer >= 0) settings.mirrorWorldSpace = answer == 1;
}
void storeDragType(toolSettings& settings, int answer) {
  settings.dragSelectNormal = answer == 0;
}
void storeSlideObject(toolSettings& settings, int answer) {
  settings.slideOnItself = settings.slideSoftSelect && answer == 0;
}

bool isOpen(const char* query) {
  int exists = 0;
  return MGlobal::executeCommand(query, exists, false, false) == MS::kSuccess && exists == 1;
}

}  // namespace

// clang-format off
const toolOption kModelingOptions[] = {
    {"checkBox -q -v multicomp_QXMT_CB", nullptr, storeFlag<&toolSettings::multiComponent>},
    {"intField -q -v intensity_QXMT_IF", nullptr, storeNumber<&toolSettings::intensity>},
    {"intField -q -v smoothIntensity_QXMT_IF", nullptr, storeNumber<&toolSettings::smoothIntensity>},
    {"intField -q -v smoothPush_QXMT_IF", nullptr, storeNumber<&toolSettings::smoothPush>},
    {"checkBox -q -v enable_slide_soft_select_QXMT_CB", nullptr, storeFlag<&toolSettings::slideSoftSelect>},
    {"textField -q -tx add_static_slide_object_QXMT_TF", kSlideTexts, storeSlideObject, &toolSettings::slideSoftSelect},
    {"radioCollection -q -sl normal_direction_QXMT_RB", kDirections, storeChoice<&toolSettings::normalDirection>},
    {"checkBox -q -v mirror_QXMT_CB", nullptr, storeFlag<&toolSettings::mirror>},
    {"checkBox -q -v lockAxis_QXMT_CB", nullptr, storeFlag<&toolSettings::lockAxis>},
    {"checkBox -q -v lockXAxis_QXMT_CB", nullptr, storeFlag<&toolSettings::lockXAxis>},
    {"checkBox -q -v lockYAxis_QXMT_CB", nullptr, storeFlag<&toolSettings::lockYAxis>},
    {"checkBox -q -v lockZAxis_QXMT_CB", nullptr, storeFlag<&toolSettings::lockZAxis>},
    {"radioCollection -q -sl mirror_QXMT_RB", kAxes, storeChoice<&toolSettings::mirrorAxis>},
    {"checkBox -q -v ignoreQuadDrawBackface_QXMT_CB", nullptr, storeFlag<&toolSettings::ignoreQuadDrawBackface>},
    {"radioCollection -q -sl dragSelectType_QXMT_RB", kDragTypes, storeDragType},
    {"radioCollection -q -sl mirrorSpace_QXMT_RB", kSpaces, storeSpace},
};
const toolOption kUvOptions[] = {
    {"intField -q -v smoothUvIntensity_QXMT_IF", nullptr, storeNumber<&toolSettings::smoothUvIntensity>},
    {"menuItem -q -cb pinBorderEdges_QXMT_MI", nullptr, storeFlag<&toolSettings::pinBorderEdges>},
    {"menuItem -q -cb fullShellCompressionColors_QXMT_MI", nullptr, storeFlag<&toolSettings::fullShellCompressionColors>},
};
// clang-format on

bool toolOption::ask(int& answer) const {
  if (!answers) {
    int number = 0;
    if (MGlobal::executeCommand(query, number, false, false) != MS::kSuccess) return false;
    answer = number;
    return true;
  }
  MString text;
  answer = -1;
  if (MGlobal::executeCommand(query, text, false, false) != MS::kSuccess) return true;
  for (int i = 0; answers[i]; ++i)
    if (text == answers[i]) answer = i;
  return true;
}

bool modelingWindowIsOpen() {
  return isOpen("window -ex qx_modeling_ui");
}
bool uvWindowIsOpen() {
  return isOpen("window -ex customUvWindow_QXMT");
}
