#include "Host/Fnd.h"

#include "marlohost/Services.h"

#include <QFileInfo>
#include <QUrl>

#include <atomic>
#include <cstdio>

namespace
{

std::atomic<int> s_lowestLevel{Core::LoggerBase::Warning};

}

namespace MarloHost
{

void setLogLevel(Core::LoggerBase::LogLevel lowest)
{
    s_lowestLevel = lowest;
}

}

namespace Fnd
{

Logger::Logger() = default;

Logger& Logger::logger()
{
    static Logger logger;
    return logger;
}

void Logger::log(Core::LoggerBase::LogLevel level, QString const& text)
{
    log(level, text.toStdString());
}

void Logger::log(Core::LoggerBase::LogLevel level, std::string const& text)
{
    if (level >= s_lowestLevel)
    {
        std::fprintf(stderr, "%s\n", text.c_str());
    }
}

FSPercentEscapedString::FSPercentEscapedString(QString const& escaped) : m_escaped(escaped)
{
}

FSPercentEscapedString FSPercentEscapedString::fromPlain(QString const& text)
{
    // Text that isn't ASCII stays; a file system holds it.
    QString escaped;
    for (QChar const c : text)
    {
        bool const kept = c.unicode() >= 0x20 && c != QLatin1Char('%') && c != QLatin1Char('/') && c.unicode() != 0x7f;
        escaped += kept ? QString(c) : QLatin1Char('%') + QString::number(c.unicode() + 0x100, 16).mid(1).toUpper();
    }
    return FSPercentEscapedString(escaped);
}

QString const& FSPercentEscapedString::escaped() const
{
    return m_escaped;
}

QString FSPercentEscapedString::plain() const
{
    return QUrl::fromPercentEncoding(m_escaped.toUtf8());
}

IClipboard::~IClipboard() = default;

bool isDirWritable(QString const& path)
{
    QFileInfo const info(path);
    return info.isDir() && info.isWritable() && info.isExecutable();
}

std::filesystem::path toFsPath(QString const& path)
{
    return std::filesystem::u8path(path.toStdString());
}

UsageLogger::~UsageLogger() = default;

UsageLogger::Record::Record(QString const& name) : m_name(name)
{
}

UsageLogger::Record::~Record() = default;

void UsageLogger::Record::addValue(QString const& key, QString const& value, bool shared)
{
    m_values.push_back({key, value, shared});
}

QString const& UsageLogger::Record::name() const
{
    return m_name;
}

std::vector<UsageLogger::Record::Value> const& UsageLogger::Record::values() const
{
    return m_values;
}

UsageLogger::UserActivity::UserActivity(QString const& name) : Record(name)
{
}

UsageLogger::UserActivity::~UserActivity() = default;

}

ApplicationContext::~ApplicationContext() = default;

namespace Korvane
{

void smartCopy(Fnd::IClipboard& clipboard, QString const& text)
{
    clipboard.setText(text);
}

}
