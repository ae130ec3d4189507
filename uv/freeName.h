#pragma once

class MString;

/// A name that no node has, in the DAG under whatever parent or out of it: the stem, else the stem
/// with the first number that makes it one.
MString freeName(const char* stem);
