#pragma once
// Lets a failed assertion show Qt texts as texts.

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <ostream>

inline void PrintTo(QString const& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(QByteArray const& bytes, std::ostream* out)
{
    *out << '"' << bytes.toStdString() << '"';
}

inline void PrintTo(QStringList const& texts, std::ostream* out)
{
    *out << '[' << texts.join(", ").toStdString() << ']';
}
