// Reading tables of corners:
//
//   frame ulx uly urx ury lrx lry llx lly
//   1 1382.77 448.67 1384.42 851.281 688.595 684.172 791.644 281.653
//   2 1372.85 482.874 1375.97 884.481 679.964 707.829 786.1 305.722

#include "marlohost/CornerTable.h"

#include "Host/KORV_Exception.h"
#include "plane/Homography.h"
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
            splitLine(m_lines.take());
            if (!m_tokens.empty() && !isHeader())
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
        return std::move(m_table);
    }

private:
    [[noreturn]] void failAt(Token token, char const* cause) const
    {
        m_lines.fail(quoted(token) + QLatin1Char(' ') + QLatin1String(cause));
    }

    /// Fills m_tokens. A "#" inside of a word, as file names may have it, is no comment.
    void splitLine(Token line)
    {
        m_tokens.clear();
        bool awaitsCell = false;
        for (std::size_t i = 0; i < line.size();)
        {
            char const c = line[i];
            if (c == '#')
            {
                break;
            }
            if (c == ',' || c == ';')
            {
                checkCell(awaitsCell || m_tokens.empty());
                awaitsCell = true;
                ++i;
            }
            else if (isBlank(c))
            {
                ++i;
            }
            else
            {
                std::size_t const end = std::min(line.find_first_of(" \t\v\f,;", i), line.size());
                m_tokens.push_back(line.substr(i, end - i));
                awaitsCell = false;
                i = end;
            }
        }
        checkCell(awaitsCell);
    }

    void checkCell(bool isEmpty) const
    {
        if (isEmpty)
        {
            m_lines.fail(QStringLiteral("an empty cell; write NaN for a number that is missing"));
        }
    }

    /// Whether the line is the first with anything in it, and has no number.
    bool isHeader()
    {
        bool const isFirst = !m_sawText;
        m_sawText = true;
        return isFirst && std::none_of(m_tokens.begin(), m_tokens.end(),
                                       [](Token token) { return numberOf(token) || isNaN(token); });
    }

    void readRow()
    {
        if (m_tokens.size() != NUMBERS && m_tokens.size() != NUMBERS + 1)
        {
            m_lines.fail(
                QStringLiteral("%1 values; expected eight numbers, with a frame number or a file name in front or not")
                    .arg(m_tokens.size()));
        }
        bool const hasFrame = m_tokens.size() == NUMBERS + 1;
        if (m_firstRowLine == 0)
        {
            m_firstRowLine = m_lines.number();
            m_table.hasFrameNumbers = hasFrame;
        }
        if (hasFrame != m_table.hasFrameNumbers)
        {
            m_lines.fail(QStringLiteral("%1 a frame number, unlike line %2")
                             .arg(hasFrame ? QStringLiteral("has") : QStringLiteral("lacks"))
                             .arg(m_firstRowLine));
        }
        int const frame = hasFrame ? frameNumber(m_tokens.front()) : m_table.lastFrame + 1;
        addFrame(frame);
        readCorners(frame, m_tokens.size() - NUMBERS);
    }

    int frameNumber(Token token) const
    {
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

    void readCorners(int frame, std::size_t firstToken)
    {
        CornerTable::Row row;
        row.frame = frame;
        row.line = m_lines.number();
        bool isMissing = false;
        for (std::size_t i = 0; i < NUMBERS; ++i)
        {
            Token const token = m_tokens[firstToken + i];
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

    TextLines m_lines;
    CornerTable m_table;
    std::vector<Token> m_tokens;
    int m_firstRowLine = 0;
    bool m_sawText = false;
};

}

std::vector<std::pair<int, int>> CornerTable::missingFrames() const
{
    return missingRanges(rows, firstFrame, lastFrame, [](Row const& row) { return row.frame; });
}

CornerTable readCornerTable(QByteArray const& text, QString const& fileName)
{
    return TableReader(text, fileName).read();
}

CornerTable readCornerTableFile(QString const& path)
{
    return readCornerTable(readWholeFile(path, MAX_FILE_BYTES), path);
}

}
