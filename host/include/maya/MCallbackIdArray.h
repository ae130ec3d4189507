#pragma once

#include <maya/MMessage.h>
