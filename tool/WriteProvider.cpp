#include "WriteProvider.h"

#include "Console.h"
#include "Host/Fnd.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <cerrno>
#include <sys/stat.h>

namespace
{

/// What a real run would find in the way of a file, as far as can be seen without
/// writing.
void rehearse(QString const& path)
{
    QFileInfo const target(path);
    if (target.exists() && !(target.isFile() && target.isWritable()))
    {
        QString const reason = qt_error_string(target.isDir() ? EISDIR : target.isFile() ? EACCES : EOPNOTSUPP);
        throw Failure(Refused, QStringLiteral("Could not write to file ") + path + QStringLiteral(": ") + reason);
    }
    QString folder = target.absolutePath();
    while (!QFileInfo::exists(folder) && QDir::isAbsolutePath(folder) && folder != QDir::rootPath())
    {
        folder = QFileInfo(folder).absolutePath();
    }
    if (!QFileInfo(folder).isDir() || !Fnd::isDirWritable(folder))
    {
        throw Failure(Refused, QStringLiteral("Cannot write to ") + folder);
    }
}

/// Also through links of either kind.
bool isSameFile(QString const& left, QString const& right)
{
    struct stat one;
    struct stat other;
    return ::stat(QFile::encodeName(left).constData(), &one) == 0 &&
           ::stat(QFile::encodeName(right).constData(), &other) == 0 && one.st_dev == other.st_dev &&
           one.st_ino == other.st_ino;
}

// Notices are written for a dialog, with a few tags in them.
QString withoutMarkup(QString text)
{
    static QRegularExpression const paragraph(QStringLiteral("</?p>"));
    static QRegularExpression const tag(QStringLiteral("<[^>]*>"));
    return text.replace(paragraph, QStringLiteral(" ")).remove(tag);
}

}

void checkWorkingFolder(QString const& path)
{
    if (QDir::isRelativePath(path) && QDir::currentPath().isEmpty())
    {
        throw Failure(Refused, QStringLiteral("Could not write to ") + path +
                                   QStringLiteral(": the working folder was removed; change to another one"));
    }
}

void checkTarget(QString const& path, WritingChoices const& writing, Console const& console)
{
    checkWorkingFolder(path);
    for (QString const& input : writing.inputs)
    {
        if (isSameFile(path, input))
        {
            throw Failure(Refused, path + QStringLiteral(" is ") + input +
                                       QStringLiteral(" itself, which this command reads; choose another -o"));
        }
    }
    QFileInfo const target(path);
    // Nothing replaces a folder; writing says so.
    if (target.exists() && !target.isDir() && !writing.overwrite && !console.isInteractive())
    {
        throw Failure(Refused, path + QStringLiteral(" exists; use --overwrite to replace it"));
    }
}

WriteProvider::WriteProvider(WritingChoices const& writing, ExportRecord& record, Console& console)
    : m_writing(writing), m_record(record), m_console(console)
{
}

bool WriteProvider::confirmFailures(Korvane::ExportedFiles const& result)
{
    m_console.clearProgress();
    m_files = result.files;
    m_record.messages = result.messages;
    m_record.failedCount = result.failedCount;
    m_hasAbandoned = m_writing.strict && m_record.hasFailedFrames();
    if (m_hasAbandoned || m_writing.output == QStringLiteral("-"))
    {
        return true;
    }
    for (QString const& path : m_files.keys())
    {
        checkTarget(path, m_writing, m_console);
        if (m_writing.dryRun)
        {
            rehearse(path);
        }
    }
    return m_writing.dryRun;
}

void WriteProvider::showNotices(std::vector<ExportNotice> const& notices)
{
    for (ExportNotice const& notice : notices)
    {
        QString const text = withoutMarkup(notice.text);
        m_record.notices += notice.title.isEmpty() ? text : notice.title + QStringLiteral(": ") + text;
    }
}

// The path is known before an export starts.
QString WriteProvider::askSavePath(Export::ExportFileInfo const&, QString const&, QString const& suggestedPath)
{
    return suggestedPath;
}

bool WriteProvider::confirmWrite(QString const& path)
{
    // Asked again, as another program was faster to make the file.
    m_pending = m_pending == path ? QString() : m_pending;
    finish();
    checkTarget(path, m_writing, m_console);
    bool const isOld = QFileInfo::exists(path) && !QFileInfo(path).isDir();
    if (isOld && !m_writing.overwrite && !m_console.ask(path + QStringLiteral(" exists. Replace it?")))
    {
        return false;
    }
    m_pending = path;
    return true;
}

void WriteProvider::finish()
{
    if (!m_pending.isEmpty())
    {
        m_record.files.push_back({m_pending, m_files.value(m_pending).size()});
        m_pending.clear();
    }
}

QMap<QString, QByteArray> const& WriteProvider::files() const
{
    return m_files;
}

bool WriteProvider::hasAbandoned() const
{
    return m_hasAbandoned;
}
