#include "Core/formats/ExporterMap.h"

#include "Host/KORV_ProjectManager.h"

namespace Export
{

TXIHost const* hostOf(KORV_ProjectManager const& project)
{
    Korvane::PluginHost const* pluginHost = project.pluginHost();
    return pluginHost ? pluginHost->host() : nullptr;
}

}
