#include "JsonText.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

/// Also the two that only end lines.
bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

}

QString controlCharacterFault(QString const& text)
{
    auto const control = std::find_if(text.begin(), text.end(), isControl);
    return control == text.end()
               ? QString()
               : QStringLiteral("holds the control character U+%1; names and paths must not")
                     .arg(QString::number(control->unicode(), 16).toUpper().rightJustified(4, QLatin1Char('0')));
}

void writeFlag(JsonText& json, char const* key, bool value)
{
    if (value)
    {
        json.boolean(key, true);
    }
}

void writeName(JsonText& json, char const* key, QString const& name)
{
    if (!name.isEmpty())
    {
        json.string(key, name);
    }
}

void writeOptional(JsonText& json, char const* key, std::optional<int> const& value)
{
    if (value)
    {
        json.number(key, *value);
    }
}

}
