// Contours and meshes in a project file.

#include "JsonText.h"
#include "ProjectReading.h"

namespace MarloHost
{

void readLayerShapes(JsonObject const&, LayerModel&, ClipModel const&, QStringList const&)
{
}

void writeLayerShapes(JsonText&, LayerModel const&)
{
}

}
