// A program that links the installed library: registers an exporter of its own, lists the
// tracking formats, then makes a project of two frames and prints it as keyframe text and
// in its own format.

#include "CornerListExporter.h"

#include "Core/ExporterFactories.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "marlohost/ProjectFile.h"
#include "marlohost/ProjectModel.h"

#include <QTextStream>

namespace
{

/// One layer whose surface, centred in the picture, moves 10 px right and 5 px up.
MarloHost::ProjectModel movingSurface()
{
    MarloHost::ClipModel clip;
    clip.name = QStringLiteral("plate");
    clip.width = 1920;
    clip.height = 1080;
    clip.frameCount = 2;
    clip.frameOffset = 1001;

    MarloHost::TrackModel track;
    track.view = QStringLiteral("main");
    track.frames = {0, 1};
    track.homographies = {1, 0, 0, 0, 1, 0, 0, 0, 1, /* frame 1 */ 1, 0, 10, 0, 1, 5, 0, 0, 1};

    MarloHost::LayerModel layer;
    layer.name = QStringLiteral("sign");
    layer.corners = {860, 440, 1060, 440, 860, 640, 1060, 640};
    layer.tracks = {track};

    MarloHost::ProjectModel model;
    model.clips = {clip};
    model.layers = {layer};
    model.currentLayer = layer.name;
    return model;
}

Export::TrackingDataFormat cornerList()
{
    return {QStringLiteral("Corner List"),
            QStringLiteral("corner_list"),
            QStringLiteral(".csv"),
            QStringLiteral("Corners of the surface by frame."),
            {},
            {},
            false,
            1,
            Export::SaveOptions(Export::SaveToFile)};
}

}

int main()
{
    QTextStream out(stdout);
    Export::TrackingExporterFactory::registerCustomExporter(cornerList(), std::make_shared<CornerListExporter>());
    Export::TrackingExporterFactory::forEachFormat(
        [&out](Export::TrackingDataFormat const& format) { out << format.internalName() << "\n"; }, nullptr);

    auto const project = MarloHost::makeProject(movingSurface());
    int failedCount = 0;
    for (char const* const key : {"after_effects_transform", "corner_list"})
    {
        auto const format = Export::TrackingDataFormat::byName(*project, QString::fromLatin1(key));
        auto const exporter = Export::TrackingExporterFactory::getExporter(format);
        QString const path = QStringLiteral("sign") + format.extension();
        Korvane::ExportedFiles const result =
            exporter->exportTracking(*project, path, project->currentLayer()->numericID(), project->currentFrame(),
                                     Korvane::TrackingExporter::Options());
        out << result.files.value(path);
        failedCount += result.failedCount;
    }
    return failedCount == 0 ? 0 : 1;
}
