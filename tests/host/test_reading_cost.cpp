// What it costs to read a project file that was made to cost: memory in proportion to
// its bytes, and time too.

#include "marlohost/ProjectFile.h"

#include "Host/KORV_Exception.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace
{

QByteArray const HEAD =
    R"({"marloProject": 1, "clips": [{"name": "c", "width": 9, "height": 9, "frameCount": 10000000}],)";
QByteArray const SURFACE = R"("surface": {"corners": [0, 0, 1, 0, 0, 1, 1, 1]})";

QByteArray repeated(QByteArray const& piece, QByteArray const& last)
{
    constexpr int SIZE = 4'000'000;
    return piece.repeated(SIZE / piece.size()) + last;
}

struct Costly
{
    char const* name;
    QByteArray text;
};

class ReadingCost : public testing::TestWithParam<Costly>
{
};

int peakKilobytes()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<int>(usage.ru_maxrss);
}

TEST_P(ReadingCost, IsAtMostTenTimesTheFile)
{
#if defined(__SANITIZE_ADDRESS__)
    GTEST_SKIP() << "sanitizers take memory of their own";
#endif
    QTemporaryDir const folder;
    QFile file(folder.filePath("p.json"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write(GetParam().text) == GetParam().text.size());
    file.close();
    pid_t const child = ::fork();
    if (child == 0)
    {
        int const before = peakKilobytes();
        try
        {
            MarloHost::readProjectFile(file.fileName());
        }
        catch (KORV_BadFile const&)
        {
        }
        qint64 const bytes = 1024LL * (peakKilobytes() - before);
        ::_exit(static_cast<int>(std::min<qint64>(bytes * 10 / file.size(), 255)));
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_LE(WEXITSTATUS(status), 100) << "tenths of the file's size";
    EXPECT_GE(WEXITSTATUS(status), 10) << "the file wasn't read";
}

INSTANTIATE_TEST_SUITE_P(
    Files, ReadingCost,
    testing::Values(
        Costly{"Objects", "[" + repeated("{},", "{}]")}, Costly{"Arrays", "[" + repeated("[],", "[]]")},
        Costly{"Strings", "[" + repeated(R"("",)", R"(""])")}, Costly{"ShortArrays", "[" + repeated("[0],", "[0]]")},
        Costly{"Numbers", "[" + repeated("0,", "0]")}, Costly{"NumbersAndAString", "[" + repeated("0,", R"(""])")},
        Costly{"Deep", "[" + repeated(QByteArray(31, '[') + QByteArray(31, ']') + ",", "[]]")},
        Costly{"Keys", "[" + repeated(R"({"a":0,"b":0,"c":0,"d":0,"e":0,"f":0,"g":0},)", "{}]")},
        Costly{"Layers", HEAD + R"("layers": [)" + repeated("{},", "{}]}")},
        Costly{"Homographies", HEAD + R"("layers": [{"name": "a", )" + SURFACE +
                                   R"(, "tracking": [{"homographies": [)" +
                                   repeated("1,0,0,0,1,0,0,0,1,", "1,0,0,0,1,0,0,0,1]}]}]}")},
        Costly{"Contours", HEAD + R"("layers": [{"name": "a", )" + SURFACE + R"(, "contours": [)" +
                               repeated(R"({"name":"a","keys":[{"frame":0,"points":[0,0,0,0,0,0,0,0,0,0,0,0]}]},)",
                                        R"({"name":"a","keys":[{"frame":0,"points":[0,0,0,0,0,0,0,0,0,0,0,0]}]}]}]})")},
        Costly{"Unended", R"({"a": ")" + repeated("a", "")}),
    [](auto const& of) { return of.param.name; });

/// An array under a key, with `count` elements that `element` makes of their indices.
QByteArray projectWith(char const* key, int count, std::function<QByteArray(int)> const& element)
{
    QByteArray text = HEAD + '"' + key + "\": [";
    for (int i = 0; i < count; ++i)
    {
        text += (i > 0 ? "," : "") + element(i);
    }
    return text + "]}";
}

/// Groups of which each lies in the one before; the first in the one of that index.
QByteArray nestedGroups(int count, int first)
{
    auto const group = [&](int i)
    {
        int const parent = i > 0 ? i - 1 : first;
        QByteArray const inside = parent < 0 ? QByteArray() : R"(, "parent": "g)" + QByteArray::number(parent) + '"';
        return R"({"name": "g)" + QByteArray::number(i) + '"' + inside + '}';
    };
    return projectWith("groups", count, group);
}

TEST(ReadingLimits, AreStated)
{
    auto const named = [](int i) { return R"({"name": "n)" + QByteArray::number(i) + R"("})"; };
    auto const layer = [](int) { return R"({"name": "a", )" + SURFACE + '}'; };
    auto const view = [](int i) { return '"' + QByteArray::number(i) + '"'; };
    struct
    {
        QByteArray text;
        QString refusal;
    } const cases[] = {
        {nestedGroups(64, -1), ""},
        {nestedGroups(65, -1), "p.json: $.groups[64]: groups lie in one another deeper than 64 levels"},
        {nestedGroups(20'000, -1), "p.json: $.groups[64]: groups lie in one another deeper than 64 levels"},
        {nestedGroups(500, 499), "p.json: $.groups[0]: the group lies inside itself"},
        {projectWith("groups", 20'000, named), ""},
        {projectWith("groups", 20'001, named), "p.json: $.groups: 20001 elements; at most 20000 are read"},
        {projectWith("layers", 20'001, layer), "p.json: $.layers: 20001 elements; at most 20000 are read"},
        {projectWith("views", 100, view), ""},
        {projectWith("views", 101, view), "p.json: $.views: 101 elements; at most 100 are read"},
        {projectWith("views", 2, [](int i) { return QByteArray(i == 0 ? "0" : "\"a\""); }),
         "p.json: $.views[0]: expected a string, found a number"},
        {"[" + repeated("0,", "[1, \"\"]]"), "p.json: $[2000000]: expected a number, found an array"},
    };
    for (auto const& [text, refusal] : cases)
    {
        QString found;
        try
        {
            MarloHost::makeProject(MarloHost::readProject(text, QStringLiteral("p.json")));
        }
        catch (KORV_BadFile const& error)
        {
            found = error.message();
        }
        EXPECT_EQ(found.toStdString(), refusal.toStdString());
    }
}

}
