#pragma once
// Stand-ins for what an interactive host has around it.

#include "Host/Fnd.h"
#include "Host/HostApi.h"

#include <QMap>
#include <QByteArray>
#include <QString>

namespace MarloHost
{

/// A clipboard in memory.
class MARLO_HOST_API MemoryClipboard : public Fnd::IClipboard
{
public:
    ~MemoryClipboard() override;
    void setText(QString const& text) override;
    void setMimeData(QMimeData* data) override;

    /// Whether anything was put here.
    bool isEmpty() const;
    QString const& text() const;

    /// Content by type of the last setMimeData.
    QMap<QString, QByteArray> const& mimeData() const;

private:
    bool m_isEmpty = true;
    QString m_text;
    QMap<QString, QByteArray> m_mimeData;
};

/// The desktop's clipboard; needs a running QGuiApplication.
class MARLO_HOST_API SystemClipboard : public Fnd::IClipboard
{
public:
    ~SystemClipboard() override;
    void setText(QString const& text) override;
    void setMimeData(QMimeData* data) override;
};

/// While one lives, Product::isPlugin() says yes.
class MARLO_HOST_API PluginProcess
{
public:
    PluginProcess();
    ~PluginProcess();
    PluginProcess(PluginProcess const&) = delete;
    PluginProcess& operator=(PluginProcess const&) = delete;

private:
    bool m_before;
};

/// Log lines below this level are dropped; warnings and errors by default.
MARLO_HOST_API void setLogLevel(Core::LoggerBase::LogLevel lowest);

}
