#include "PresetFile.h"

#include "Failure.h"
#include "Host/KORV_Exception.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace
{

/// The words of the library, behind the path unless they name it.
Failure failureOf(ExitStatus status, QString const& path, KORV_Exception const& error)
{
    bool const namesPath = error.message().contains(path);
    return Failure(status, namesPath ? error.message() : path + QStringLiteral(": ") + error.message());
}

}

Presets readPresets(QString const& path)
{
    try
    {
        return Export::loadPresetsFromFile(path);
    }
    catch (KORV_Exception const& error)
    {
        throw failureOf(UnreadableInput, path, error);
    }
}

void writePresets(Presets const& presets, QString const& path)
{
    QDir().mkpath(QFileInfo(path).absolutePath());
    try
    {
        Export::writePresetsToFile(presets, path);
    }
    catch (KORV_Exception const& error)
    {
        throw failureOf(Refused, path, error);
    }
}

// By the bytes, as the library sorts them.
QStringList namesOf(Presets const& presets)
{
    QStringList names = presets.keys();
    std::sort(names.begin(), names.end(),
              [](QString const& left, QString const& right) { return left.toUtf8() < right.toUtf8(); });
    return names;
}

void checkName(Presets const& presets, QString const& name)
{
    if (!presets.contains(name))
    {
        throw usageError(QStringLiteral("there is no preset \"") + name + QStringLiteral("\"; found ") +
                         quotedList(namesOf(presets)));
    }
}
