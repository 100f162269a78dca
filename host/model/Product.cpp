// The identity of the product, and whether this process is its plug-in form.

#include "Host/Product.h"

#include "marlohost/Services.h"

#include <atomic>

namespace
{

std::atomic<bool> s_isPlugin{false};

}

namespace Product
{

QString name()
{
    return QStringLiteral("Marlo");
}

QString longVersion()
{
    return QStringLiteral(MARLO_PRODUCT_VERSION);
}

QString displayName()
{
    return QStringLiteral("Marlo");
}

bool isPlugin()
{
    return s_isPlugin;
}

QSet<QString> trackExportOptions()
{
    return {"aftereffects-cs3", "aftereffects", "alembic",    "finalcut", "ifffse", "shake", "avid",   "nuke",
            "generic",          "quantel",      "hitfilm",    "fusion",   "vegas",  "dorin", "motion", "marloblend",
            "scratch",          "flowbox",      "glimmerset", "kestrelia"};
}

QSet<QString> trackExportOptionsExtra()
{
    return {};
}

QSet<QString> shapeExportOptions()
{
    return {"aftereffects", "shake",   "ifffse",     "combustion", "finalcut", "fusion",
            "nuke",         "hitfilm", "marloblend", "glimmerset", "premiere"};
}

QSet<QString> shapeExportOptionsExtra()
{
    return {};
}

QSet<QString> cameraSolveExportOptions()
{
    return {"aftereffects", "fbx", "hitfilm", "usd", "kestrelia", "alembic"};
}

}

namespace MarloHost
{

PluginProcess::PluginProcess() : m_before(s_isPlugin)
{
    s_isPlugin = true;
}

PluginProcess::~PluginProcess()
{
    s_isPlugin = m_before;
}

}
