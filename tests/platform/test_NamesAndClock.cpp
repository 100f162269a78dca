#include "text/Clock.h"
#include "text/Names.h"

#include <gtest/gtest.h>

namespace
{

TEST(Names, OnlyBlanksBecomeUnderscores)
{
    QString const name = QStringLiteral(" Layer 1  sky\tß ");
    EXPECT_EQ(Text::blanksToUnderscores(name), QStringLiteral("_Layer_1__sky\tß_"));
    EXPECT_EQ(name, QStringLiteral(" Layer 1  sky\tß "));
}

class Clock : public testing::Test
{
protected:
    void TearDown() override
    {
        m_before.isNull() ? qunsetenv("SOURCE_DATE_EPOCH") : qputenv("SOURCE_DATE_EPOCH", m_before);
    }

private:
    QByteArray m_before = qgetenv("SOURCE_DATE_EPOCH");
};

TEST_F(Clock, VariablePinsTheTime)
{
    struct
    {
        char const* seconds;
        char const* time;
    } const cases[] = {
        {"0", "1970-01-01T00:00:00Z"},
        {"1718000000", "2024-06-10T06:13:20Z"},
        {"253402300799", "9999-12-31T23:59:59Z"},
    };
    for (auto const& [seconds, time] : cases)
    {
        qputenv("SOURCE_DATE_EPOCH", seconds);
        EXPECT_EQ(Text::exportTime().toString(Qt::ISODate), QString::fromLatin1(time));
    }
}

TEST_F(Clock, MalformedVariableIsIgnored)
{
    qunsetenv("SOURCE_DATE_EPOCH");
    QDateTime const before = QDateTime::currentDateTimeUtc();
    for (char const* text : {"", "-1", "+1", " 1", "1 ", "1.5", "0x10", "1e3", "253402300800", "99999999999999999999"})
    {
        qputenv("SOURCE_DATE_EPOCH", text);
        QDateTime const time = Text::exportTime();
        EXPECT_TRUE(time >= before && time <= QDateTime::currentDateTimeUtc()) << text;
        EXPECT_EQ(time.timeSpec(), Qt::UTC);
    }
}

}
