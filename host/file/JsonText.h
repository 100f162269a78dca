#pragma once
// Indented JSON text.

#include "Host/KORV_Exception.h"
#include "text/NumberText.h"

#include <QByteArray>
#include <QString>

#include <cmath>
#include <optional>

namespace MarloHost
{

/// What is wrong with a text that has a control character, in words that follow its name; empty
/// where it has none. Every text of a project file is a name, a path or a word: characters that
/// end a line would make records of their own in what is exported, and a terminal would obey
/// the others.
QString controlCharacterFault(QString const& text);

/// Appends indented JSON. Objects and arrays nest by the calls between open and
/// close; flat arrays of numbers take a given number to a line.
class JsonText
{
public:
    JsonText()
    {
        m_text.reserve(1 << 16);
    }

    void open(char const* key, char bracket)
    {
        start(key);
        m_text += bracket;
        m_isFirst = true;
        ++m_depth;
    }

    void close(char bracket)
    {
        --m_depth;
        if (!m_isFirst)
        {
            newLine();
        }
        m_text += bracket;
        m_isFirst = false;
    }

    void string(char const* key, QString const& value)
    {
        start(key);
        quote(value);
    }

    void number(char const* key, double value)
    {
        start(key);
        append(value);
    }

    void boolean(char const* key, bool value)
    {
        start(key);
        m_text += value ? "true" : "false";
    }

    template <typename Numbers>
    void numbers(char const* key, Numbers const& values, std::size_t perLine)
    {
        start(key);
        m_text += '[';
        std::size_t count = 0;
        for (auto const value : values)
        {
            if (count > 0)
            {
                m_text += count % perLine == 0 ? "," : ", ";
            }
            if (values.size() > perLine && count % perLine == 0)
            {
                m_text += '\n' + QByteArray((m_depth + 1) * 2, ' ');
            }
            append(static_cast<double>(value));
            ++count;
        }
        if (values.size() > perLine)
        {
            newLine();
        }
        m_text += ']';
    }

    QByteArray take()
    {
        m_text += '\n';
        return std::move(m_text);
    }

private:
    void newLine()
    {
        m_text += '\n' + QByteArray(m_depth * 2, ' ');
    }

    void start(char const* key)
    {
        if (!m_isFirst)
        {
            m_text += ',';
        }
        if (m_depth > 0)
        {
            newLine();
        }
        m_isFirst = false;
        if (key)
        {
            m_text += '"';
            m_text += key;
            m_text += "\": ";
        }
    }

    void append(double value)
    {
        if (!std::isfinite(value))
        {
            throw KORV_BadArgument(__FILE__, __LINE__, QStringLiteral("A project file can't hold %1").arg(value),
                                   QString());
        }
        Text::appendShortest(m_text, value);
    }

    void quote(QString const& value)
    {
        QString const fault = controlCharacterFault(value);
        if (!fault.isEmpty())
        {
            throw KORV_BadArgument(__FILE__, __LINE__, QStringLiteral("\"%1\" ").arg(value) + fault, QString());
        }
        m_text += '"';
        for (char const c : value.toUtf8())
        {
            if (c == '"' || c == '\\')
            {
                m_text += '\\';
                m_text += c;
            }
            else
            {
                m_text += c;
            }
        }
        m_text += '"';
    }

    QByteArray m_text;
    int m_depth = 0;
    bool m_isFirst = true;
};

/// Writes true; false is the default everywhere.
void writeFlag(JsonText& json, char const* key, bool value);

/// Leaves an empty name out.
void writeName(JsonText& json, char const* key, QString const& name);
void writeOptional(JsonText& json, char const* key, std::optional<int> const& value);

/// An array of records under a key, each written by `write(json, record)`; nothing when there
/// are none.
template <typename Records, typename Write>
void writeArray(JsonText& json, char const* key, Records const& records, Write const& write)
{
    if (records.empty())
    {
        return;
    }
    json.open(key, '[');
    for (auto const& record : records)
    {
        write(json, record);
    }
    json.close(']');
}

}
