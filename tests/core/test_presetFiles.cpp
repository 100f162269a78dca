#include "CoreFixtures.h"
#include "PresetTexts.h"

#include <QFile>
#include <QMap>
#include <QTextCodec>
#include <QVariant>
#include <nlohmann/json.hpp>

#include <csignal>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Export;
using namespace PresetTexts;
using nlohmann::json;

namespace
{

using Info = Preset::ExportInfo;
using Presets = QHash<QString, Preset>;

Presets shapes(QStringList const& names)
{
    Presets presets;
    for (QString const& name : names)
    {
        presets.insert(name, Preset(Info{"f", Info::Shape, UserShapeOptions(), std::nullopt}));
    }
    return presets;
}

/// Type, source, words and detail of what the function throws.
std::string failure(std::function<void()> const& function)
{
    auto const line = [](char const* type, KORV_Exception const& error)
    { return std::string(type) + '|' + error.sourceFile() + '|' + error.what() + '|' + error.detail().toStdString(); };
    try
    {
        function();
    }
    catch (KORV_BadFile const& error)
    {
        return line("BadFile", error);
    }
    catch (KORV_ExternalException const& error)
    {
        return line("ExternalException", error);
    }
    return "none";
}

class PresetFiles : public testing::Test
{
protected:
    QString at(QString const& name) const
    {
        return m_folder.filePath(name);
    }

    void put(QString const& name, QByteArray const& bytes) const
    {
        QFile file(at(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }

    QByteArray content(QString const& name) const
    {
        QFile file(at(name));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(none)");
    }

    QStringList names() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

private:
    QTemporaryDir m_folder;
};

TEST_F(PresetFiles, AreWrittenAndLoaded)
{
    QString const name = QString::fromUtf8("Vorgänge 日本.json");
    put(name, "an older and much longer text than that of the presets " + QByteArray(1000, 'x'));
    writePresetsToFile(shapes({"a", "b"}), at(name));
    EXPECT_EQ(content(name).toStdString(), serialisePresets(shapes({"a", "b"}), true));
    EXPECT_EQ(loadPresetsFromFile(at(name)).size(), 2);
    EXPECT_EQ(names(), QStringList({name}));
}

TEST_F(PresetFiles, LoadingSaysWhatIsWrong)
{
    put("comment", "// mine\n{}");
    put("version", R"({"version": 2})");
    put("key", "{}");
    put("word", R"({"presets": [{"name": "p", "exports": [{"type": "lens"}]}]})");
    put("deep", QByteArray(16'000'000, '['));
    put("long", QByteArray(17'000'000, '['));
    ASSERT_TRUE(QDir(at("")).mkdir("folder"));
    struct
    {
        char const* name;
        std::string words;
    } const cases[] = {
        {"comment", "ExternalException|Preset|[json.exception.parse_error.101] parse error at line 1, column 1: syntax "
                    "error while parsing value - invalid literal; last read: '/'|Error parsing json"},
        {"version", "BadFile|Preset|Bad preset file version.|"},
        {"key", "ExternalException|Preset|[json.exception.out_of_range.403] key 'presets' not found|Error parsing "
                "json"},
        {"word", "ExternalException|Preset|Invalid preset type: expected \"tracking\", \"shape\", \"camera\", but got "
                 "lens|Error parsing json"},
        {"deep", "ExternalException|Preset|The presets are nested deeper than 32 levels|Error parsing json"},
        {"long", "ExternalException|Preset|The presets are longer than 16777216 bytes|Error parsing json"},
        {"none",
         "BadFile|Preset|Failed to open preset file: " + at("none").toStdString() + "|Failed to open preset file"},
        {"folder",
         "BadFile|Preset|Failed to open preset file: " + at("folder").toStdString() + "|Failed to open preset file"},
        {"version/file", "BadFile|Preset|Failed to open preset file: " + at("version/file").toStdString() +
                             "|Failed to open preset file"},
    };
    for (auto const& testCase : cases)
    {
        EXPECT_EQ(failure([&] { loadPresetsFromFile(at(testCase.name)); }), testCase.words);
    }
}

TEST_F(PresetFiles, AFailedWriteLeavesTheFileAsItWas)
{
    put("presets.json", "mine");
    ASSERT_TRUE(QDir(at("")).mkdir("folder"));
    QStringList const before = names();

    Presets const good = shapes({"a"});
    Presets const mixed = presetOf({"f", Info::Camera, UserShapeOptions(), std::nullopt});
    UserCameraSolveOptions const number{KV::CameraSolveExporter::AllObjects, QMap<QString, QVariant>{{"n", 1}}};
    UserShapeOptions const nameless{{ZN::SpecifiedLayer, ""}, {}};
    struct
    {
        char const* target;
        Presets presets;
        QString words;
    } const cases[] = {
        {"presets.json", mixed, CoreTest::thrown<std::bad_variant_access>([&] { serialisePresets(mixed, true); })},
        {"presets.json", presetOf({"f", Info::Camera, number, std::nullopt}),
         "QVariant type conversion to json not implemented"},
        // These two have a text, but it would never be loaded again.
        {"presets.json", presetOf({"f", Info::Shape, nameless, std::nullopt}),
         "'exportMode' mode is 'specified' but no 'layer' provided"},
        {"presets.json", shapes({QString(17 * 1024 * 1024, QLatin1Char('n'))}),
         "The presets are longer than 16777216 bytes"},
        {"missing/presets.json", good, "Failed to open preset file"},
        {"presets.json/presets.json", good, "Failed to open preset file"},
        {"folder", good, "Failed to open preset file"},
        {"folder/", good, "Failed to open preset file"},
    };
    for (auto const& [target, presets, words] : cases)
    {
        EXPECT_EQ(failure([&, &name = target, &written = presets] { writePresetsToFile(written, at(name)); }),
                  "ExternalException|Preset|" + words.toStdString() + "|Error writing preset file.");
        EXPECT_EQ(content("presets.json"), "mine") << target;
        EXPECT_EQ(names(), before) << target;
    }
}

/// The exit status of a child process that ran the function.
int inChild(std::function<int()> const& run)
{
    pid_t const child = ::fork();
    if (child == 0)
    {
        ::_exit(run());
    }
    int status = 0;
    ::waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(PresetFiles, AFullDiskLeavesTheFileAsItWas)
{
    put("presets.json", "mine");
    for (rlim_t const fits : {0, 100})
    {
        EXPECT_EQ(inChild(
                      [&]
                      {
                          std::signal(SIGXFSZ, SIG_IGN);
                          rlimit const limit{fits, fits};
                          ::setrlimit(RLIMIT_FSIZE, &limit);
                          return failure([&] { writePresetsToFile(shapes({"a"}), at("presets.json")); }) ==
                                         "ExternalException|Preset|Failed to open preset file|"
                                         "Error writing preset file."
                                     ? 0
                                     : 1;
                      }),
                  0);
        EXPECT_EQ(content("presets.json"), "mine") << fits;
        EXPECT_EQ(names(), QStringList({"presets.json"})) << fits;
    }
}

/// In an encoding that lacks a letter of the name, Qt would write to another file.
TEST_F(PresetFiles, ANameOutsideOfTheLocaleIsNotReplaced)
{
    put("pr?fung.json", "mine");
    EXPECT_EQ(inChild(
                  [this]
                  {
                      QString const path = at(QString::fromUtf8("prüfung.json"));
                      QTextCodec::setCodecForLocale(QTextCodec::codecForName("US-ASCII"));
                      return failure([&] { writePresetsToFile(shapes({"a"}), path); }) == "none" ? 1 : 0;
                  }),
              0);
    EXPECT_EQ(content("pr?fung.json"), "mine");
    EXPECT_EQ(names(), QStringList({"pr?fung.json"}));
}

/// Two lines: the names in the order of the hash, and the text that is written.
void describe(QString const& path)
{
    Presets presets = shapes({"plate", "Plate", "sign", "a", "b", "c", "d", "e", "10", "9", "ü"});
    QByteArray const order = QStringList(presets.keys()).join(' ').toUtf8();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(order + '\n' + QByteArray::fromStdString(serialisePresets(presets, false)));
}

TEST_F(PresetFiles, HaveTheSameBytesInEveryProcess)
{
    constexpr char variable[] = "MARLO_TEST_DESCRIBE_PRESETS";
    // This program again, whose hashes start from the seed in the environment.
    if (::getenv(variable))
    {
        describe(QString::fromLocal8Bit(qgetenv(variable)));
        return;
    }
    QSet<QByteArray> orders;
    QSet<QByteArray> texts;
    for (char const* seed : {"1", "2", "3", "4"})
    {
        QByteArray const described = QFile::encodeName(at(seed));
        EXPECT_EQ(inChild(
                      [&]
                      {
                          ::setenv(variable, described.constData(), 1);
                          ::setenv("QT_HASH_SEED", seed, 1);
                          ::unsetenv("GTEST_OUTPUT");
                          return ::execl("/proc/self/exe", "test_core", "--gtest_brief=1",
                                         "--gtest_filter=PresetFiles.HaveTheSameBytesInEveryProcess", nullptr);
                      }),
                  0);
        QList<QByteArray> const lines = content(seed).split('\n');
        ASSERT_EQ(lines.size(), 2);
        orders.insert(lines[0]);
        texts.insert(lines[1]);
    }
    EXPECT_GT(orders.size(), 1) << "the seeds must matter, or nothing is tested";
    ASSERT_EQ(texts.size(), 1);
    QStringList sorted;
    json const root = json::parse(texts.begin()->toStdString());
    for (json const& preset : root.at("presets"))
    {
        sorted.append(QString::fromStdString(preset.at("name")));
    }
    EXPECT_EQ(sorted, QStringList({"10", "9", "Plate", "a", "b", "c", "d", "e", "plate", "sign", "ü"}));
}

QString document(QString const& name)
{
    QFile file(QStringLiteral(MARLO_SOURCE_DIR "/docs/") + name);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

TEST(PresetDocuments, TheExampleLoads)
{
    Presets const presets =
        parsed(document("presets.md").section("```json\n", 1, 1).section("```", 0, 0).toStdString());
    ASSERT_EQ(presets.size(), 2);
    // It shows each kind of export.
    QSet<int> types;
    for (Preset const& preset : presets)
    {
        for (Info const& info : preset.exports)
        {
            types.insert(info.type);
        }
    }
    EXPECT_EQ(types.size(), 3);
}

/// What the reader names when it doesn't know a word.
QStringList wordsFor(std::string const& type, std::string const& options)
{
    QString const refusal = CoreTest::thrown<json::exception>([&] { parsed(exportWith(type, options)); });
    QStringList words;
    for (int i = 1; i < refusal.count('"'); i += 2)
    {
        words.append(refusal.section('"', i, i));
    }
    return words;
}

TEST(PresetDocuments, TheSchemaHasTheWords)
{
    json const schema = json::parse(document("presets.schema.json").toStdString());
    struct
    {
        char const* place;
        QStringList words;
    } const cases[] = {
        {"/$defs/export/properties/type/enum", wordsFor("?", "{}")},
        {"/$defs/tracking/properties/trackingOption/enum", wordsFor("tracking", R"({"trackingOption": "?"})")},
        {"/$defs/tracking/properties/layerExportMode/enum", wordsFor("tracking", R"({"layerExportMode": "?"})")},
        {"/$defs/shape/properties/exportMode/enum", wordsFor("shape", R"({"exportMode": "?"})")},
        {"/$defs/camera/properties/objectsToExport/enum", wordsFor("camera", R"({"objectsToExport": "?"})")},
    };
    for (auto const& [place, words] : cases)
    {
        QStringList found;
        for (json const& word : schema.at(json::json_pointer(place)))
        {
            found.append(QString::fromStdString(word));
        }
        EXPECT_EQ(found, words) << place;
        EXPECT_GE(words.size(), 3) << place;
    }
}

}
