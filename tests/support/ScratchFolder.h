#pragma once
// A folder for the files of one test.

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <stdexcept>

/// Empty to begin with, and gone with the object.
class ScratchFolder
{
public:
    QString path(QString const& name = QString()) const
    {
        return m_folder.filePath(name);
    }

    void write(QString const& name, QByteArray const& bytes) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        {
            throw std::runtime_error("can't write " + name.toStdString());
        }
    }

    QByteArray read(QString const& name) const
    {
        QFile file(path(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<can't be read>");
    }

    /// Of files and folders right below, hidden ones and links without a target too.
    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};
