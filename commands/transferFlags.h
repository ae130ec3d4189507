#pragma once

#include <maya/MSpace.h>
#include <maya/MStatus.h>
#include <maya/MSyntax.h>

class MArgDatabase;

constexpr const char* kHelpFlag = "-h";

/// The flags that all commands from one mesh to another have: `-sp -space`, `-md -maxDistance` and
/// `-h -help`.
MSyntax transferSyntax();

/// Reads space and distance (centimetres; 0: no limit); what is not given stays.
/// @return failure, after an error, for a space or a distance that is none
MStatus readTransferFlags(const char* command, const MArgDatabase& database, MSpace::Space& space,
                          double& maxDistance);

/// Shows what a command does and what its flags mean, and makes that its result.
MStatus showHelp(const char* text);

/// Says how many vertices a transfer changed and how many found no place: a warning when there are
/// such.
void reportTransfer(const char* command, const char* whatTheyDid, int changed, int unplaced);
