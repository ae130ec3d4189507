#include "brushes/uvTarget.h"

uvTarget::~uvTarget() = default;
