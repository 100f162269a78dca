// System calls that fail, one after the other, while the program works: each ends
// in one clear line, the right exit status, and files that are whole or as they were.

#include "ToolRun.h"

#include <gtest/gtest.h>

#include <QMap>

#include <cerrno>

namespace
{

struct Fault
{
    char const* command;
    char const* call;
    int error;

    /// Exit status when the Nth such call fails; calls beyond the list end with the
    /// last of them.
    std::vector<int> statuses;

    /// What one of the error lines holds.
    char const* words;
};

std::ostream& operator<<(std::ostream& out, Fault const& fault)
{
    return out << fault.command << ", " << fault.call << " gives " << fault.error;
}

class InjectedFault : public testing::TestWithParam<Fault>
{
protected:
    QStringList arguments() const
    {
        QString const command = GetParam().command;
        if (command == QLatin1String("import"))
        {
            return {
                "import",  "corners",    m_folder.path("data/t.txt"), "-o", m_folder.path("data/out/p.json"), "--size",
                "640x480", "--overwrite"};
        }
        if (command == QLatin1String("all"))
        {
            return {"all", m_folder.path("data/p.json"), "-o", m_folder.path("data/out"), "--overwrite"};
        }
        return {"export", m_folder.path("data/p.json"),      "after_effects_corner_pin",
                "-o",     m_folder.path("data/out/pin.txt"), "--overwrite"};
    }

    QMap<QString, QByteArray> contents() const
    {
        QMap<QString, QByteArray> found;
        for (QString const& file : m_folder.files())
        {
            found.insert(file, m_folder.read(file));
        }
        found.remove("mark");
        return found;
    }

    /// Makes every file that the command writes hold "older".
    QMap<QString, QByteArray> makeOlder(QMap<QString, QByteArray> const& written) const
    {
        QMap<QString, QByteArray> older = written;
        for (QString const& file : written.keys())
        {
            if (file.startsWith("data/out/"))
            {
                m_folder.write(file, "older");
                older[file] = "older";
            }
        }
        return older;
    }

    ToolFolder m_folder;
};

TEST_P(InjectedFault, EndsInOneLineAndWholeFiles)
{
    Fault const& fault = GetParam();
    QDir().mkpath(m_folder.path("data/out"));
    m_folder.write("data/p.json", movingProject());
    m_folder.write("data/t.txt", "1 10 20 300 25 310 200 5 190\n2 11 20 300 25 310 200 5 190\n");
    ASSERT_EQ(m_folder.run(arguments()).status, 0);
    QMap<QString, QByteArray> const whole = contents();

    m_folder.environment.insert("LD_PRELOAD", MARLO_FAULT_SHIM);
    m_folder.environment.insert("MARLO_FAULT_BELOW", m_folder.path("data/"));
    m_folder.environment.insert("MARLO_FAULT_MARK", m_folder.path("mark"));
    // The sanitizers' runtime wants to be loaded first, which doesn't matter here.
    m_folder.environment.insert("ASAN_OPTIONS", "verify_asan_link_order=0:detect_leaks=0");
    std::size_t hits = 0;
    for (int call = 1;; ++call)
    {
        QMap<QString, QByteArray> const older = makeOlder(whole);
        m_folder.environment.insert("MARLO_FAULT", QString("%1:%2:%3").arg(fault.call).arg(call).arg(fault.error));
        ToolResult const result = m_folder.run(arguments());
        if (!QFile::remove(m_folder.path("mark")))
        {
            break;
        }
        SCOPED_TRACE("call " + std::to_string(call) + ": " + result.err.toStdString());
        int const expected = fault.statuses[std::min(hits, fault.statuses.size() - 1)];
        ++hits;
        EXPECT_EQ(result.status, expected);
        EXPECT_TRUE(expected == 0 || result.err.contains(fault.words));
        QMap<QString, QByteArray> const found = contents();
        EXPECT_EQ(found.keys(), whole.keys()) << "a file is left over or gone";
        for (QString const& file : whole.keys())
        {
            bool const isOlder = found.value(file) == older.value(file);
            EXPECT_TRUE(isOlder || found.value(file) == whole.value(file)) << file.toStdString() << " is in between";
            EXPECT_TRUE(isOlder || expected == 0 || QLatin1String(fault.command) == QLatin1String("all"))
                << file.toStdString() << " was written all the same";
        }
        if (expected != 0 && QLatin1String(fault.command) != QLatin1String("all"))
        {
            EXPECT_EQ(result.err.count('\n'), 1);
        }
    }
    EXPECT_GE(hits, fault.statuses.size()) << "the fault was never met";
}

// The second read of a file looks for its end, when all of it is there already.
INSTANTIATE_TEST_SUITE_P(
    Table, InjectedFault,
    testing::Values(Fault{"export", "open", EACCES, {3, 1}, "p"}, Fault{"export", "open", ENOSPC, {3, 1}, "p"},
                    Fault{"export", "read", EIO, {3, 0}, "p.json: can't be read"}, Fault{"export", "read", 0, {0}, ""},
                    Fault{"export", "write", ENOSPC, {1}, "Could not write to file"},
                    Fault{"export", "write", EIO, {1}, "Could not write to file"}, Fault{"export", "write", 0, {0}, ""},
                    Fault{"export", "rename", EXDEV, {1}, "Could not write to file"},
                    Fault{"export", "rename", EACCES, {1}, "Could not write to file"},
                    Fault{"import", "open", EACCES, {3, 1}, ""}, Fault{"import", "read", EIO, {3, 0}, "t.txt: can't"},
                    Fault{"import", "write", ENOSPC, {1}, "p.json"}, Fault{"import", "rename", EROFS, {1}, "p.json"},
                    Fault{"all", "write", ENOSPC, {1}, "Could not write to file"},
                    Fault{"all", "rename", EACCES, {1}, "Could not write to file"}));

}
