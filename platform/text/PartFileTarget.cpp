#include "text/PartFileTarget.h"

#include <QFile>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace Text
{

namespace
{

constexpr char partEnding[] = ".part";

std::nullopt_t noTarget(int error)
{
    errno = error;
    return std::nullopt;
}

/// The path that a chain of links ends at, whether something stands there or not.
/// Unset for a chain without an end.
std::optional<QByteArray> followLinks(QByteArray path)
{
    constexpr int mostLinks = 40;
    for (int i = 0; i < mostLinks; ++i)
    {
        char text[PATH_MAX];
        ssize_t const size = ::readlink(path.constData(), text, sizeof text);
        if (size < 0)
            return path;
        QByteArray const link(text, static_cast<int>(size));
        // The kernel, not a rewriting of the text, resolves "..": a folder on the way may be a link too.
        path = link.startsWith('/') ? link : path.left(path.lastIndexOf('/') + 1) + link;
    }
    return noTarget(ELOOP);
}

bool isNumber(QByteArray const& text)
{
    return !text.isEmpty() && std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c); });
}

}

Descriptor::Descriptor(int number) : m_number(number)
{
}

Descriptor::~Descriptor()
{
    close();
}

Descriptor::Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1))
{
}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    std::swap(m_number, other.m_number);
    return *this;
}

Descriptor::operator bool() const
{
    return m_number >= 0;
}

int Descriptor::number() const
{
    return m_number;
}

bool Descriptor::close()
{
    return m_number < 0 || ::close(std::exchange(m_number, -1)) == 0;
}

QByteArray PartFileTarget::folder() const
{
    return path.left(path.lastIndexOf('/') + 1);
}

QByteArray PartFileTarget::name() const
{
    return path.mid(path.lastIndexOf('/') + 1);
}

QByteArray PartFileTarget::partName(int attempt) const
{
    QByteArray const place = folder();
    long const limit = ::pathconf(place.isEmpty() ? "." : place.constData(), _PC_NAME_MAX);
    long const longest = limit > 0 ? limit : NAME_MAX;
    QByteArray tail = '.' + QByteArray::number(::getpid());
    if (attempt > 0)
        tail += '-' + QByteArray::number(attempt);
    tail += partEnding;
    QString cut = QFile::decodeName(name());
    while (!cut.isEmpty() && 1 + QFile::encodeName(cut).size() + tail.size() > longest)
        cut.chop(cut.size() > 1 && cut.at(cut.size() - 1).isLowSurrogate() ? 2 : 1);
    return '.' + QFile::encodeName(cut) + tail;
}

std::optional<PartFileTarget> findPartFileTarget(QString const& path)
{
    if (path.contains(QChar::Null))
        return noTarget(EINVAL);
    auto const resolved = followLinks(QFile::encodeName(path));
    if (!resolved)
        return std::nullopt;
    // A link may hold bytes that are no text in this locale: then nobody could be told its name.
    if (QFile::encodeName(QFile::decodeName(*resolved)) != *resolved)
        return noTarget(EILSEQ);
    PartFileTarget target{*resolved, std::nullopt};
    if (target.name().isEmpty())
        return noTarget(path.isEmpty() ? ENOENT : EISDIR);
    struct stat old;
    if (::stat(target.path.constData(), &old) != 0)
        return errno == ENOENT ? std::make_optional(target) : std::nullopt;
    if (!S_ISREG(old.st_mode))
        return noTarget(S_ISDIR(old.st_mode) ? EISDIR : EOPNOTSUPP);
    if (::faccessat(AT_FDCWD, target.path.constData(), W_OK, AT_EACCESS) != 0)
        return std::nullopt;
    target.old = old;
    return target;
}

QByteArray targetOfPart(QByteArray const& partName)
{
    if (!partName.startsWith('.') || !partName.endsWith(partEnding))
        return {};
    QByteArray const rest = partName.mid(1, partName.size() - static_cast<int>(sizeof partEnding));
    int const point = rest.lastIndexOf('.');
    int const dash = rest.indexOf('-', point);
    bool const isPart =
        isNumber(rest.mid(point + 1, dash < 0 ? -1 : dash - point - 1)) && (dash < 0 || isNumber(rest.mid(dash + 1)));
    return isPart ? rest.left(std::max(point, 0)) : QByteArray();
}

}
