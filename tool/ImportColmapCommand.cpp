// `marlo-export import colmap`

#include "Commands.h"
#include "Console.h"
#include "Host/KORV_Exception.h"
#include "ImportedProject.h"
#include "Record.h"
#include "marlohost/ColmapModel.h"
#include "marlohost/ProjectFile.h"
#include "text/NumberText.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>

namespace
{

using Json = nlohmann::ordered_json;
using MarloHost::ColmapFolder;
using MarloHost::ColmapModel;
using MarloHost::ColmapProject;
using MarloHost::KeyedNumber;

/// Names of the numbers that bend the picture, as a project file writes them.
QStringList lensTerms(MarloHost::ClipModel const& clip)
{
    QStringList terms;
    auto const add = [&terms](QString const& name, KeyedNumber const& number)
    {
        bool const isKeyed = !number.values.empty();
        if (isKeyed || number.value != 0)
        {
            terms += name;
        }
    };
    if (clip.lens)
    {
        for (std::size_t i = 0; i < clip.lens->radial.size(); ++i)
        {
            add(QStringLiteral("radial%1").arg(i + 1), clip.lens->radial[i]);
        }
        for (std::size_t i = 0; i < clip.lens->tangential.size(); ++i)
        {
            add(QStringLiteral("tangential%1").arg(i + 1), clip.lens->tangential[i]);
        }
    }
    return terms;
}

/// Least and largest.
std::pair<double, double> extent(KeyedNumber const& number)
{
    if (number.values.empty())
    {
        return {number.value, number.value};
    }
    auto const [least, most] = std::minmax_element(number.values.begin(), number.values.end());
    return {*least, *most};
}

QString orNone(QStringList const& list)
{
    return list.isEmpty() ? QStringLiteral("none") : list.join(QStringLiteral(", "));
}

/// Which of several models of a folder was read.
QString modelsWarning(std::vector<ColmapFolder> const& models)
{
    QStringList others;
    for (std::size_t i = 1; i < models.size(); ++i)
    {
        others += QStringLiteral("%1 (%2)").arg(models[i].path).arg(models[i].images);
    }
    return others.isEmpty()
               ? QString()
               : QStringLiteral("the largest of %1 models is read, %2 with %3 images; each has a space of its own, so "
                                "name the folder of another one to import that: %4")
                     .arg(models.size())
                     .arg(models.front().path)
                     .arg(models.front().images)
                     .arg(shortList(others));
}

QString missingWarning(ColmapProject const& result)
{
    int count = 0;
    for (auto const& [first, last] : result.missing)
    {
        count += last - first + 1;
    }
    return count == 0 ? QString()
                      : QStringLiteral("%1 of %2 frames have no camera of their own, and it goes evenly from neighbour "
                                       "to neighbour there: %3")
                            .arg(count)
                            .arg(result.project.clips.front().frameCount)
                            .arg(rangesText(result.missing));
}

struct ColmapReport
{
    ColmapModel const& model;
    ColmapProject const& result;
    ColmapImportChoices const& choices;
    QStringList warnings;

    QString numberingWord() const
    {
        static char const* const words[] = {"names", "runs", "counted"};
        return QLatin1String(words[result.numbering]);
    }

    MarloHost::ClipModel const& clip() const
    {
        return result.project.clips.front();
    }

    int lastFrame() const
    {
        return clip().frameOffset + clip().frameCount - 1;
    }

    std::pair<double, double> focalLength() const
    {
        return extent(result.project.solve->camera.focalLength);
    }

    MarloHost::PointCloudModel points() const
    {
        auto const& features = result.project.solve->features;
        return features.empty() ? MarloHost::PointCloudModel() : features.front().points;
    }

    Json toJson() const
    {
        auto const [least, most] = focalLength();
        return {{"project", jsonText(choices.target.project)},
                {"status", "written"},
                {"model", jsonText(model.folder)},
                {"form", model.form == MarloHost::ColmapForm::Text ? "text" : "binary"},
                {"images", model.images.size()},
                {"firstFrame", clip().frameOffset},
                {"lastFrame", lastFrame()},
                {"firstImage", jsonText(result.firstImage)},
                {"lastImage", jsonText(result.lastImage)},
                {"frameNumbers", jsonText(numberingWord())},
                {"missing", jsonRanges(result.missing)},
                {"footage", result.isSequence ? "sequence" : "solid"},
                {"points", points().pointCount()},
                {"pointsLeftOut", model.points.size() - static_cast<std::size_t>(points().pointCount())},
                {"inaccurate", points().inaccurate.size()},
                {"medianError", result.medianError ? Json(*result.medianError) : Json()},
                {"origin", result.origin},
                {"scale", choices.import.scale},
                {"focalLength", {least, most}},
                {"pixelAspect", clip().pixelAspect},
                {"principalPoint", {result.principalRight, result.principalDown}},
                {"lens", jsonTexts(lensTerms(clip()))},
                {"leftOut", jsonTexts(result.leftOut)},
                {"warnings", jsonTexts(warnings)},
                {"reason", ""}};
    }

    QString focalText() const
    {
        auto const [least, most] = focalLength();
        QString const text = Text::fixedText(least, 2);
        return (least == most ? text : text + QStringLiteral(" to ") + Text::fixedText(most, 2)) +
               QStringLiteral(" mm");
    }

    QStringList lines() const
    {
        constexpr int MANY_POINTS = 1000;
        QString const error = result.medianError ? Text::fixedText(*result.medianError, 2) + QStringLiteral(" px")
                                                 : QStringLiteral("unknown");
        auto const [x, y, z] = result.origin;
        return {
            choices.target.project,
            QStringLiteral("model: ") + model.folder +
                (model.form == MarloHost::ColmapForm::Text ? QStringLiteral(" (text)") : QStringLiteral(" (binary)")),
            QStringLiteral("images: %1 of %2x%3, footage: %4")
                .arg(model.images.size())
                .arg(clip().width)
                .arg(clip().height)
                .arg(result.isSequence ? QStringLiteral("sequence") : QStringLiteral("solid")),
            QStringLiteral("frames: %1 (").arg(clip().frameOffset) + result.firstImage +
                QStringLiteral(") to %1 (").arg(lastFrame()) + result.lastImage + QStringLiteral("), ") +
                numberingText(),
            QStringLiteral("missing: ") + rangesText(result.missing),
            QStringLiteral("points: %1, median error: %2, inaccurate: %3")
                    .arg(points().pointCount())
                    .arg(error)
                    .arg(points().inaccurate.size()) +
                (points().pointCount() > MANY_POINTS
                     ? QStringLiteral(" (a null each; --min-track and --max-error leave some out)")
                     : QString()),
            QStringLiteral("origin: %1, %2, %3 of the model, scale %4")
                .arg(exactText(x), exactText(y), exactText(z), exactText(choices.import.scale)),
            QStringLiteral("camera: focal length %1 on a film back of 36 mm, pixel aspect %2, principal point off "
                           "the middle by %3, %4 px (right, down)")
                .arg(focalText())
                .arg(clip().pixelAspect)
                .arg(Text::fixedText(result.principalRight, 2), Text::fixedText(result.principalDown, 2)),
            QStringLiteral("lens: ") + orNone(lensTerms(clip())),
            QStringLiteral("left out: ") + orNone(result.leftOut)};
    }

    QString numberingText() const
    {
        static char const* const texts[] = {"by the numbers in the names", "by runs of numbers, one behind the other",
                                            "counting the images"};
        return QLatin1String(texts[result.numbering]);
    }

    static QString exactText(double number)
    {
        return QString::number(number, 'g', 15);
    }
};

void importColmap(Options const& options, Console& console)
{
    ColmapImportChoices const& colmap = options.colmap;
    QDir const folder(colmap.folder);
    checkImportTarget(colmap.target,
                      {folder.filePath(QStringLiteral("cameras.txt")), folder.filePath(QStringLiteral("images.txt")),
                       folder.filePath(QStringLiteral("points3D.txt"))},
                      console);
    MarloHost::ColmapImport import = colmap.import;
    QString const baseName = QFileInfo(colmap.target.project).completeBaseName();
    import.clipName = baseName.isEmpty() ? QStringLiteral("clip") : baseName;

    std::vector<ColmapFolder> const models = MarloHost::findColmapModels(QDir::cleanPath(colmap.folder));
    ColmapModel const model = MarloHost::readColmapFolder(models.front());
    ColmapProject const result = MarloHost::projectFromColmap(model, import);
    writeImportedProject(colmap.target, MarloHost::writeProject(result.project), console);
    QStringList warnings{modelsWarning(models), missingWarning(result)};
    warnings += result.warnings;
    warnings.removeAll(QString());
    ColmapReport const report{model, result, colmap, warnings};
    reportImport(options, warnings, report.toJson(), report.lines(), console);
}

}

ExitStatus runImportColmap(Options const& options, Console& console)
{
    try
    {
        importColmap(options, console);
    }
    catch (KORV_BadFile const& error)
    {
        throw Failure(UnreadableInput, error.message());
    }
    return Success;
}
