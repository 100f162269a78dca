// The 3D scene in a project file.

#include "JsonText.h"
#include "ProjectReading.h"

namespace MarloHost
{

void readLayerObject(JsonObject const&, LayerModel&, ClipModel const&)
{
}

void readGroupObject(JsonObject const&, GroupModel&, ClipModel const&)
{
}

SolveModel readSolve(JsonCursor const&, ProjectModel const&)
{
    return {};
}

void writeLayerObject(JsonText&, LayerModel const&)
{
}

void writeGroupObject(JsonText&, GroupModel const&)
{
}

void writeSolve(JsonText&, SolveModel const&)
{
}

}
