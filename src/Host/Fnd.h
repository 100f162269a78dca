#pragma once
// Services of the host's foundation: log, clipboard, folders, usage records.

#include "Host/HostApi.h"

#include <QString>
#include <boost/shared_ptr.hpp>

#include <filesystem>
#include <string>
#include <utility>
#include <vector>

class QMimeData;

namespace Core
{

struct LoggerBase
{
    enum LogLevel
    {
        Debug = 0,
        Info = 1,
        Warning = 2,
        Error = 3
    };
};

}

namespace Fnd
{

/// The process log. Lines go to stderr from the level on that the host set.
class MARLO_HOST_API Logger
{
public:
    static Logger& logger();

    void log(Core::LoggerBase::LogLevel level, QString const& text);
    void log(Core::LoggerBase::LogLevel level, std::string const& text);

private:
    Logger();
};

/// Part of a file name in which characters that a file system can't hold stand as
/// "%" and two hexadecimal digits.
class MARLO_HOST_API FSPercentEscapedString
{
public:
    static FSPercentEscapedString fromPlain(QString const& text);

    /// As it stands on the disk.
    QString const& escaped() const;
    QString plain() const;

private:
    explicit FSPercentEscapedString(QString const& escaped);
    QString m_escaped;
};

/// Where copied exports go.
class MARLO_HOST_API IClipboard
{
public:
    virtual ~IClipboard();

    virtual void setText(QString const& text) = 0;

    /// Takes ownership of the data.
    virtual void setMimeData(QMimeData* data) = 0;
};

/// Whether files can be made in this folder.
MARLO_HOST_API bool isDirWritable(QString const& path);

MARLO_HOST_API std::filesystem::path toFsPath(QString const& path);

/// Takes records of what users did; where they go is the host's affair.
class MARLO_HOST_API UsageLogger
{
public:
    class MARLO_HOST_API Record
    {
    public:
        explicit Record(QString const& name);
        virtual ~Record();

        /// @param shared false keeps the value on this machine.
        void addValue(QString const& key, QString const& value, bool shared);

        struct Value
        {
            QString key;
            QString value;
            bool shared;
        };
        QString const& name() const;
        std::vector<Value> const& values() const;

    private:
        QString m_name;
        std::vector<Value> m_values;
    };

    class MARLO_HOST_API UserActivity : public Record
    {
    public:
        explicit UserActivity(QString const& name);
        ~UserActivity() override;
    };

    virtual ~UsageLogger();
    virtual void log(Record const& record) = 0;
};

}

/// What only an interactive session has.
class MARLO_HOST_API ApplicationContext
{
public:
    virtual ~ApplicationContext();
    virtual Fnd::UsageLogger& usageLogger() const = 0;
};

namespace Korvane
{

/// Puts text on the clipboard as it stands.
MARLO_HOST_API void smartCopy(Fnd::IClipboard& clipboard, QString const& text);

}
