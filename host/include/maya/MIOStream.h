#pragma once

#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>

using std::cerr;
using std::cin;
using std::clog;
using std::cout;
using std::dec;
using std::endl;
using std::fixed;
using std::flush;
using std::fstream;
using std::hex;
using std::ifstream;
using std::ios;
using std::iostream;
using std::istream;
using std::ofstream;
using std::ostream;
using std::streambuf;
using std::ws;
