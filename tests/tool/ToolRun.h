#pragma once
// Runs the built program in a folder of its own.

#include "ProjectBuilder.h"
#include "ScratchFolder.h"

#include <QProcess>

#include <nlohmann/json.hpp>

#include <functional>

/// A process that changes itself before the program starts in it.
class PreparedProcess : public QProcess
{
public:
    std::function<void()> prepare;

protected:
    void setupChildProcess() override
    {
        if (prepare)
        {
            prepare();
        }
    }
};

struct ToolResult
{
    int status = -1;
    QByteArray out;
    QByteArray err;

    nlohmann::json json() const
    {
        return nlohmann::json::parse(out.toStdString());
    }
};

/// An empty folder, in which the program runs, with a clean environment.
class ToolFolder : public ScratchFolder
{
public:
    ToolResult run(QStringList const& arguments, std::function<void()> const& prepare = nullptr)
    {
        PreparedProcess process;
        process.prepare = prepare;
        process.setWorkingDirectory(path("."));
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(MARLO_TOOL), arguments);
        ToolResult result;
        if (process.waitForFinished(120'000) && process.exitStatus() == QProcess::NormalExit)
        {
            result.status = process.exitCode();
        }
        result.out = process.readAllStandardOutput();
        result.err = process.readAllStandardError();
        return result;
    }

    using ScratchFolder::write;

    void write(QString const& name, ProjectBuilder const& project) const
    {
        write(name, MarloHost::writeProject(project.model));
    }

    /// Relative paths of all files, hidden ones too.
    QStringList files() const
    {
        return filesOf(QDir(path(".")), QString());
    }

    QProcessEnvironment environment = cleanEnvironment();

private:
    static QProcessEnvironment cleanEnvironment()
    {
        QProcessEnvironment clean = QProcessEnvironment::systemEnvironment();
        for (char const* name : {"LANG", "LC_ALL", "LC_NUMERIC", "LANGUAGE", "QT_HASH_SEED", "SOURCE_DATE_EPOCH"})
        {
            clean.remove(QString::fromUtf8(name));
        }
        return clean;
    }

    static QStringList filesOf(QDir const& folder, QString const& prefix)
    {
        QStringList found;
        for (QFileInfo const& entry :
             folder.entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name))
        {
            QString const name = prefix + entry.fileName();
            found += entry.isDir() ? filesOf(QDir(entry.filePath()), name + QLatin1Char('/')) : QStringList(name);
        }
        return found;
    }
};

/// A short project with one tracked, current layer.
inline ProjectBuilder movingProject(QString const& layer = QStringLiteral("Wall"), int frameCount = 3)
{
    ProjectBuilder project(frameCount);
    project.clip().frameOffset = 1001;
    project.addLayer(layer);
    project.layer().selected = true;
    return project.track([](int frame) { return ProjectBuilder::translation(2.5 * frame, -frame); });
}
