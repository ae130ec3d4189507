#pragma once

class MIntArray;
class MPointArray;
class MVectorArray;

/// Gives the unit normal of every vertex: the sum of its faces' normals by area (Newell's method
/// for faces that are not flat); zero where there is none. `counts` has the corners a face,
/// `connects` their vertices. Linear.
void vertexNormals(const MPointArray& points, const MIntArray& counts, const MIntArray& connects,
                   MVectorArray& normals);
