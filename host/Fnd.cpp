#include "Host/Fnd.h"

#include "marlohost/Services.h"

#include <QFileInfo>

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
