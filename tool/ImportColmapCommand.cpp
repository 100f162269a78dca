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

struct ColmapReport
{
    ColmapModel const& model;
    ColmapProject const& result;
    QString path;

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

    std::size_t inaccurate() const
    {
        auto const& features = result.project.solve->features;
        return features.empty() ? 0 : features.front().points.inaccurate.size();
    }

    Json toJson() const
    {
        auto const [least, most] = focalLength();
        return {{"project", jsonText(path)},
                {"status", "written"},
                {"images", model.images.size()},
                {"firstFrame", clip().frameOffset},
                {"lastFrame", lastFrame()},
                {"firstImage", jsonText(model.images.front().name)},
                {"lastImage", jsonText(model.images.back().name)},
                {"footage", result.isSequence ? "sequence" : "solid"},
                {"points", model.points.size()},
                {"inaccurate", inaccurate()},
                {"medianError", result.medianError ? Json(*result.medianError) : Json()},
                {"focalLength", {least, most}},
                {"pixelAspect", clip().pixelAspect},
                {"principalPoint", {result.principalRight, result.principalDown}},
                {"lens", jsonTexts(lensTerms(clip()))},
                {"leftOut", jsonTexts(result.leftOut)},
                {"warnings", jsonTexts(result.warnings)},
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
        ColmapModel::Image const& first = model.images.front();
        ColmapModel::Image const& last = model.images.back();
        QString const error = result.medianError ? Text::fixedText(*result.medianError, 2) + QStringLiteral(" px")
                                                 : QStringLiteral("unknown");
        return {path,
                QStringLiteral("images: %1 of %2x%3, footage: %4")
                    .arg(model.images.size())
                    .arg(clip().width)
                    .arg(clip().height)
                    .arg(result.isSequence ? QStringLiteral("sequence") : QStringLiteral("solid")),
                QStringLiteral("frames: %1 (").arg(clip().frameOffset) + first.name +
                    QStringLiteral(") to %1 (").arg(lastFrame()) + last.name + QLatin1Char(')'),
                QStringLiteral("points: %1, median error: %2, inaccurate: %3")
                    .arg(model.points.size())
                    .arg(error)
                    .arg(inaccurate()),
                QStringLiteral("camera: focal length %1 on a film back of 36 mm, pixel aspect %2, principal point off "
                               "the middle by %3, %4 px (right, down)")
                    .arg(focalText())
                    .arg(clip().pixelAspect)
                    .arg(Text::fixedText(result.principalRight, 2), Text::fixedText(result.principalDown, 2)),
                QStringLiteral("lens: ") + orNone(lensTerms(clip())),
                QStringLiteral("left out: ") + orNone(result.leftOut)};
    }
};

void importColmap(Options const& options, Console& console)
{
    ColmapImportChoices const& colmap = options.colmap;
    checkImportTarget(colmap.target, console);
    MarloHost::ColmapImport import = colmap.import;
    QString const baseName = QFileInfo(colmap.target.project).completeBaseName();
    import.clipName = baseName.isEmpty() ? QStringLiteral("clip") : baseName;

    ColmapModel const model = MarloHost::readColmapFolder(QDir::cleanPath(colmap.folder));
    ColmapProject const result = MarloHost::projectFromColmap(model, import);
    writeImportedProject(colmap.target, MarloHost::writeProject(result.project), console);
    ColmapReport const report{model, result, colmap.target.project};
    reportImport(options, result.warnings, report.toJson(), report.lines(), console);
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
