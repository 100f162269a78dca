#include "marlohost/Services.h"

#include "Host/MessageBox.h"
#include "Host/PluginHost.h"
#include "Host/Product.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <atomic>
#include <cstdio>
#include <memory>

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

TXIHost::~TXIHost() = default;

namespace Korvane
{

PluginHost::~PluginHost() = default;
Callbacks::~Callbacks() = default;

}

ZN::Callbacks::~Callbacks() = default;

KORV_MessageBox::KORV_MessageBox(ZN::Callbacks const* callbacks) : m_callbacks(callbacks)
{
}

KORV_MESSAGEBOX_REPLY KORV_MessageBox::warning(std::string title, std::string text, KORV_MESSAGEBOX_STYLE style) const
{
    if (m_callbacks)
    {
        return m_callbacks->warning(title, text, style);
    }
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
    return KORV_MESSAGEBOX_REPLY_OK;
}

namespace MarloHost
{

MemoryClipboard::~MemoryClipboard() = default;

void MemoryClipboard::setText(QString const& text)
{
    m_isEmpty = false;
    m_text = text;
    m_mimeData.clear();
}

void MemoryClipboard::setMimeData(QMimeData* data)
{
    std::unique_ptr<QMimeData> const owned(data);
    m_isEmpty = false;
    m_text = owned->text();
    m_mimeData.clear();
    QStringList const types = owned->formats();
    for (QString const& type : types)
    {
        m_mimeData.insert(type, owned->data(type));
    }
}

bool MemoryClipboard::isEmpty() const
{
    return m_isEmpty;
}

QString const& MemoryClipboard::text() const
{
    return m_text;
}

QMap<QString, QByteArray> const& MemoryClipboard::mimeData() const
{
    return m_mimeData;
}

SystemClipboard::~SystemClipboard() = default;

void SystemClipboard::setText(QString const& text)
{
    QGuiApplication::clipboard()->setText(text);
}

void SystemClipboard::setMimeData(QMimeData* data)
{
    QGuiApplication::clipboard()->setMimeData(data);
}

PluginProcess::PluginProcess() : m_before(s_isPlugin)
{
    s_isPlugin = true;
}

PluginProcess::~PluginProcess()
{
    s_isPlugin = m_before;
}

}
