// Every offered format goes through the same mill, whichever that are and whatever their
// kind: a format that is added to the tables is covered before its author writes a test.

#include "Core/ExportFunctions.h"
#include "Core/ExportEnvironment.h"
#include "Core/ExportSize.h"
#include "Core/ExporterFactories.h"
#include "Core/ExporterWrapper.h"
#include "Core/FormatList.h"
#include "Core/LensExporter.h"
#include "Host/CameraSolveExporter.h"
#include "Host/KORV_Exception.h"
#include "Host/ShapeExporter.h"
#include "Host/TrackingExporter.h"
#include "ProjectBuilder.h"
#include "marlohost/Services.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QDomDocument>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <clocale>
#include <cmath>
#include <limits>

using namespace Export;

namespace Export
{

void PrintTo(FormatEntry const& format, std::ostream* out)
{
    *out << format.key().toStdString();
}

}

namespace
{

/// A new count of identifiers for an exporter that mints some, so that every export is the first.
template <typename Exporter>
Exporter const& counted(Exporter const& exporter)
{
    if (auto* const minter = dynamic_cast<IdentifierMinter*>(exporter.get()))
    {
        minter->setEnvironment(std::make_shared<CountingEnvironment>());
    }
    return exporter;
}

/// The options of a solve exporter as it declares them, which is what the tool hands over.
struct DeclaredOptions final : KV::ExportOptionsReceiver
{
    void addBoolOption(QString const& key, QString const&, QString const&, bool defaultValue) override
    {
        values.insert(key, defaultValue);
    }
    void addChoiceOption(QString const& key, QString const&, QString const&, QStringList const& choices) override
    {
        values.insert(key, choices.first());
    }

    QMap<QString, QVariant> values;
};

std::shared_ptr<ExporterWrapper> wrapperOf(FormatEntry const& format, KORV_ProjectManager const& project)
{
    std::vector<Anm::View> const views{project.currentView()};
    QString const& name = format.format().displayName();
    switch (format.kind())
    {
    case FormatKind::Tracking:
    {
        UserTrackingOptions options;
        options.viewsToExport = views;
        auto const exporter = TrackingExporterFactory::getExporter(format.as<TrackingDataFormat>());
        return std::make_shared<TrackingExporterWrapper>(counted(exporter), options, false, name);
    }
    case FormatKind::Shape:
    {
        UserShapeOptions options;
        options.viewsToExport = views;
        auto const& shape = format.as<ShapeDataFormat>();
        auto const exporter = ShapeExporterFactory::getExporter(shape, project);
        return std::make_shared<ShapeExporterWrapper>(options, shape, false, counted(exporter));
    }
    case FormatKind::Camera:
    {
        auto const exporter = CameraSolveExporterFactory::getExporter(format.as<CameraSolveFormat>());
        DeclaredOptions declared;
        exporter->setUserOptions(declared);
        UserCameraSolveOptions options;
        options.customData = declared.values;
        return std::make_shared<CameraSolveExporterWrapper>(options, false, name, counted(exporter));
    }
    case FormatKind::Lens:
        break;
    }
    constexpr unsigned int FIRST_CLIP = 1;
    auto const exporter = LensExporter::EXPORTERS_BY_FORMAT().value(format.as<LensDataFormat>());
    return std::make_shared<LensExporterWrapper>(FIRST_CLIP, std::any(), name, exporter);
}

Korvane::ExportedFiles exported(FormatEntry const& format, ProjectBuilder const& builder, QString const& path)
{
    auto const project = builder.make(MARLO_SOURCE_DIR "/tests/formats/mill.json");
    auto const wrapper = wrapperOf(format, *project);
    auto const possible = wrapper->isExportPossible(*project);
    EXPECT_TRUE(possible.first) << possible.second.value_or("");
    return wrapper->getExportResult(*project, path);
}

// Perspective, an offset layer range, an adjust key, values on a sixteenth grid: a
// little of everything that a format may have to say. Readers judge the goldens with
// the same file.
ProjectBuilder smallProject()
{
    ProjectBuilder builder;
    builder.model = MarloHost::readProjectFile(MARLO_SOURCE_DIR "/tests/formats/project.json");
    return builder;
}

struct Declining : ExportMessageBoxProvider
{
    bool confirmFailures(Korvane::ExportedFiles const&) override
    {
        return false;
    }
    void showNotices(std::vector<ExportNotice> const&) override
    {
    }
    QString askSavePath(ExportFileInfo const&, QString const&, QString const& suggestedPath) override
    {
        return suggestedPath;
    }
    bool confirmWrite(QString const&) override
    {
        return true;
    }
};

QByteArray fileContent(QString const& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("can't be read: " + path.toUtf8());
}

// Relative path to content of all files below a folder.
QMap<QString, QByteArray> filesBelow(QString const& folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator it(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
    {
        QString const path = it.next();
        files.insert(QDir(folder).relativeFilePath(path), fileContent(path));
    }
    return files;
}

// A readable difference of two texts: the first line in which they differ. Of binary files, the
// first byte.
testing::AssertionResult sameBytes(QByteArray const& expected, QByteArray const& found)
{
    if (expected == found)
    {
        return testing::AssertionSuccess();
    }
    if (expected.contains('\0'))
    {
        auto const differ = std::mismatch(expected.begin(), expected.end(), found.begin(), found.end());
        return testing::AssertionFailure()
               << found.size() << " bytes where " << expected.size() << " were expected; they differ from byte "
               << differ.first - expected.begin() << " on";
    }
    QList<QByteArray> const a = expected.split('\n');
    QList<QByteArray> const b = found.split('\n');
    int line = 0;
    while (line < a.size() && line < b.size() && a[line] == b[line])
    {
        ++line;
    }
    return testing::AssertionFailure() << "line " << line + 1 << "\n  expected: "
                                       << (line < a.size() ? a[line] : QByteArray("(end)")).left(200).toStdString()
                                       << "\n  found:    "
                                       << (line < b.size() ? b[line] : QByteArray("(end)")).left(200).toStdString();
}

struct ToolRun
{
    int status;
    QByteArray errors;
};

/// Runs the program, behind a shell line such as "ulimit -f 0;" if one is given.
ToolRun runTool(QStringList const& arguments, QMap<QString, QString> const& environment = {},
                QString const& shellLine = QString())
{
    QProcess process;
    QProcessEnvironment variables = QProcessEnvironment::systemEnvironment();
    for (auto it = environment.begin(); it != environment.end(); ++it)
    {
        variables.insert(it.key(), it.value());
    }
    process.setProcessEnvironment(variables);
    process.start("/bin/sh", QStringList{"-c", shellLine + " exec \"$@\"", "sh", MARLO_TOOL} + arguments);
    process.waitForFinished();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1, process.readAllStandardError()};
}

class Mill : public testing::TestWithParam<FormatEntry>
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_folder.isValid());
    }

    QString path(QString const& name) const
    {
        return m_folder.filePath(name);
    }

    /// The models stand beside it.
    QString writeProjectFile(ProjectBuilder const& builder) const
    {
        QFile::link(MARLO_SOURCE_DIR "/tests/formats/models", path("models"));
        QString const file = path("project.json");
        QFile out(file);
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(MarloHost::writeProject(builder.model));
        return file;
    }

    QTemporaryDir m_folder;
};

TEST_P(Mill, WrittenTwiceIsEqualAndAnotherProjectBetweenLeavesNoTrace)
{
    QString const target = path("out" + GetParam().format().extension());
    ProjectBuilder other = ProjectBuilder(3).addLayer("Other");
    other.model.solve = MarloHost::SolveModel();
    auto const first = exported(GetParam(), smallProject(), target);
    exported(GetParam(), other, target);
    auto const again = exported(GetParam(), smallProject(), target);
    ASSERT_FALSE(first.files.isEmpty());
    EXPECT_EQ(first.files.keys(), again.files.keys());
    for (QString const& file : first.files.keys())
    {
        EXPECT_FALSE(first.files[file].isEmpty());
        EXPECT_TRUE(sameBytes(first.files[file], again.files.value(file)));
    }
    EXPECT_EQ(first.failedCount, 0);
    EXPECT_EQ(first.messages, QStringList());
}

// The build makes the locale and LOCPATH tells where it is: without it a program stays in "C"
// and nothing is tested.
TEST_P(Mill, GermanLocaleAndAnotherHashSeedChangeNoByte)
{
    QString const project = writeProjectFile(smallProject());
    QMap<QString, QString> const environments[] = {
        {{"LC_ALL", "C"}, {"QT_HASH_SEED", "0"}},
        {{"LC_ALL", "de_DE.UTF-8"}, {"LANG", "de_DE.UTF-8"}, {"QT_HASH_SEED", "31"}},
    };
    QMap<QString, QByteArray> written[2];
    for (int i = 0; i < 2; ++i)
    {
        QString const folder = path(QString::number(i)) + "/";
        ToolRun const run = runTool({"export", project, GetParam().key(), "-o", folder}, environments[i]);
        ASSERT_EQ(run.status, 0) << run.errors.toStdString();
        written[i] = filesBelow(folder);
    }
    ASSERT_FALSE(written[0].isEmpty());
    EXPECT_EQ(written[0].keys(), written[1].keys());
    for (QString const& file : written[0].keys())
    {
        EXPECT_TRUE(sameBytes(written[0][file], written[1].value(file)));
    }

    ASSERT_STREQ(std::setlocale(LC_ALL, "de_DE.UTF-8"), "de_DE.UTF-8");
    ASSERT_STREQ(std::localeconv()->decimal_point, ",");
    auto const here = exported(GetParam(), smallProject(), path("out" + GetParam().format().extension()));
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(here.files.first(), written[0].first());
}

TEST_P(Mill, TheClipboardGetsWhatAFileGets)
{
    if (!supportsCopy(GetParam().format()))
    {
        GTEST_SKIP() << "goes to files only";
    }
    auto const project = smallProject().make("/shots/mill.json");
    MarloHost::MemoryClipboard clipboard;
    Declining provider;
    copyToClipboard(wrapperOf(GetParam(), *project), *project, provider, clipboard);
    QByteArray const copied =
        clipboard.mimeData().size() == 1 ? clipboard.mimeData().first() : clipboard.text().toUtf8();
    EXPECT_EQ(copied, exported(GetParam(), smallProject(), QString()).files.first());
}

TEST_P(Mill, ATargetThatCannotBeWrittenIsNamedAndNothingIsLeftBehind)
{
    QFile blocker(path("file"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    auto const project = smallProject().make();
    Declining provider;
    QString const target = path("file/deeper/out" + GetParam().format().extension());
    try
    {
        exportBatch({{wrapperOf(GetParam(), *project), {}, target}}, *project, provider);
        FAIL() << "was written";
    }
    catch (KORV_OperationFailed const& error)
    {
        EXPECT_TRUE(error.message().startsWith("Cannot write to following paths.\n")) << error.what();
        EXPECT_TRUE(error.message().contains(path("file/deeper"))) << error.what();
    }
    EXPECT_EQ(filesBelow(m_folder.path()).keys(), QStringList("file"));
}

TEST_P(Mill, AFullDiskLeavesTheOlderFilesAsTheyWere)
{
    QString const project = writeProjectFile(smallProject());
    QStringList const arguments{"export", project, GetParam().key(), "-o", path("out") + "/", "--overwrite"};
    ASSERT_EQ(runTool(arguments).status, 0);
    QMap<QString, QByteArray> older;
    for (QString const& file : filesBelow(path("out")).keys())
    {
        QFile out(path("out/" + file));
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write("older");
        older.insert(file, "older");
    }
    // Some formats go through a temporary file.
    ASSERT_TRUE(QDir(m_folder.path()).mkdir("temporary"));
    ToolRun const run = runTool(arguments, {{"TMPDIR", path("temporary")}}, "ulimit -f 0;");
    EXPECT_EQ(run.status, 1);
    EXPECT_TRUE(run.errors.contains("Could not write to file " + path("out").toUtf8()) ||
                run.errors.contains("Could not write to file " + path("temporary").toUtf8()))
        << run.errors.toStdString();
    EXPECT_EQ(run.errors.count('\n'), 1 + run.errors.count(": warning: ")) << run.errors.toStdString();
    EXPECT_EQ(filesBelow(path("out")), older);
    EXPECT_EQ(filesBelow(path("temporary")).keys(), QStringList());
}

TEST_P(Mill, NamesNeverBecomePlaceholdersOrFolders)
{
    for (char const* name : {"%1 %2", "a/b\\..", "\"quoted\" <&>", "Grüße 日本", ".."})
    {
        ProjectBuilder builder = smallProject();
        builder.layer().name = QString::fromUtf8(name);
        builder.model.currentLayer = builder.layer().name;
        builder.model.solve->features.back().layer = builder.layer().name;
        QString const folder = path("names");
        ToolRun const run =
            runTool({"export", writeProjectFile(builder), GetParam().key(), "-o", folder + "/", "--unsafe-names"});
        EXPECT_EQ(run.status, 0) << name << ": " << run.errors.toStdString();
        QStringList const files = filesBelow(folder).keys();
        EXPECT_FALSE(files.isEmpty()) << name;
        for (QString const& file : files)
        {
            EXPECT_FALSE(file.contains('/')) << name << " made " << file.toStdString();
        }
        QDir(folder).removeRecursively();
    }
}

/// Where a project may hold a value that isn't finite, and which formats are about it.
struct BadPlace
{
    char const* name;
    FormatNeed need;
    double& (*number)(MarloHost::ProjectModel& model);
};

BadPlace const BAD_PLACES[] = {
    {"a homography", NeedsTrack,
     [](MarloHost::ProjectModel& model) -> double& { return model.layers[0].tracks[0].homographies[9 + 2]; }},
    {"a contour", NeedsContours,
     [](MarloHost::ProjectModel& model) -> double& { return model.layers[0].contours[0].keys[0].points[1]; }},
    {"a mesh", NeedsMesh,
     [](MarloHost::ProjectModel& model) -> double& { return model.layers[0].mesh->tracks[0].positions[3]; }},
    {"a camera", NeedsSolve,
     [](MarloHost::ProjectModel& model) -> double& { return model.solve->camera.pose.positions[4]; }},
};

/// A number's word for what isn't finite, whatever stands around it.
bool holdsNonFiniteWord(QByteArray const& text)
{
    static QRegularExpression const word("(?<![A-Za-z0-9_])[-+]?(nan|inf|infinity)(?![A-Za-z0-9_])",
                                         QRegularExpression::CaseInsensitiveOption);
    return !text.contains('\0') && word.match(QString::fromUtf8(text)).hasMatch();
}

TEST_P(Mill, ValuesThatAreNotFiniteAreToldAndNeverWritten)
{
    FormatTraits const& traits = GetParam().traits();
    for (BadPlace const& place : BAD_PLACES)
    {
        for (double const value : {std::nan(""), std::numeric_limits<double>::infinity()})
        {
            ProjectBuilder builder = smallProject();
            place.number(builder.model) = value;
            auto const result = exported(GetParam(), builder, path("out" + GetParam().format().extension()));
            if (traits.needs.testFlag(place.need) && traits.leftOut == LeftOut::IsTold)
            {
                EXPECT_GT(result.failedCount + result.messages.size(), 0) << place.name << " of " << value;
            }
            for (QByteArray const& content : result.files)
            {
                EXPECT_FALSE(holdsNonFiniteWord(content)) << place.name << " of " << value;
            }
        }
    }
}

TEST_P(Mill, ALayerWithoutTrackingDataIsToldOrRefused)
{
    FormatTraits const& traits = GetParam().traits();
    if (!traits.needs.testFlag(NeedsTrack))
    {
        GTEST_SKIP() << "doesn't read the track of a layer";
    }
    ProjectBuilder builder = smallProject();
    builder.layer().tracks.clear();
    QString const target = path("out" + GetParam().format().extension());
    if (traits.untracked == Untracked::IsRefused)
    {
        EXPECT_THROW(exported(GetParam(), builder, target), KORV_Exception);
        return;
    }
    auto const result = exported(GetParam(), builder, target);
    if (traits.untracked == Untracked::HasNoFile)
    {
        EXPECT_TRUE(result.files.isEmpty());
        EXPECT_EQ(result.messages.size(), 1);
        return;
    }
    EXPECT_EQ(result.messages, QStringList(target + ": Layer \"Poster\" has no tracking data"));
}

/// A project as large as the golden's, or larger.
struct SizedProject
{
    char const* name;
    bool isLong;
    int extraContours;
    bool isXSpline;
    int extraFeatures;
};

constexpr SizedProject SIZED_PROJECTS[] = {
    {"a few frames", false, 0, false, 0},
    {"many frames", true, 0, false, 0},
    {"many Bezier curves and features", true, 10, false, 300},
    {"many X-splines", true, 6, true, 0},
};

/// Lets a row of numbers go on to a last frame, so that no frame is like another: some formats
/// hold equal samples once.
template <typename Rows>
void moveOn(Rows& rows, int frame, std::vector<double> Rows::*member)
{
    std::vector<double>& numbers = rows.*member;
    std::size_t const width = numbers.size() / (rows.frames.size() - 1);
    for (std::size_t i = 0; i < width; ++i)
    {
        numbers.push_back(numbers[numbers.size() - width] + 0.123 * frame);
    }
}

void moveOn(MarloHost::PoseModel& pose, int frame)
{
    pose.frames.push_back(frame);
    moveOn(pose, frame, &MarloHost::PoseModel::positions);
    moveOn(pose, frame, &MarloHost::PoseModel::rotations);
}

ProjectBuilder projectOf(SizedProject const& sized)
{
    constexpr int MANY_FRAMES = 500;
    ProjectBuilder builder = smallProject();
    if (sized.isLong)
    {
        builder.clip().frameCount = MANY_FRAMES;
        builder.range(0, MANY_FRAMES - 1)
            .track(
                [](int frame) {
                    return ProjectBuilder::similarity(960.123, 540.321, 0.001 * frame, 1 + 1e-4 * frame, 0.37 * frame,
                                                      1);
                });
        auto& mesh = builder.layer().mesh->tracks[0];
        mesh.frames.push_back(MANY_FRAMES - 1);
        moveOn(mesh, MANY_FRAMES - 1, &MarloHost::MeshTrackModel::positions);
        moveOn(builder.model.solve->camera.pose, MANY_FRAMES - 1);
        moveOn(builder.layer().pose, MANY_FRAMES - 1);
    }
    for (int i = 0; i < sized.extraContours; ++i)
    {
        builder.layer().contours.push_back(builder.layer().contours[sized.isXSpline ? 1 : 0]);
    }
    std::vector<double>& features = builder.model.solve->features[0].points.positions;
    for (int i = 0; i < sized.extraFeatures; ++i)
    {
        features.insert(features.end(), {0.123456 * i, -12345.6 + i, 1e-3 * i});
    }
    return builder;
}

TEST_P(Mill, AnExportIsNoLargerThanEstimatedAndALongOneNotMuchSmaller)
{
    for (SizedProject const& sized : SIZED_PROJECTS)
    {
        ProjectBuilder const builder = projectOf(sized);
        auto const project = builder.make("/shots/mill.json");
        double const estimate = estimatedBytes(GetParam(), *project, {{project->currentLayer()}}, 1e12);
        double bytes = 0;
        for (QByteArray const& content : exported(GetParam(), builder, path("out")).files)
        {
            bytes += content.size();
        }
        EXPECT_LE(bytes, estimate) << sized.name;
        EXPECT_GE(sized.isLong ? 20 * bytes : estimate, estimate) << sized.name;
    }
}

TEST_P(Mill, AFewBytesCannotAskForMillionsOfFrames)
{
    ProjectBuilder builder = smallProject();
    builder.clip().frameCount = 10000000;
    builder.layer().outPoint = builder.clip().frameCount - 1;
    auto const project = builder.make();
    double const limit = exportSizeLimit(GetParam(), 0);
    if (estimatedBytes(GetParam(), *project, {{project->currentLayer()}}, limit) <= limit)
    {
        GTEST_SKIP() << "is small whatever the number of frames";
    }
    QStringList const arguments{"export", writeProjectFile(builder), GetParam().key(), "-o", path("out") + "/"};
    ToolRun const refused = runTool(arguments);
    EXPECT_EQ(refused.status, 1);
    EXPECT_TRUE(
        refused.errors.startsWith("marlo-export: " + GetParam().key().toUtf8() + ": The export would take about "))
        << refused.errors.toStdString();
    EXPECT_TRUE(refused.errors.endsWith("--frames A-B, or fewer layers.\n")) << refused.errors.toStdString();
    EXPECT_EQ(refused.errors.count('\n'), 1);
    EXPECT_EQ(filesBelow(path("out")), (QMap<QString, QByteArray>()));
    EXPECT_EQ(runTool(arguments + QStringList{"--frames", "1003-1006"}).status, 0);
}

/// The folders of goldens by key: tests/formats/FAMILY/golden/KEY.
QMap<QString, QString> goldenFolders()
{
    QMap<QString, QString> folders;
    QDir const formats(MARLO_SOURCE_DIR "/tests/formats");
    for (QString const& family : formats.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
    {
        QDir const goldens(formats.filePath(family + "/golden"));
        for (QString const& key : goldens.entryList(QDir::Dirs | QDir::NoDotAndDotDot))
        {
            folders.insert(key, goldens.filePath(key));
        }
    }
    return folders;
}

TEST_P(Mill, TextEqualsItsGolden)
{
    QString const golden = goldenFolders().value(GetParam().key());
    ASSERT_FALSE(golden.isEmpty()) << "no folder tests/formats/FAMILY/golden/" << GetParam().key().toStdString();
    QString const target = "/golden/out" + GetParam().format().extension();
    auto const result = exported(GetParam(), smallProject(), target);
    if (qEnvironmentVariableIsSet("MARLO_UPDATE_GOLDENS"))
    {
        QDir(golden).removeRecursively();
        QDir().mkpath(golden);
        for (auto it = result.files.begin(); it != result.files.end(); ++it)
        {
            QFile out(golden + it.key().mid(QString("/golden").size()));
            ASSERT_TRUE(out.open(QIODevice::WriteOnly));
            out.write(it.value());
        }
    }
    QMap<QString, QByteArray> const expected = filesBelow(golden);
    ASSERT_FALSE(expected.isEmpty()) << "no golden; tests/update-goldens makes one, to be checked by hand";
    EXPECT_EQ(expected.size(), result.files.size());
    for (auto it = expected.begin(); it != expected.end(); ++it)
    {
        EXPECT_TRUE(sameBytes(it.value(), result.files.value("/golden/" + it.key()))) << it.key().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, Mill, testing::ValuesIn(offeredFormats()),
                         [](testing::TestParamInfo<FormatEntry> const& format)
                         { return format.param.key().toStdString(); });

/// Where names stand that reach the text of an export.
struct NamePlace
{
    char const* name;
    void (*set)(MarloHost::ProjectModel& model, QString const& name);
};

NamePlace const NAME_PLACES[] = {
    {"layer",
     [](MarloHost::ProjectModel& model, QString const& name)
     {
         model.layers[0].name = name;
         model.currentLayer = name;
         model.solve->features.back().layer = name;
     }},
    {"contour", [](MarloHost::ProjectModel& model, QString const& name) { model.layers[0].contours[0].name = name; }},
    {"view",
     [](MarloHost::ProjectModel& model, QString const& name) {
         model.views = QStringList{name, "other"};
     }},
};

/// The texts and attribute values of a document, one a line, in order.
QByteArray valuesOf(QDomNode const& node)
{
    QMap<QString, QString> attributes;
    for (int i = 0; i < node.attributes().size(); ++i)
    {
        attributes.insert(node.attributes().item(i).nodeName(), node.attributes().item(i).nodeValue());
    }
    QString text = node.nodeName() + '=' + node.nodeValue() + '\n' + attributes.keys().join(',') + '\n' +
                   QStringList(attributes.values()).join('\n');
    QByteArray values = text.toUtf8() + '\n';
    for (QDomNode child = node.firstChild(); !child.isNull(); child = child.nextSibling())
    {
        values += valuesOf(child);
    }
    return values;
}

/// A name as it stands in quotes.
QByteArray quotedName(QByteArray name)
{
    return name.replace('\\', "\\\\").replace('"', "\\\"");
}

/// Whether a text with a name in it is that of a harmless name but for the name, as the
/// language reads it that the text is in: values of XML, words in quotes, words in braces (in
/// which none of Tcl's characters may be), or fields of tabs and lines. Other characters than
/// Latin letters and digits may have become "_".
testing::AssertionResult holdsOneField(QByteArray const& text, QString const& name, QByteArray const& harmless,
                                       QByteArray const& harmlessName)
{
    QByteArray const raw = text.startsWith("kestrelia ") ? quotedName(name.toUtf8()) : name.toUtf8();
    if (harmless.startsWith("Ogawa"))
    {
        // Such a file says how long each name is, and has sums over all of them.
        bool const isThere = text.size() == harmless.size() && text.count(raw) == harmless.count(harmlessName);
        return isThere ? testing::AssertionSuccess() : testing::AssertionFailure() << "lacks " << raw.toStdString();
    }
    if (text.startsWith("<?xml"))
    {
        QDomDocument document;
        QDomDocument plain;
        if (!document.setContent(text) || !plain.setContent(harmless))
        {
            return testing::AssertionFailure() << "isn't XML";
        }
        return sameBytes(valuesOf(plain), valuesOf(document).replace(raw, harmlessName));
    }
    static QRegularExpression const tcl("[{}\\[\\]\"\\\\;$]");
    static QRegularExpression const quotes("[\"\\\\]");
    QRegularExpression const quoted("\"[^\"\n]*" + harmlessName + "[^\"\n]*\"");
    bool const inBraces = harmless.contains(" {\n") && name.contains(tcl);
    bool const inQuotes = quoted.match(QString::fromUtf8(harmless)).hasMatch() && name.contains(quotes);
    if (text.contains(name.toUtf8()) && (inBraces || inQuotes))
    {
        return testing::AssertionFailure() << "a word in braces or quotes holds " << raw.toStdString();
    }
    // What a format makes of a name that can't name a variable.
    QByteArray const safe = QString(name).replace(QRegularExpression("[^A-Za-z0-9]"), "_").toUtf8();
    return sameBytes(harmless, QByteArray(text).replace(raw, harmlessName).replace(safe, harmlessName));
}

/// The name as a text has it: names of a stage keep only letters and digits.
QString nameIn(QByteArray const& text, QString const& name)
{
    static QRegularExpression const other("[^A-Za-z0-9]");
    return text.startsWith("#usda ") ? QString(name).replace(other, "_") : name;
}

TEST(Names, StayInTheirFieldInEveryFormatOrAreRefused)
{
    QTemporaryDir folder;
    auto const exportAll = [&](NamePlace const& place, QString const& name)
    {
        ProjectBuilder builder = smallProject();
        place.set(builder.model, name);
        QFile out(folder.filePath("mill.json"));
        EXPECT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(MarloHost::writeProject(builder.model));
        out.close();
        QDir(folder.filePath("out")).removeRecursively();
        return runTool(
            {"all", folder.filePath("mill.json"), "-o", folder.filePath("out"), "--view", "all", "--accept-gaps"});
    };
    // As long as the odd names in bytes, which binary formats count.
    QByteArray const harmlessNames[] = {"Calm7", "Quiet7"};
    for (NamePlace const& place : NAME_PLACES)
    {
        QMap<int, QMap<QString, QMap<QString, QByteArray>>> harmless;
        for (QByteArray const& name : harmlessNames)
        {
            exportAll(place, name);
            for (FormatEntry const& format : offeredFormats())
            {
                harmless[name.size()][format.key()] = filesBelow(folder.filePath("out/" + format.key()));
            }
        }
        for (char const* odd : {"{", "}", "[", "]", "\"", "\\", ";", "$", "#", "\u00a0", "%1"})
        {
            QString const name = "Odd" + QString::fromUtf8(odd) + "7";
            QByteArray const& harmlessName = harmlessNames[name.toUtf8().size() - harmlessNames[0].size()];
            ToolRun const run = exportAll(place, name);
            for (FormatEntry const& format : offeredFormats())
            {
                SCOPED_TRACE((QString(place.name) + " " + name + " " + format.key()).toStdString());
                QList<QByteArray> const texts = filesBelow(folder.filePath("out/" + format.key())).values();
                bool const isRefused = run.errors.contains(format.key().toUtf8() + ": the name of " + place.name);
                QList<QByteArray> const plain = harmless[harmlessName.size()][format.key()].values();
                EXPECT_EQ(texts.size(), isRefused ? 0 : plain.size()) << run.errors.toStdString();
                for (int i = 0; i < qMin(texts.size(), plain.size()); ++i)
                {
                    EXPECT_TRUE(holdsOneField(texts[i], nameIn(texts[i], name), plain[i], harmlessName));
                }
            }
        }
    }
}

// The two documents that the format's description prints, byte for byte.
TEST(Printed, TransformAndCornerPinDocuments)
{
    ProjectBuilder transform(2);
    transform.addLayer("A");
    transform.track(
        [](int frame)
        {
            return frame == 0 ? ProjectBuilder::identity()
                              : ProjectBuilder::similarity(960, 540, -1.5 * 3.141592653589793 / 180, 1.005, 1.5, -0.25);
        });
    EXPECT_TRUE(
        sameBytes(fileContent(MARLO_SOURCE_DIR "/tests/formats/AfterEffects/printed/after_effects_transform.txt"),
                  exported(FormatEntry(TrackingDataFormat::AE_TRANSFORM()), transform, "p").files.value("p")));

    ProjectBuilder pin(2);
    pin.addLayer("A", {100, 50, 200, 50, 100, 100, 200, 100});
    pin.track([](int frame) { return ProjectBuilder::translation(frame, -0.5 * frame); });
    EXPECT_TRUE(
        sameBytes(fileContent(MARLO_SOURCE_DIR "/tests/formats/AfterEffects/printed/after_effects_corner_pin.txt"),
                  exported(FormatEntry(TrackingDataFormat::AE_CORNER_PIN_SIMPLE()), pin, "p").files.value("p")));
}

}
