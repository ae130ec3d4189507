#pragma once

#include <maya/MPxPolyTweakUVCommand.h>
#include <maya/MSyntax.h>

#include "uv/uvRatioPlan.h"

/// `uvRatioCmd`: what `uvRatio` does, as a UV tweak that the host applies and undoes.
class uvRatioTweakCmd : public MPxPolyTweakUVCommand {
 public:
  uvRatioTweakCmd() = default;
  MStatus parseSyntax(MArgDatabase& arguments) override;
  MStatus getTweakedUVs(const MObject& mesh, MIntArray& uvList, MFloatArray& uPos,
                        MFloatArray& vPos) override;

  static void* creator();
  static MSyntax newSyntax();

 private:
  uvRatioOptions options;
};
