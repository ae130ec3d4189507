#pragma once

#include <maya/MArgDatabase.h>
