#pragma once
// What is said of project files: that one is written as it was read, and those with one fault each.

#include "QtPrinting.h"
#include "marlohost/ProjectFile.h"

#include "Host/KORV_Exception.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ostream>

/// A text that stands once in a good file, what it is replaced by, and what is then said:
/// the place in the file and words of the cause.
struct Refusal
{
    char const* replace;
    char const* by;
    char const* path;
    char const* cause;
};

inline std::ostream& operator<<(std::ostream& out, Refusal const& refusal)
{
    return out << refusal.by << " for " << refusal.replace;
}

/// Expects that a project file in the writer's own form is what the writer makes of it.
inline void expectWrittenAsRead(QByteArray const& text)
{
    using nlohmann::json;
    QByteArray const written = MarloHost::writeProject(MarloHost::readProject(text, QStringLiteral("full.json")));
    EXPECT_EQ(json::diff(json::parse(text.toStdString()), json::parse(written.toStdString())), json::array());
}

/// Expects that the file is refused in one line.
/// @param below stands in front of the path
inline void expectRefused(QByteArray text, Refusal const& refusal, QString const& below = QString())
{
    ASSERT_EQ(text.count(refusal.replace), 1) << refusal.replace;
    text.replace(refusal.replace, refusal.by);
    QString const path = below + QString::fromUtf8(refusal.path);
    try
    {
        MarloHost::readProject(text, QStringLiteral("a%1.json"));
        FAIL() << "was accepted";
    }
    catch (KORV_BadFile const& error)
    {
        QString const message = error.message();
        EXPECT_TRUE(message.startsWith(QStringLiteral("a%1.json: ") + path + QStringLiteral(": "))) << error.what();
        EXPECT_TRUE(message.contains(QString::fromUtf8(refusal.cause))) << error.what();
        EXPECT_FALSE(message.contains(QLatin1Char('\n'))) << error.what();
        EXPECT_EQ(error.detail(), path);
    }
}
