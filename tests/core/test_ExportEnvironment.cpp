#include "Core/ExportEnvironment.h"

#include <QScopeGuard>

#include <gtest/gtest.h>

using namespace Export;

namespace
{

TEST(ExportEnvironment, CountsWhereExportsAreToBeTheSameAndElseMintsRandomIdentifiers)
{
    QByteArray const before = qgetenv("SOURCE_DATE_EPOCH");
    auto const restore =
        qScopeGuard([&] { before.isNull() ? qunsetenv("SOURCE_DATE_EPOCH") : qputenv("SOURCE_DATE_EPOCH", before); });
    QUuid const first("00000000-0000-4000-8000-000000000001");
    QUuid const second("00000000-0000-4000-8000-000000000002");
    qputenv("SOURCE_DATE_EPOCH", "0");
    for (auto const& counting : {defaultEnvironment(), defaultEnvironment()})
    {
        EXPECT_EQ(counting->createUID(), first);
        EXPECT_EQ(counting->createUID(), second);
    }
    qunsetenv("SOURCE_DATE_EPOCH");
    QUuid const random = defaultEnvironment()->createUID();
    EXPECT_EQ(random.version(), QUuid::Random);
    EXPECT_NE(random, first);
    EXPECT_NE(random, defaultEnvironment()->createUID());
    EXPECT_EQ(CountingEnvironment().createUID(), first) << "asked for, it counts whatever the variable says";
}

}
