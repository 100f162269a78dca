#pragma once
// A small project made of a fuzzer's bytes.

#include "Dice.h"

#include "marlohost/ProjectModel.h"

/// Everything that a project can hold may be in it: layers in groups, contours of both kinds,
/// meshes, a solve, several views and clips, fields, odd names and numbers. Names refer to what
/// is there and lists have the lengths that they need; whether the numbers make sense is left
/// to readProject().
MarloHost::ProjectModel randomProject(Dice& dice);

/// Puts NaN and infinities in places that a reader would refuse and a host may still have.
void spoil(MarloHost::ProjectModel& project, Dice& dice);
