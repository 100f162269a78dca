// docs/formats.md is made from the one list of formats and from what lies in tests/ and
// docs/ for each: tests/update-goldens rewrites it. A format without golden, reader and page
// fails here.

#include "Core/ExporterFactories.h"
#include "Core/FormatList.h"
#include "Core/LensExporter.h"
#include "Host/CameraSolveExporter.h"
#include "Host/ShapeExporter.h"
#include "Host/TrackingExporter.h"

#include <boost/core/demangle.hpp>
#include <gtest/gtest.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <typeinfo>

using namespace Export;

namespace
{

QString const ROOT = QStringLiteral(MARLO_SOURCE_DIR "/");

QString contentOf(QString const& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

/// Paths from the root of the sources, sorted.
QStringList filesBelow(QString const& folder, QString const& pattern)
{
    QStringList files;
    QDirIterator it(ROOT + folder, {pattern}, QDir::Files, QDirIterator::Subdirectories);
    while (it.hasNext())
    {
        files += QDir(ROOT).relativeFilePath(it.next());
    }
    files.sort();
    return files;
}

/// What a format has of files, beside its row in the list.
struct Evidence
{
    QString golden;

    /// Readers, and what they hold the format to.
    QMap<QString, QString> bounds;
    QStringList pages;
};

/// By key. A reader says what it verifies in a dict, one line for each key.
QMap<QString, Evidence> evidence()
{
    QMap<QString, Evidence> found;
    for (QString const& file : filesBelow("tests/formats", "*"))
    {
        QStringList const parts = file.split('/');
        if (parts.value(3) == "golden")
        {
            found[parts[4]].golden = parts.mid(0, 5).join('/');
        }
    }
    static QRegularExpression const entry("^    \"([A-Za-z0-9_]+)\": \"(.*)\",$", QRegularExpression::MultilineOption);
    for (QString const& reader : filesBelow("tests", "check_*.py"))
    {
        QString const declared = contentOf(ROOT + reader).section("\nVERIFIES = {\n", 1).section("\n}", 0, 0);
        for (auto it = entry.globalMatch(declared); it.hasNext();)
        {
            QRegularExpressionMatch const match = it.next();
            found[match.captured(1)].bounds.insert(reader, match.captured(2));
        }
    }
    static QRegularExpression const word("`([a-z][A-Za-z0-9_]+)`");
    for (QString const& page : filesBelow("docs/formats", "*.md"))
    {
        for (auto it = word.globalMatch(contentOf(ROOT + page)); it.hasNext();)
        {
            QStringList& pages = found[it.next().captured(1)].pages;
            pages += pages.contains(page) ? QStringList() : QStringList(page);
        }
    }
    return found;
}

/// Without its namespace.
QString classOf(FormatEntry const& format)
{
    auto const nameOf = [](auto const& exporter)
    { return QString::fromStdString(boost::core::demangle(typeid(exporter).name())).section("::", -1); };
    switch (format.kind())
    {
    case FormatKind::Tracking:
        return nameOf(*TrackingExporterFactory::getExporter(format.as<TrackingDataFormat>()));
    case FormatKind::Shape:
        return nameOf(*ShapeExporterFactory::getExporter(format.as<ShapeDataFormat>()));
    case FormatKind::Camera:
        return nameOf(*CameraSolveExporterFactory::getExporter(format.as<CameraSolveFormat>()));
    case FormatKind::Lens:
        break;
    }
    return nameOf(*LensExporter::EXPORTERS_BY_FORMAT().value(format.as<LensDataFormat>()));
}

QString headerOf(QString const& className)
{
    QRegularExpression const declaration("^class MARLO_\\w+_API " + className + "\\b[^;]*$",
                                         QRegularExpression::MultilineOption);
    for (QString const& header : filesBelow("src", "*.h"))
    {
        if (declaration.match(contentOf(ROOT + header)).hasMatch())
        {
            return header;
        }
    }
    return "no header declares " + className;
}

QString listed(QStringList const& words)
{
    return words.isEmpty() ? "nothing" : words.join(", ");
}

template <typename Flags>
QString words(Flags flags, std::initializer_list<std::pair<int, char const*>> names)
{
    QStringList list;
    for (auto const& [flag, name] : names)
    {
        list += static_cast<int>(flags) & flag ? QStringList(name) : QStringList();
    }
    return listed(list);
}

QString sectionOf(FormatEntry const& entry, Evidence const& evidence)
{
    FormatTraits const& traits = entry.traits();
    DataFormatBase const& format = entry.format();
    QString const className = classOf(entry);
    QString text = "## `" + entry.key() + "`\n\n";
    text += format.displayName() + " (" + kindWord(entry.kind()) + (format.isLegacy() ? ", legacy" : "") + "), ";
    text += format.extension().isEmpty() ? QString("no file of its own") : "`" + format.extension() + "`";
    text += format.numFiles() > 1 ? ", " + QString::number(format.numFiles()) + " files" : QString();
    text += "; `" + className + "` in `" + headerOf(className) + "`.\n\n";
    text += QString("- Brought in: ") + traits.wayIn + "\n";
    text += "- Follows: " +
            words(traits.honours, {{HonoursLayers, "several layers"},
                                   {HonoursViews, "several views"},
                                   {HonoursMotion, "`--track`"},
                                   {HonoursInvert, "`--invert`"},
                                   {HonoursUndistort, "`--undistort`"},
                                   {HonoursObjects, "`--objects`"}}) +
            ". Needs: " +
            words(traits.needs, {{NeedsTrack, "a track"},
                                 {NeedsMesh, "a mesh"},
                                 {NeedsContours, "contours"},
                                 {NeedsSolve, "a solve"},
                                 {NeedsLens, "a lens"}}) +
            ".\n";
    text += *traits.breaksField ? QString("- Names must not hold any of `") + traits.breaksField + "`.\n" : QString();
    text += QString("- Limits: ") + traits.limits + "\n";
    if (entry.kind() == FormatKind::Shape)
    {
        text += "- Holds of layers: " +
                words(traits.holds, {{HoldsFeather, "feather"},
                                     {HoldsHidden, "hidden state"},
                                     {HoldsGroups, "groups"},
                                     {HoldsSecondClips, "clips of several sizes and times"},
                                     {HoldsFieldLifetimes, "lifetimes in fields"},
                                     {HoldsOpen, "open contours"},
                                     {HoldsInvert, "inverted layers"},
                                     {HoldsSubtract, "layers that subtract"}}) +
                "; the export says what it leaves out of these.\n";
    }
    text += "- Verified: golden `" + evidence.golden + "`";
    for (auto it = evidence.bounds.begin(); it != evidence.bounds.end(); ++it)
    {
        text += "; `" + it.key() + "`: " + it.value();
    }
    QStringList pages;
    for (QString const& page : evidence.pages)
    {
        QString const inDocs = page.section('/', 1);
        pages += "[" + inDocs.section('/', -1) + "](" + inDocs + ")";
    }
    return text + ".\n- Page: " + listed(pages) + ".\n";
}

QString page()
{
    QMap<QString, Evidence> const files = evidence();
    QString text = "# Formats\n\n"
                   "What the library writes: tracking, shape, camera and lens formats, within a kind by name. A test\n"
                   "makes this page from the list of formats; `tests/update-goldens` rewrites it.\n";
    for (FormatEntry const& entry : offeredFormats())
    {
        text += '\n' + sectionOf(entry, files.value(entry.key()));
    }
    return text;
}

TEST(FormatsPage, IsWhatTheListSays)
{
    QString const path = ROOT + "docs/formats.md";
    QString const expected = page();
    if (qEnvironmentVariableIsSet("MARLO_UPDATE_GOLDENS"))
    {
        QFile out(path);
        ASSERT_TRUE(out.open(QIODevice::WriteOnly));
        out.write(expected.toUtf8());
    }
    EXPECT_TRUE(contentOf(path) == expected) << "docs/formats.md is not in step; tests/update-goldens rewrites it";
    EXPECT_FALSE(expected.contains("no header declares")) << expected.toStdString();
}

TEST(FormatsPage, EveryFormatHasGoldenReaderAndPage)
{
    QMap<QString, Evidence> const files = evidence();
    QStringList keys;
    for (FormatEntry const& entry : offeredFormats())
    {
        Evidence const found = files.value(entry.key());
        keys += entry.key();
        EXPECT_FALSE(found.golden.isEmpty()) << entry.key().toStdString() << " has no golden";
        EXPECT_FALSE(found.bounds.isEmpty()) << entry.key().toStdString() << " is in VERIFIES of no reader";
        EXPECT_FALSE(found.pages.isEmpty()) << entry.key().toStdString() << " is on no page of docs/formats/";
        EXPECT_STRNE(entry.traits().wayIn, "") << entry.key().toStdString();
        EXPECT_STRNE(entry.traits().limits, "") << entry.key().toStdString();
    }
    for (auto it = files.begin(); it != files.end(); ++it)
    {
        bool const isOffered = keys.contains(it.key());
        EXPECT_TRUE(isOffered || it->bounds.isEmpty()) << "a reader verifies " << it.key().toStdString();
        EXPECT_TRUE(isOffered || it->golden.isEmpty()) << it->golden.toStdString() << " is left over";
    }
}

}
