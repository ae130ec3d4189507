#include "uv/uvPlacement.h"

#include "shared/mesh/mathHelper.h"

uvPlacement::uvPlacement() : centimetres(mathHelper().centimetresPerUnit()) {}
