#pragma once
// Where a write goes, and how its part file is named there.

#include <QByteArray>
#include <QString>

#include <optional>
#include <sys/stat.h>

namespace Text
{

/// Closes a file descriptor at the end.
class Descriptor
{
public:
    explicit Descriptor(int number = -1);
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;

    explicit operator bool() const;
    int number() const;

    /// False with errno set when what was written doesn't arrive after all.
    bool close();

private:
    int m_number;
};

/// Where a write goes once links are followed.
struct PartFileTarget
{
    QByteArray path;

    /// Of the file that stands there; unset for a new one.
    std::optional<struct stat> old;

    /// Up to and with the last slash; empty for the current folder.
    QByteArray folder() const;
    QByteArray name() const;

    /// ".NAME.PID.part", NAME cut so that the whole is a legal file name. Attempts
    /// after the first add their number: ".NAME.PID-ATTEMPT.part".
    QByteArray partName(int attempt) const;
};

/// Unset, with the reason in errno, when nothing can be written there.
std::optional<PartFileTarget> findPartFileTarget(QString const& path);

/// The NAME in the name of a part file; empty for any other name.
QByteArray targetOfPart(QByteArray const& partName);

}
