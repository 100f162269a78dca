#include "marlohost/Services.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include <memory>

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

}
