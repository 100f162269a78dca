// System calls that fail, one after the other, while the program works: each ends in one clear
// line, the right exit status, and files that are whole or as they were. Disks that fill and
// folders that are closed, the mill and the tests of PartFile have.

#include "ToolRun.h"

#include <gtest/gtest.h>

#include <QMap>

#include <cerrno>

namespace
{

struct Fault
{
    QStringList arguments;
    char const* call;
    int error;

    /// Exit status when the Nth such call fails; calls beyond the list end with the
    /// last of them.
    std::vector<int> statuses;

    /// What the error says.
    char const* words;
};

std::ostream& operator<<(std::ostream& out, Fault const& fault)
{
    return out << fault.arguments[0].toStdString() << ", " << fault.call << " gives " << fault.error;
}

class InjectedFault : public testing::TestWithParam<Fault>
{
protected:
    /// All files but the mark, and "older" in those that the command writes.
    QMap<QString, QByteArray> makeOlder() const
    {
        QMap<QString, QByteArray> older = contents();
        for (auto file = older.begin(); file != older.end(); ++file)
        {
            if (file.key().startsWith("data/out/"))
            {
                *file = "older";
                m_folder.write(file.key(), *file);
            }
        }
        return older;
    }

    QMap<QString, QByteArray> contents() const
    {
        QMap<QString, QByteArray> found;
        for (QString const& file : m_folder.files())
        {
            found.insert(file, m_folder.read(file));
        }
        return found;
    }

    ToolFolder m_folder;
};

TEST_P(InjectedFault, EndsInOneLineAndWholeFiles)
{
    Fault const& fault = GetParam();
    QDir().mkpath(m_folder.path("data/out"));
    m_folder.write("data/p.json", movingProject());
    m_folder.write("data/t.txt", "1 10 20 300 25 310 200 5 190\n2 11 20 300 25 310 200 5 190\n");
    QStringList const arguments = fault.arguments + QStringList("--overwrite");
    // Some formats hold the date.
    m_folder.environment.insert("SOURCE_DATE_EPOCH", "86400");
    ASSERT_EQ(m_folder.run(arguments).status, 0);
    QMap<QString, QByteArray> const whole = contents();

    m_folder.environment.insert("LD_PRELOAD", MARLO_FAULT_SHIM);
    m_folder.environment.insert("MARLO_FAULT_IN", "data/");
    m_folder.environment.insert("MARLO_FAULT_MARK", m_folder.path("mark"));
    // The sanitizers' runtime wants to be loaded first, which doesn't matter here.
    m_folder.environment.insert("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0");
    bool const goesOn = fault.arguments[0] == "all";
    std::size_t hits = 0;
    for (int call = 1;; ++call)
    {
        QMap<QString, QByteArray> const older = makeOlder();
        m_folder.environment.insert("MARLO_FAULT", QString("%1:%2:%3").arg(fault.call).arg(call).arg(fault.error));
        ToolResult const result = m_folder.run(arguments);
        if (!QFile::remove(m_folder.path("mark")))
        {
            break;
        }
        SCOPED_TRACE("call " + std::to_string(call) + ": " + result.err.toStdString());
        int const expected = fault.statuses[std::min(hits++, fault.statuses.size() - 1)];
        EXPECT_EQ(result.status, expected);
        EXPECT_TRUE(expected == 0 || result.err.contains(fault.words));
        EXPECT_TRUE(expected == 0 || goesOn || result.err.count('\n') == 1);
        QMap<QString, QByteArray> const found = contents();
        EXPECT_EQ(found.keys(), whole.keys()) << "a file is left over or gone";
        int changed = 0;
        for (QString const& file : whole.keys())
        {
            bool const isOlder = found.value(file) == older.value(file);
            EXPECT_TRUE(isOlder || found.value(file) == whole.value(file)) << file.toStdString() << " is in between";
            changed += isOlder ? 0 : 1;
        }
        EXPECT_EQ(changed > 0, expected == 0 || goesOn);
    }
    EXPECT_GE(hits, fault.statuses.size()) << "the fault was never met";
}

// The second read of a file looks for its end, when all of it is there already.
INSTANTIATE_TEST_SUITE_P(
    Table, InjectedFault,
    testing::Values(Fault{{"export", "data/p.json", "after_effects_corner_pin", "-o", "data/out/pin.txt"},
                          "read",
                          EIO,
                          {3, 0},
                          "p.json: can't be read"},
                    Fault{{"export", "data/p.json", "after_effects_corner_pin", "-o", "data/out/pin.txt"},
                          "rename",
                          EXDEV,
                          {1},
                          "Could not write to file"},
                    Fault{{"import", "corners", "data/t.txt", "-o", "data/out/p.json", "--size", "640x480"},
                          "read",
                          EIO,
                          {3, 0},
                          "t.txt: can't be read"},
                    Fault{{"import", "corners", "data/t.txt", "-o", "data/out/p.json", "--size", "640x480"},
                          "rename",
                          EROFS,
                          {1},
                          "p.json"},
                    Fault{{"all", "data/p.json", "-o", "data/out"}, "rename", EACCES, {1}, "Could not write to file"}));

}
