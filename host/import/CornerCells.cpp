#include "CornerCells.h"

#include <QRegularExpression>

#include <algorithm>

namespace MarloHost
{

namespace
{

using Corners = Korvane::TrackingExporterTypes;

/// @param separator a blank that stays
Token withoutBlanks(Token text, char separator = ANY_SEPARATOR)
{
    auto const goes = [separator](char c) { return isBlank(c) && c != separator; };
    while (!text.empty() && goes(text.front()))
    {
        text.remove_prefix(1);
    }
    while (!text.empty() && goes(text.back()))
    {
        text.remove_suffix(1);
    }
    return text;
}

bool isOneOf(char c, Token characters)
{
    return characters.find(c) != Token::npos;
}

/// Takes a cell from the front of a line: what is in quotes, or all up to one of the characters
/// that end it.
Token takeCell(Token& line, Token ends)
{
    bool const isQuoted = !line.empty() && line.front() == '"';
    std::size_t end = isQuoted ? line.find('"', 1) : line.find_first_of(ends);
    while (isQuoted && end != Token::npos && line.substr(end + 1, 1) == "\"")
    {
        end = line.find('"', end + 2);
    }
    end = std::min(end, line.size());
    Token const cell = isQuoted ? line.substr(1, end - 1) : line.substr(0, end);
    line.remove_prefix(std::min(isQuoted ? end + 1 : end, line.size()));
    return cell;
}

/// A comment starts behind a blank or at the start of the line, and not where a cell does.
Token withoutComment(Token line, char separator)
{
    bool awaitsCell = false;
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        if (line[i] == '#' && (i == 0 || (isBlank(line[i - 1]) && !awaitsCell)))
        {
            return line.substr(0, i);
        }
        awaitsCell = line[i] == separator || (awaitsCell && isBlank(line[i]));
    }
    return line;
}

void splitAt(char separator, Token line, std::vector<Token>& cells)
{
    line = withoutBlanks(withoutComment(line, separator), separator);
    for (bool hasNext = !line.empty(); hasNext;)
    {
        line = withoutBlanks(line, separator);
        cells.push_back(withoutBlanks(takeCell(line, Token(&separator, 1))));
        std::size_t const end = line.find(separator);
        hasNext = end != Token::npos;
        line.remove_prefix(hasNext ? end + 1 : line.size());
    }
}

// A "#" inside of a word, as file names may have it, is no comment.
void splitAnywhere(Token line, std::vector<Token>& cells)
{
    bool awaitsCell = false;
    while (!line.empty() && line.front() != '#')
    {
        if (isBlank(line.front()))
        {
            line.remove_prefix(1);
        }
        else if (isOneOf(line.front(), ",;"))
        {
            if (awaitsCell || cells.empty())
            {
                cells.push_back(Token());
            }
            awaitsCell = true;
            line.remove_prefix(1);
        }
        else
        {
            cells.push_back(takeCell(line, " \t\v\f,;"));
            awaitsCell = false;
        }
    }
    if (awaitsCell)
    {
        cells.push_back(Token());
    }
}

/// A column's name in small letters and digits alone.
QString keyOf(Token name)
{
    static QRegularExpression const other(QStringLiteral("[^a-z0-9]"));
    static QRegularExpression const decoration(QStringLiteral("^(corner|point|pt|p)(?=[0-9xyulbtr])|px$"));
    return textOf(name).toLower().remove(other).remove(decoration);
}

/// What a name says of a column: a corner by its place or its number, and 0 for x or 1 for y.
struct CornerName
{
    int corner;
    bool isNumbered;
    std::size_t axis;
};

std::optional<CornerName> cornerNameOf(QString const& key)
{
    static QRegularExpression const axisLast(QStringLiteral("^(.+)([xy])$"));
    static QRegularExpression const axisFirst(QStringLiteral("^([xy])(.+)$"));
    static QList<QStringList> const places{{"ll", "bl", "lowerleft", "bottomleft", "leftbottom"},
                                           {"lr", "br", "lowerright", "bottomright", "rightbottom"},
                                           {"ul", "tl", "upperleft", "topleft", "lefttop"},
                                           {"ur", "tr", "upperright", "topright", "righttop"}};
    auto const last = axisLast.match(key);
    auto const first = axisFirst.match(key);
    for (auto const& [corner, axis] :
         {std::pair(last.captured(1), last.captured(2)), {first.captured(2), first.captured(1)}})
    {
        std::size_t const index = axis == QLatin1String("y") ? 1 : 0;
        bool isNumber = false;
        int const number = corner.toInt(&isNumber);
        if (isNumber && number >= 0 && number <= 4)
        {
            return CornerName{number, true, index};
        }
        for (int place = 0; place < places.size(); ++place)
        {
            if (places[place].contains(corner))
            {
                return CornerName{place, false, index};
            }
        }
    }
    return std::nullopt;
}

/// How well a name suits the column of frames; 0 for not at all.
int frameRankOf(QString const& key)
{
    static QStringList const names{"name",     "img",     "imagename",   "image",   "filename",
                                   "file",     "f",       "fr",          "frameid", "frameindex",
                                   "framenum", "frameno", "framenumber", "frames",  "frame"};
    return names.indexOf(key) + 1;
}

/// Where x and y of the corners are, by the five numbers or four places that names may give.
using CornerPlaces = std::array<std::array<std::optional<std::size_t>, 2>, 5>;

bool isNamed(CornerPlaces const& places, std::size_t corner)
{
    return places[corner][0] && places[corner][1];
}

std::optional<CornerColumns> takeCorners(CornerColumns columns, CornerPlaces const& places, bool areNumbered)
{
    std::vector<std::size_t> corners;
    for (std::size_t i = 0; i < places.size(); ++i)
    {
        if (isNamed(places, i))
        {
            corners.push_back(i);
        }
        else if (places[i][0] || places[i][1])
        {
            return std::nullopt;
        }
    }
    if (corners.size() != 4)
    {
        return std::nullopt;
    }
    if (!areNumbered)
    {
        std::sort(corners.begin(), corners.end(),
                  [&](std::size_t a, std::size_t b) { return *places[a][0] < *places[b][0]; });
        columns.order.emplace();
    }
    for (std::size_t i = 0; i < 4; ++i)
    {
        columns.corners[2 * i] = *places[corners[i]][0];
        columns.corners[2 * i + 1] = *places[corners[i]][1];
        if (columns.order)
        {
            (*columns.order)[i] = static_cast<Corners::SurfaceCorner>(corners[i]);
        }
    }
    return columns;
}

}

void splitCells(Token line, CellSeparator separator, std::vector<Token>& cells)
{
    cells.clear();
    if (separator != ANY_SEPARATOR)
    {
        splitAt(separator, line, cells);
        return;
    }
    splitAnywhere(line, cells);
    // Of a table with tabs a frame without corners: its number and nothing between the tabs.
    auto const tabs = static_cast<std::size_t>(std::count(line.begin(), line.end(), '\t'));
    if (cells.size() == 1 && tabs == 8)
    {
        cells.resize(1 + tabs);
    }
}

std::optional<CornerColumns> columnsOfHeader(Token line)
{
    line = withoutBlanks(line);
    while (!line.empty() && line.front() == '#')
    {
        line = withoutBlanks(line.substr(1));
    }
    CornerColumns columns;
    for (char const separator : {';', ',', '\t'})
    {
        bool const isIt = columns.separator == ANY_SEPARATOR && isOneOf(separator, line);
        columns.separator = isIt ? separator : columns.separator;
    }
    std::vector<Token> names;
    splitCells(line, columns.separator, names);
    columns.count = names.size();

    CornerPlaces places;
    int bestFrame = 0;
    int numbered = 0;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        QString const key = keyOf(names[i]);
        std::optional<CornerName> const corner = cornerNameOf(key);
        if (corner)
        {
            std::optional<std::size_t>& place = places[static_cast<std::size_t>(corner->corner)][corner->axis];
            if (place)
            {
                return std::nullopt;
            }
            place = i;
            numbered += corner->isNumbered ? 1 : 0;
            continue;
        }
        if (frameRankOf(key) > bestFrame)
        {
            bestFrame = frameRankOf(key);
            if (columns.frame)
            {
                columns.ignored += textOf(names[*columns.frame]);
            }
            columns.frame = i;
        }
        else if (!names[i].empty())
        {
            columns.ignored += textOf(names[i]);
        }
    }
    bool const isMixed = numbered != 0 && numbered != 8;
    return isMixed ? std::nullopt : takeCorners(columns, places, numbered != 0);
}

QString foreignKindOf(QByteArray const& bytes)
{
    constexpr int MOST_BYTES = 4096;
    QByteArray const head = bytes.left(MOST_BYTES);
    QString const text = QString::fromUtf8(head).trimmed();
    static QRegularExpression const nukeNode(
        QStringLiteral("^(#! ?\\S*[Nn]uke|set cut_paste_input|version \\d+\\.\\d+ v\\d|[A-Z]\\w+ \\{\\s*$)"),
        QRegularExpression::MultilineOption);
    static QRegularExpression const keyframes(QStringLiteral("^(\\*Marlo 3D|[^\\n]*Keyframe Data\\s*$)"),
                                              QRegularExpression::MultilineOption);
    QString const makeTable =
        QStringLiteral("; make a table of its corners, with a frame number and eight numbers in a line");
    if (head.startsWith("PK\x03\x04") || head.startsWith("\xD0\xCF\x11\xE0"))
    {
        return QStringLiteral("is a spreadsheet or an archive; save the table as text (CSV)");
    }
    if (text.startsWith(QLatin1Char('{')) && head.contains("\"marloProject\""))
    {
        return QStringLiteral("is a project already; \"marlo-export export\" takes it as it is");
    }
    if (text.startsWith(QLatin1Char('{')) || text.startsWith(QLatin1String("[")))
    {
        return QStringLiteral("is JSON") + makeTable;
    }
    if (text.startsWith(QLatin1Char('<')))
    {
        return QStringLiteral("is XML") + makeTable;
    }
    if (keyframes.match(text).hasMatch())
    {
        return QStringLiteral("is keyframe text, as After Effects pastes it") + makeTable;
    }
    return nukeNode.match(text).hasMatch() ? QStringLiteral("is a Nuke script") + makeTable : QString();
}

}
