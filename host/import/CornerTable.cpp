// Reading tables of corners:
//
//   frame ulx uly urx ury lrx lry llx lly
//   1 1382.77 448.67 1384.42 851.281 688.595 684.172 791.644 281.653
//   2 1372.85 482.874 1375.97 884.481 679.964 707.829 786.1 305.722

#include "marlohost/CornerTable.h"

#include "Host/KORV_Exception.h"
#include "plane/Homography.h"
#include "CornerCells.h"
#include "FrameRanges.h"
#include "TextLines.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace MarloHost
{

namespace
{

constexpr qint64 MAX_FILE_BYTES = 256LL << 20;
constexpr int MAX_FRAME = 10'000'000;
constexpr double MAX_COORDINATE = 1e6;
constexpr std::size_t NUMBERS = 8;

/// Whether the token is the word NaN.
bool isNaN(Token token)
{
    return textOf(withoutSign(token)).compare(QLatin1String("nan"), Qt::CaseInsensitive) == 0;
}

/// The last run of digits of a file name, its extension aside: that of "clip2/shot_0012.mp4" is "0012".
Token lastDigits(Token name)
{
    name.remove_prefix(name.find_last_of("/\\") + 1);
    std::size_t const point = name.rfind('.');
    if (point != Token::npos && std::any_of(name.begin() + static_cast<std::ptrdiff_t>(point) + 1, name.end(),
                                            [](char c) { return !isDigit(c); }))
    {
        name = name.substr(0, point);
    }
    while (!name.empty() && !isDigit(name.back()))
    {
        name.remove_suffix(1);
    }
    std::size_t begin = name.size();
    while (begin > 0 && isDigit(name[begin - 1]))
    {
        --begin;
    }
    return name.substr(begin);
}

/// Whether a cell counts time in hours, minutes, seconds and frames, or some of these.
bool isTimeCode(Token token)
{
    bool const isOnlyDigits =
        std::all_of(token.begin(), token.end(), [](char c) { return isDigit(c) || c == ':' || c == ';' || c == '.'; });
    return isOnlyDigits && !token.empty() && isDigit(token.front()) && token.find(':') != Token::npos;
}

class TableReader
{
public:
    TableReader(QByteArray const& text, QString const& fileName) : m_lines(text, fileName)
    {
        m_table.fileName = fileName;
    }

    CornerTable read()
    {
        while (!m_lines.atEnd())
        {
            Token const line = m_lines.take();
            splitLine(line);
            if (!isHeader(line) && !m_cells.empty())
            {
                readRow();
            }
        }
        if (m_table.rows.empty())
        {
            throw KORV_BadFile(
                __FILE__, __LINE__,
                QStringLiteral("%1: no usable row; expected eight numbers in a line, the corners of a frame")
                    .arg(m_table.fileName),
                QString());
        }
        refuseNormalised();
        return std::move(m_table);
    }

private:
    [[noreturn]] void failAt(Token token, char const* cause) const
    {
        m_lines.fail(quoted(token) + QLatin1Char(' ') + QLatin1String(cause));
    }

    void splitLine(Token line)
    {
        splitCells(line, m_columns.separator, m_cells);
        if (m_columns.areNamed() && m_cells.size() != m_columns.count)
        {
            splitCells(line, ANY_SEPARATOR, m_cells);
        }
    }

    /// Whether the line is the first with anything in it, and has no number; or names the
    /// columns in a comment ahead of that.
    bool isHeader(Token line)
    {
        if (m_sawText)
        {
            return false;
        }
        m_sawText = !m_cells.empty();
        auto const isValue = [](Token token) { return numberOf(token) || isNaN(token); };
        bool const isEmpty = std::all_of(m_cells.begin(), m_cells.end(), [](Token token) { return token.empty(); });
        if (std::any_of(m_cells.begin(), m_cells.end(), isValue) || (isEmpty && !m_cells.empty()))
        {
            return false;
        }
        if (std::optional<CornerColumns> const columns = columnsOfHeader(line))
        {
            m_columns = *columns;
            m_table.order = columns->order;
            m_table.ignoredColumns = columns->ignored;
            m_table.hasFrameNumbers = columns->frame.has_value();
            m_sawText = true;
        }
        return true;
    }

    void readRow()
    {
        bool const isFirst = m_firstRowLine == 0;
        m_firstRowLine = isFirst ? m_lines.number() : m_firstRowLine;
        std::optional<Token> const frameCell = takeColumns(isFirst);
        int const frame = frameCell ? frameNumber(*frameCell) : m_table.lastFrame + 1;
        addFrame(frame);
        readCorners(frame);
    }

    /// Picks the eight cells of the corners.
    /// @return the cell with the frame, where there is one
    std::optional<Token> takeColumns(bool isFirst)
    {
        bool const isUsual = m_cells.size() == NUMBERS || m_cells.size() == NUMBERS + 1;
        bool const isUsualHeader = m_columns.count == NUMBERS || m_columns.count == NUMBERS + 1;
        if (isFirst && isUsual && isUsualHeader && m_columns.ignored.isEmpty() && m_cells.size() != m_columns.count)
        {
            m_columns = CornerColumns(); // frames without a heading, or a heading without frames
        }
        if (m_columns.areNamed())
        {
            if (m_cells.size() != m_columns.count)
            {
                m_lines.fail(QStringLiteral("%1 values; the header names %2").arg(m_cells.size()).arg(m_columns.count));
            }
            for (std::size_t i = 0; i < NUMBERS; ++i)
            {
                m_numbers[i] = m_cells[m_columns.corners[i]];
            }
            return m_columns.frame ? std::make_optional(m_cells[*m_columns.frame]) : std::nullopt;
        }
        refuseTimeCode(m_cells.front());
        if (!isUsual)
        {
            m_lines.fail(
                QStringLiteral("%1 values; expected eight numbers, with a frame number or a file name in front "
                               "or not; columns may have any place under a header that names the corners, "
                               "ulx, uly, urx, ury, lrx, lry, llx, lly")
                    .arg(m_cells.size()));
        }
        bool const hasFrame = m_cells.size() == NUMBERS + 1;
        m_table.hasFrameNumbers = isFirst ? hasFrame : m_table.hasFrameNumbers;
        if (hasFrame != m_table.hasFrameNumbers)
        {
            m_lines.fail(QStringLiteral("%1 a frame number, unlike line %2")
                             .arg(hasFrame ? QStringLiteral("has") : QStringLiteral("lacks"))
                             .arg(m_firstRowLine));
        }
        std::copy(m_cells.end() - NUMBERS, m_cells.end(), m_numbers.begin());
        return hasFrame ? std::make_optional(m_cells.front()) : std::nullopt;
    }

    void refuseTimeCode(Token token) const
    {
        if (isTimeCode(token))
        {
            failAt(token, "is a time code; count frames instead");
        }
    }

    int frameNumber(Token token) const
    {
        refuseTimeCode(token);
        std::optional<double> number = numberOf(token);
        if (!number && !isNaN(token))
        {
            Token const digits = lastDigits(token);
            if (digits.empty())
            {
                failAt(token, "holds no frame number");
            }
            number = numberOf(digits);
        }
        if (!number || *number != std::floor(*number))
        {
            failAt(token, "isn't a frame number, which is whole");
        }
        if (std::fabs(*number) > MAX_FRAME)
        {
            failAt(token, "is beyond the frame numbers that a project takes (10000000)");
        }
        return static_cast<int>(*number);
    }

    void addFrame(int frame)
    {
        bool const isFirst = m_lines.number() == m_firstRowLine;
        if (!isFirst && frame == m_table.lastFrame)
        {
            m_lines.fail(QStringLiteral("frame %1 stands twice").arg(frame));
        }
        if (!isFirst && frame < m_table.lastFrame)
        {
            m_lines.fail(
                QStringLiteral("frame %1 comes after frame %2; frames must ascend").arg(frame).arg(m_table.lastFrame));
        }
        m_table.firstFrame = isFirst ? frame : m_table.firstFrame;
        m_table.lastFrame = frame;
        if (frame - m_table.firstFrame >= MAX_FRAME)
        {
            m_lines.fail(QStringLiteral("more than %1 frames").arg(MAX_FRAME));
        }
    }

    void readCorners(int frame)
    {
        auto const empty = std::count_if(m_numbers.begin(), m_numbers.end(), [](Token token) { return token.empty(); });
        if (empty == NUMBERS)
        {
            return;
        }
        if (empty > 0)
        {
            m_lines.fail(QStringLiteral("an empty cell; write NaN for a number that is missing"));
        }
        CornerTable::Row row;
        row.frame = frame;
        row.line = m_lines.number();
        bool isMissing = false;
        for (std::size_t i = 0; i < NUMBERS; ++i)
        {
            Token const token = m_numbers[i];
            std::optional<double> const number = numberOf(token);
            if (!number && !isNaN(token))
            {
                failAt(token, "isn't a number; decimals are written with a point, as in 12.5");
            }
            if (number && std::fabs(*number) > MAX_COORDINATE)
            {
                failAt(token, "is too far away to be a corner (1000000 pixels at most)");
            }
            isMissing = isMissing || !number;
            row.corners[i] = number.value_or(0);
        }
        bool const isZero = std::all_of(row.corners.begin(), row.corners.end(), [](double c) { return c == 0; });
        if (isMissing || isZero)
        {
            return;
        }
        std::array<double, NUMBERS> const& c = row.corners;
        if (!isProperQuad({{{c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {c[6], c[7]}}}))
        {
            m_lines.fail(QStringLiteral("three of the corners of frame %1 lie on a line; "
                                        "write NaN for a frame without corners, or leave it out")
                             .arg(frame));
        }
        m_table.rows.push_back(row);
    }

    /// Nothing that is tracked is two pixels large.
    void refuseNormalised() const
    {
        constexpr double MOST = 2;
        auto const isSmall = [](CornerTable::Row const& row)
        { return std::all_of(row.corners.begin(), row.corners.end(), [](double c) { return std::fabs(c) <= MOST; }); };
        std::vector<CornerTable::Row> const& rows = m_table.rows;
        auto const small = static_cast<std::size_t>(std::count_if(rows.begin(), rows.end(), isSmall));
        if (2 * small > rows.size())
        {
            throw KORV_BadFile(
                __FILE__, __LINE__,
                QStringLiteral(
                    "%1: line %2: the corners look normalised, as their numbers are from -2 to 2; multiply x "
                    "by the width and y by the height of the picture, since corners are in pixels")
                    .arg(m_table.fileName)
                    .arg(std::find_if(rows.begin(), rows.end(), isSmall)->line),
                QString());
        }
    }

    TextLines m_lines;
    CornerTable m_table;
    CornerColumns m_columns;
    std::vector<Token> m_cells;
    std::array<Token, NUMBERS> m_numbers;
    int m_firstRowLine = 0;
    bool m_sawText = false;
};

}

std::vector<std::pair<int, int>> CornerTable::missingFrames() const
{
    return missingRanges(rows, firstFrame, lastFrame, [](Row const& row) { return row.frame; });
}

void CornerTable::startAt(int frame)
{
    if (frame > MAX_FRAME - (lastFrame - firstFrame))
    {
        throw KORV_BadFile(
            __FILE__, __LINE__,
            QStringLiteral("%1: from frame %2 on the last one is beyond the numbers that a project takes "
                           "(%3)")
                .arg(fileName)
                .arg(frame)
                .arg(MAX_FRAME),
            QString());
    }
    int const shift = frame - firstFrame;
    firstFrame += shift;
    lastFrame += shift;
    for (Row& row : rows)
    {
        row.frame += shift;
    }
}

CornerTable readCornerTable(QByteArray const& text, QString const& fileName)
{
    if (QString const kind = foreignKindOf(text); !kind.isEmpty())
    {
        throw KORV_BadFile(__FILE__, __LINE__, fileName + QLatin1String(": ") + kind, QString());
    }
    return TableReader(text, fileName).read();
}

CornerTable readCornerTableFile(QString const& path)
{
    return path == QLatin1String("-")
               ? readCornerTable(readStandardInput(MAX_FILE_BYTES), QStringLiteral("standard input"))
               : readCornerTable(readWholeFile(path, MAX_FILE_BYTES), path);
}

}
