#include "Core/ExporterMap.h"

#include "Host/KORV_ProjectManager.h"
#include "Host/PluginHost.h"

#include <QByteArray>

#include <algorithm>

namespace Export
{

TXIHost const* hostOf(KORV_ProjectManager const& project)
{
    Korvane::PluginHost const* pluginHost = project.pluginHost();
    return pluginHost ? pluginHost->host() : nullptr;
}

bool isOffered(DataFormatBase const& format, QSet<QString> categories, QSet<QString> const& extraCategories,
               TXIHost const* host)
{
    if (host && host->grants(TXIHost::EXTRA_EXPORT_CATEGORIES))
    {
        categories.unite(extraCategories);
    }
    if (!categories.intersects(format.options()))
    {
        return false;
    }
    return !host || std::any_of(format.options().begin(), format.options().end(),
                                [host](QString const& category)
                                { return host->takesCategory(0, category.toUtf8().constData()); });
}

}
