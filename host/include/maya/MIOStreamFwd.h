#pragma once

#include <iosfwd>

using std::fstream;
using std::ifstream;
using std::ios;
using std::iostream;
using std::istream;
using std::ofstream;
using std::ostream;
