#include "shared/settings/storeValues.h"

#include <maya/MGlobal.h>
#include <maya/MString.h>

#include "shared/settings/toolSettings.h"

namespace {

constexpr const char* kSlideOnItself = "Load Object, or slide on itself";

bool windowIsOpen(const char* query) {
  int exists = 0;
  return MGlobal::executeCommand(query, exists, false, false) == MS::kSuccess && exists == 1;
}

void readNumber(const char* query, int& setting) {
  int value = 0;
  if (MGlobal::executeCommand(query, value, false, false) == MS::kSuccess) setting = value;
}

void readCheck(const char* query, bool& setting) {
  int value = setting ? 1 : 0;
  readNumber(query, value);
  setting = value != 0;
}

MString readText(const char* query) {
  MString text;
  if (MGlobal::executeCommand(query, text, false, false) != MS::kSuccess) text.clear();
  return text;
}

/// The place among `buttons` of a collection's selected one.
template <unsigned int count>
void readChoice(const char* query, const char* const (&buttons)[count], int& setting) {
  const MString selected = readText(query);
  for (unsigned int i = 0; i < count; ++i)
    if (selected == buttons[i]) setting = static_cast<int>(i);
}

void readModelingWindow(toolSettings& settings) {
  readCheck("checkBox -q -v multicomp_QXMT_CB", settings.multiComponent);
  readNumber("intField -q -v intensity_QXMT_IF", settings.intensity);
  readNumber("intField -q -v smoothIntensity_QXMT_IF", settings.smoothIntensity);
  readNumber("intField -q -v smoothPush_QXMT_IF", settings.smoothPush);
  readCheck("checkBox -q -v enable_slide_soft_select_QXMT_CB", settings.slideSoftSelect);
  settings.slideOnItself =
      settings.slideSoftSelect &&
      readText("textField -q -tx add_static_slide_object_QXMT_TF") == kSlideOnItself;
  readChoice("radioCollection -q -sl normal_direction_QXMT_RB",
             {"normal_direction_vertex_QXMT_RB", "normal_direction_camera_QXMT_RB"},
             settings.normalDirection);
  readCheck("checkBox -q -v mirror_QXMT_CB", settings.mirror);
  readCheck("checkBox -q -v lockAxis_QXMT_CB", settings.lockAxis);
  readCheck("checkBox -q -v lockXAxis_QXMT_CB", settings.lockXAxis);
  readCheck("checkBox -q -v lockYAxis_QXMT_CB", settings.lockYAxis);
  readCheck("checkBox -q -v lockZAxis_QXMT_CB", settings.lockZAxis);
  readChoice("radioCollection -q -sl mirror_QXMT_RB",
             {"mirrorX_QXMT_RB", "mirrorY_QXMT_RB", "mirrorZ_QXMT_RB"}, settings.mirrorAxis);
  readCheck("checkBox -q -v ignoreQuadDrawBackface_QXMT_CB", settings.ignoreQuadDrawBackface);
  settings.dragSelectNormal =
      readText("radioCollection -q -sl dragSelectType_QXMT_RB") == "dragSelectTypeNormal_QXMT_RB";
  int space = settings.mirrorWorldSpace ? 1 : 0;
  readChoice("radioCollection -q -sl mirrorSpace_QXMT_RB",
             {"objectSpace_QXMT_RB", "worldSpace_QXMT_RB"}, space);
  settings.mirrorWorldSpace = space == 1;
}

void readUvWindow(toolSettings& settings) {
  readNumber("intField -q -v smoothUvIntensity_QXMT_IF", settings.smoothUvIntensity);
  readCheck("menuItem -q -cb pinBorderEdges_QXMT_MI", settings.pinBorderEdges);
  readCheck("menuItem -q -cb fullShellCompressionColors_QXMT_MI",
            settings.fullShellCompressionColors);
}

}  // namespace

void storeValues(toolSettings& settings) {
  if (windowIsOpen("window -ex qx_modeling_ui")) readModelingWindow(settings);
  if (windowIsOpen("window -ex customUvWindow_QXMT")) readUvWindow(settings);
}
