// After Effects 3D Motion Data: the user loads the text with the importer plug-in, which
// makes a camera and nulls with the keyframes of the solve.
//
//   *Marlo 3D Track Importer 2.0 Data
//   *FilmSize: 102.049
//   *FocalLength: 99.2143
//   *NumberOfNulls: 2
//   *NullParent: Layer_1
//   *NullObject: Point 1 Parent: Layer_1
//   *EndHeader
//   Adobe After Effects 6.0 Keyframe Data      <- the camera, a whole document
//   ...
//   End of Keyframe Data
//   Adobe After Effects 6.0 Keyframe Data      <- Layer_1, then Point 1, likewise
//   ...
//
// Nothing but the order ties a document to its name in the header, so names and documents
// are collected in one walk.

#include "AfterEffects/AE3DMotionExporter.h"

#include "AfterEffects/SolveDigits.h"
#include "Host/KORV_Layer.h"
#include "Host/PluginHost.h"
#include "Host/Product.h"
#include "Host/ZN_ClipInfo.h"
#include "Writing/Results.h"
#include "Writing/ThrowHelpers.h"
#include "Writing/Values.h"
#include "text/NumberText.h"

#include <boost/make_shared.hpp>

#include <QFileInfo>
#include <QMap>
#include <QVariant>

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace Export
{

namespace
{

using Korvane::CameraSolve::CameraAnimData;
using Korvane::CameraSolve::PointAnimData;
using Sabrel::Matrix33;
using Sabrel::Vector3;

/// Points of 1/72 inch to the millimetre, as the importer rounds them.
constexpr double POINTS_PER_MILLIMETRE = 2.83469567;

/// XYZ about moving axes, the order in which After Effects turns a layer.
constexpr int ROTATE_ORDER = 21;

constexpr double METRES_TO_CENTIMETRES = 100.0;
constexpr double PERCENT = 100.0;
constexpr float FIRST_VERSION_WITH_HIERARCHY = 2.0F;

constexpr char const* DOWNLOAD_PAGE = "https://www.marlo.example/downloads/ae-track-importer";

QString withoutBlanks(QString name)
{
    return name.replace(QLatin1Char(' '), QLatin1Char('_'));
}

void toPercent(std::vector<Vector3>& factors)
{
    for (Vector3& factor : factors)
    {
        factor = PERCENT * factor;
    }
}

// An empty holder and a missing map mean true; a map without the key means false.
bool optionOf(std::any const& customData, QString const& key)
{
    if (!customData.has_value())
    {
        return true;
    }
    return std::any_cast<QMap<QString, QVariant> const&>(customData).value(key).toBool();
}

}

AE3DMotionExporter::AE3DMotionExporter(float version) : m_version(version)
{
}

AE3DMotionExporter::~AE3DMotionExporter() = default;

Korvane::ExportedFiles AE3DMotionExporter::exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                                             KV::ExportSpec const& spec, ObjectsToExport objects) const
{
    struct ViewsOfOneExport
    {
        std::vector<Anm::View>& views;
        ~ViewsOfOneExport()
        {
            views.clear();
        }
    } const guard{m_views};

    bool const includeFeatures = optionOf(spec.customData, UI().includeFeatures.key);
    prepareToExport(project, spec.layers, spec.views, spec.framesToExport, objects == SelectedObjects,
                    objects == VisibleObjects, includeFeatures);
    if (!cameraForExport())
    {
        throwOperationFailed("AfterEffects\\AE3DMotionExporter", __LINE__,
                             QStringLiteral("AfterEffects camera exporter: empty camera data in the export structure"),
                             tr("No 3D solution ready, please solve the scene first"));
    }

    AEExportBuilder builder(AEExportBuilder::AfterEffects);
    QStringList warnings = writeAll(builder, includeFeatures);

    warnings.prepend(warnInaccurateNulls());
    Korvane::ExportedFiles result =
        fileResult(path, builder.bytes(), static_cast<int>(builder.getErrorCount()), warnings);
    if (!project.pluginHost() || !project.pluginHost()->isAdobe())
    {
        result.notices.push_back(
            {QStringLiteral("DontShowAE3DTrackImportInfoMsg"), QStringLiteral("Marlo 3D Track Importer Plug-In for AE"),
             tr("Loading 3D Motion data in After Effects requires the %1 Adobe Plug-In to be installed.<p>If you do "
                "not have this Plug-In installed, please download it from <a href=\"%2\">%2</a>.")
                 .arg(Product::displayName(), QLatin1String(DOWNLOAD_PAGE))});
    }
    return result;
}

void AE3DMotionExporter::setUserOptions(KV::ExportOptionsReceiver& receiver) const
{
    KV::OptionTexts const texts = UI().includeFeatures;
    receiver.addBoolOption(texts.key, texts.label, texts.toolTip, true);
}

void AE3DMotionExporter::prepareToExport(KORV_ProjectManager& project,
                                         Korvane::CameraSolve::ExporterHelper::LayerChoice const& layers,
                                         std::vector<Anm::View> const& views, int framesToExport, bool selectedOnly,
                                         bool visibleOnly, bool includeFeatures) const
{
    m_project = &project;
    if (views.empty())
    {
        return;
    }
    m_views = views;
    Korvane::CameraSolve::ExporterHelper& solve = helper();
    solve.initialise(project, views.front(), layers, framesToExport, selectedOnly, visibleOnly, includeFeatures,
                     nullptr);
    solve.setHeightScale(solve.isInterlaced() ? 2.0F : 1.0F);
    solve.setFrameScale(solve.isInterlaced() ? 0.5F : 1.0F);
    solve.setFocalLengthExportUnits(Korvane::CameraSolve::ScaledMillimetres, POINTS_PER_MILLIMETRE);
    if (auto const camera = cameraForExport())
    {
        solve.setFocalDistanceFromCamera(*camera);
        solve.setFilmSize(static_cast<float>(camera->filmSize().staticValue(solve.view()) * POINTS_PER_MILLIMETRE));
    }
    // All positions are scaled by it, and the header can't leave it out.
    if (!isWritable(static_cast<double>(solve.focalDistance())))
    {
        throwOperationFailed("AfterEffects\\AE3DMotionExporter", __LINE__, QStringLiteral("prepareToExport"),
                             QStringLiteral("The focal length of the camera isn't finite in its first frame"));
    }
    // A scene unit at the distance 1 fills as many pixels as the focal length has.
    double const focalLength =
        solve.referenceFocalLength(Korvane::CameraSolve::ScaledMillimetres, POINTS_PER_MILLIMETRE);
    double const scale =
        static_cast<double>(solve.baseClipInfo()->width()) * focalLength / static_cast<double>(solve.filmSize());
    Matrix33 const toScreenAxes = Matrix33::diagonal(1.0, -1.0, -1.0);
    solve.setCoordinateTransform(toScreenAxes, toScreenAxes, scale, Korvane::CameraSolve::SceneApplied);
    solve.setRotateOrder(ROTATE_ORDER);
    processNulls(solve.layerIDsToExport(), &project, views);
}

Korvane::CameraSolve::ExporterHelper& AE3DMotionExporter::helper() const
{
    if (!m_helper)
    {
        m_helper = std::make_unique<Korvane::CameraSolve::ExporterHelper>();
    }
    return *m_helper;
}

ZN::Scene3DParameterSet& AE3DMotionExporter::scene3DData() const
{
    return m_project->scene3DParameters();
}

boost::shared_ptr<ZN::Camera3DParameterSet> AE3DMotionExporter::cameraForExport() const
{
    if (m_views.size() != 1)
    {
        return nullptr;
    }
    ZN::Scene3DParameterSet const& scene = scene3DData();
    if (scene.hasMonoCamera())
    {
        ZN::Camera3DParameterSet const* camera = scene.cameraParameters(static_cast<unsigned int>(m_views[0].id()));
        camera = camera ? camera : scene.cameraParameters(0);
        if (!camera)
        {
            return nullptr;
        }
        m_positionScale = 1.0;
        return boost::make_shared<ZN::Camera3DParameterSet>(*camera);
    }
    if (scene.hasStereoCamera())
    {
        m_positionScale = METRES_TO_CENTIMETRES;
        return scene.stereoCameraParameters(0)->buildViewCamera(m_views[0]);
    }
    return nullptr;
}

/// Writes one export: first the names of all nulls, then their documents in the same order.
class AE3DMotionExporter::SceneWriter
{
public:
    SceneWriter(AE3DMotionExporter const& exporter, AEExportBuilder& builder, bool includeFeatures)
        : m_exporter(exporter),
          m_builder(builder),
          m_solve(exporter.helper()),
          m_project(*exporter.m_project),
          m_scene(exporter.scene3DData()),
          m_hierarchy(exporter.m_version >= FIRST_VERSION_WITH_HIERARCHY),
          m_withFeatures(includeFeatures && !exporter.helper().isOldSolveData())
    {
    }

    void write()
    {
        listNulls();
        CameraAnimData camera;
        auto const parameters = m_exporter.cameraForExport();
        if (parameters)
        {
            camera = m_solve.cameraAnimData(*parameters);
            if (!camera.focalLengths.empty())
            {
                m_solve.setFocalDistance(camera.focalLengths.front());
            }
        }
        constexpr int ROWS_OF_A_NULL = 24;
        m_builder.reserveRows(static_cast<int>(m_nulls.size()) * ROWS_OF_A_NULL +
                              static_cast<int>(camera.contexts.size()) * 5);
        m_builder.addExport3DHeader(m_solve.filmSize(), m_solve.focalDistance(), m_nulls, m_exporter.m_version);
        if (parameters)
        {
            writeBlock(camera.contexts, camera.positions, camera.rotations, {}, camera.focalLengths,
                       camera.focalIsAnimated);
            ZN_BaseClipInfo const& clip = *m_solve.baseClipInfo();
            double const width = clip.width() * clip.format().par();
            m_digits.emplace(camera, width / static_cast<double>(m_solve.filmSize()), width,
                             static_cast<double>(static_cast<float>(clip.height()) * m_solve.heightScale()),
                             m_exporter.m_positionScale, m_nulls.size());
        }
        m_done.clear();
        writeLayers();
        m_solve.clearParamData();
        writeFeatures();
        writeAssets();
    }

    /// What the user must know of what was written.
    QStringList warnings() const
    {
        constexpr double VISIBLE_PIXELS = 0.1;
        QStringList list;
        if (!m_clashes.isEmpty())
        {
            list += tr("Several nulls have one name: %1. What hangs on a null is tied to it by its name, so rename the "
                       "layers, groups or points.")
                        .arg(listed(m_clashes));
        }
        if (!m_strayModels.isEmpty())
        {
            list += tr("These models stand where they would if their layers were at the origin, as this format has no "
                       "hierarchy: %1")
                        .arg(listed(m_strayModels));
        }
        if (m_digits && m_digits->mostPixels() > VISIBLE_PIXELS)
        {
            list +=
                tr("The six digits of this format put points up to %1 pixels off. Bring the origin of the scene near "
                   "to its points.")
                    .arg(Text::fixedText(m_digits->mostPixels(), 2));
        }
        return list;
    }

private:
    using Layer = boost::shared_ptr<KORV_Layer>;
    using Carrier = SolveDigits::Carrier;

    // The nulls, in the order of their documents.

    void listNulls()
    {
        for (unsigned int const id : m_solve.layerIDsToExport())
        {
            Layer const layer = m_project.sm()->findLayer(id, false);
            std::vector<unsigned int> const points = pointsOf(layer);
            if (!points.empty())
            {
                listPoints(points, m_hierarchy ? layerNullName(*layer) : QString());
            }
        }
        if (m_withFeatures)
        {
            for (auto const& features : m_scene.features())
            {
                std::vector<unsigned int> const points = pointsOf(*features);
                if (!points.empty())
                {
                    listPoints(points, m_hierarchy ? featureParent(*features) : QString());
                }
            }
        }
        for (auto const& asset : m_scene.fileAssets())
        {
            Korvane::LayerBase const* const layer = m_hierarchy ? parentOf(*asset) : nullptr;
            QString const parent = layer ? layerNullName(*layer) : QString();
            m_nulls.push_back({QFileInfo(asset->path()).baseName(), parent, false});
        }
        noteClashes();
    }

    // Names of what others hang on that something else has, too.
    void noteClashes()
    {
        for (AEExportBuilder::NullHeaderInfo const& null : m_nulls)
        {
            auto const owners = m_parents.find(null.name);
            bool const isTaken = owners != m_parents.end() && (!null.isParent || owners->second.size() > 1);
            if (isTaken && !m_clashes.contains(null.name))
            {
                m_clashes += null.name;
            }
        }
    }

    void listParent(QString const& name, QString const& parent, void const* owner)
    {
        m_nulls.push_back({name, parent, true});
        m_parents[name].insert(owner);
    }

    void listPoints(std::vector<unsigned int> const& points, QString const& parent)
    {
        for (unsigned int const point : points)
        {
            m_nulls.push_back({m_solve.pointName(point, &m_exporter), parent, false});
        }
    }

    QString featureParent(ZN::Features3DParameterSet const& features)
    {
        if (Korvane::LayerBase const* const layer = parentOf(features))
        {
            return layerNullName(*layer);
        }
        QString const root = tr("Static_auto_features");
        listParent(root, QString(), &m_scene.staticFeatureRoot());
        return root;
    }

    // The name of a layer's null; lists it, and that of its group ahead of it, when they are
    // new.
    QString layerNullName(Korvane::LayerBase const& layer)
    {
        QString const name = withoutBlanks(layer.name());
        if (!m_done.insert(&layer).second)
        {
            return name;
        }
        QString parent;
        if (Korvane::LayerGroup const* const group = carrierOf(layer))
        {
            parent = withoutBlanks(group->name());
            if (m_done.insert(group).second)
            {
                listParent(parent, QString(), group);
            }
        }
        listParent(name, parent, &layer);
        return name;
    }

    // Their documents.

    void writeLayers()
    {
        for (unsigned int const id : m_solve.layerIDsToExport())
        {
            Layer const layer = m_project.sm()->findLayer(id, false);
            std::vector<unsigned int> const points = pointsOf(layer);
            if (points.empty())
            {
                continue;
            }
            writePoints(points, m_hierarchy ? writeLayerNullBlocks(*layer) : Carrier());
        }
    }

    void writeFeatures()
    {
        if (!m_withFeatures)
        {
            return;
        }
        for (auto const& features : m_scene.features())
        {
            std::vector<unsigned int> const points = pointsOf(*features);
            if (points.empty())
            {
                continue;
            }
            Carrier carrier;
            if (m_hierarchy)
            {
                Korvane::LayerBase const* const layer = parentOf(*features);
                carrier =
                    layer ? writeLayerNullBlocks(*layer) : writeObject(m_scene.staticFeatureRoot(), true, Carrier());
            }
            writePoints(points, carrier);
        }
        m_solve.clearParamData();
    }

    // Assets don't move: a single row each.
    void writeAssets()
    {
        for (auto const& asset : m_scene.fileAssets())
        {
            // A layer that has no points of its own is named for its asset only.
            Korvane::LayerBase const* const layer = parentOf(*asset);
            if (layer && m_hierarchy)
            {
                writeLayerNullBlocks(*layer);
            }
            if (layer && !m_hierarchy && !isAtOrigin(*layer))
            {
                m_strayModels += QFileInfo(asset->path()).baseName();
            }
            PointAnimData data = m_solve.collectPointData(asset->points(), true, false);
            toPercent(data.scales);
            writeBlock({Anm::Context(Anm::Time::fromDouble(0.0), Anm::View::defaultView())}, {data.positions.at(0)},
                       {data.rotations.at(0)}, {data.scales.at(0)}, {}, false);
        }
    }

    // Writes the null of a layer, and that of its group ahead of it, when they are new.
    Carrier const& writeLayerNullBlocks(Korvane::LayerBase const& layer)
    {
        if (m_done.insert(&layer).second)
        {
            Korvane::LayerGroup const* const group = carrierOf(layer);
            if (group && m_done.insert(group).second)
            {
                m_carriers[group] = writeObject(group->points(), true, Carrier());
            }
            m_carriers[&layer] = writeObject(layer.points(), !group, group ? m_carriers[group] : Carrier());
        }
        return m_carriers[&layer];
    }

    Carrier writeObject(ZN::Point3DParameterSet const& object, bool worldSpace, Carrier const& parent)
    {
        PointAnimData data = m_solve.collectPointData(object, worldSpace, false);
        toPercent(data.scales);
        writeBlock(data.contexts, data.positions, data.rotations, data.scales, {}, false);
        return m_digits ? m_digits->carrier(data, parent) : Carrier();
    }

    void writePoints(std::vector<unsigned int> const& points, Carrier const& parent)
    {
        for (unsigned int const point : points)
        {
            PointAnimData const data = m_solve.pointAnimData(point);
            if (!data.contexts.empty())
            {
                writeBlock(data.contexts, data.positions, data.rotations, data.scales, {}, false);
                if (m_digits)
                {
                    m_digits->measure(data, parent);
                }
            }
        }
    }

    // One document.
    void writeBlock(std::vector<Anm::Context> const& contexts, std::vector<Vector3> const& positions,
                    std::vector<Vector3> const& rotations, std::vector<Vector3> const& scales,
                    std::vector<float> const& focalLengths, bool focalIsAnimated)
    {
        writeHeader();
        m_builder.addLine(QString());
        writePosition(contexts, positions);
        writeRotation(QStringLiteral("Transform\tX Rotation"), contexts, rotations, &Vector3::x);
        writeRotation(QStringLiteral("Transform\tY Rotation"), contexts, rotations, &Vector3::y);
        writeRotation(QStringLiteral("Transform\tRotation"), contexts, rotations, &Vector3::z);
        if (!scales.empty())
        {
            writeScale(contexts, scales);
        }
        if (!focalLengths.empty())
        {
            writeCameraZoom(contexts, focalLengths, focalIsAnimated);
        }
        m_builder.addExportFooter();
    }

    void writeHeader()
    {
        ZN_BaseClipInfo const& clip = *m_solve.baseClipInfo();
        double const pixelAspect = clip.format().par();
        m_builder.addExportHeader(
            static_cast<float>(m_project.frameRate()), static_cast<unsigned int>(clip.width() * pixelAspect),
            static_cast<unsigned int>(static_cast<float>(clip.height()) * m_solve.heightScale()), pixelAspect);
    }

    void writePosition(std::vector<Anm::Context> const& contexts, std::vector<Vector3> const& positions)
    {
        static QStringList const columns{"X pixels", "Y pixels", "Z pixels"};
        m_builder.addParamHeader(QStringLiteral("Transform\tPosition"), columns);
        for (std::size_t i = 0; i < contexts.size(); ++i)
        {
            Vector3 const p = m_exporter.m_positionScale * positions.at(i);
            m_builder.addValues(frameNumberToExport(contexts[i]), {p.x, p.y, p.z});
        }
    }

    void writeRotation(QString const& parameter, std::vector<Anm::Context> const& contexts,
                       std::vector<Vector3> const& rotations, double Vector3::*axis)
    {
        static QStringList const columns{"degrees"};
        m_builder.addParamHeader(parameter, columns);
        for (std::size_t i = 0; i < contexts.size(); ++i)
        {
            m_builder.addValues(frameNumberToExport(contexts[i]), {rotations.at(i).*axis});
        }
    }

    void writeScale(std::vector<Anm::Context> const& contexts, std::vector<Vector3> const& scales)
    {
        static QStringList const columns{"X percent", "Y percent", "Z percent"};
        m_builder.addParamHeader(QStringLiteral("Transform\tScale"), columns);
        for (std::size_t i = 0; i < contexts.size(); ++i)
        {
            Vector3 const& s = scales.at(i);
            m_builder.addValues(frameNumberToExport(contexts[i]), {s.x, s.y, s.z});
        }
    }

    // A focal length that stays is in the header alone.
    void writeCameraZoom(std::vector<Anm::Context> const& contexts, std::vector<float> const& focalLengths,
                         bool animated)
    {
        if (!animated && !m_solve.isOldSolveData())
        {
            return;
        }
        static QStringList const columns{"pixels"};
        m_builder.addParamHeader(QStringLiteral("Camera Options\tZoom"), columns);
        for (std::size_t i = 0; i < contexts.size(); ++i)
        {
            m_builder.addValues(frameNumberToExport(contexts[i]), {static_cast<double>(focalLengths.at(i))});
        }
    }

    // Counts from the playback in point.
    float frameNumberToExport(Anm::Context const& context) const
    {
        Anm::Time const time = context - static_cast<int>(m_project.playbackInPoint(false));
        return static_cast<float>(time.value()) * m_solve.frameScale();
    }

    // What both walks ask.

    std::vector<unsigned int> pointsOf(Layer const& layer)
    {
        m_solve.setCurrentLayer(layer, Anm::Context::invalid(), !m_hierarchy);
        return m_solve.pointIDsToExport(std::nullopt, false);
    }

    std::vector<unsigned int> pointsOf(ZN::Features3DParameterSet const& features)
    {
        m_solve.setCurrentFeatureSet(features, !m_hierarchy);
        return m_solve.pointIDsToExport(std::nullopt, false);
    }

    template <typename Carried>
    Korvane::LayerBase const* parentOf(Carried const& carried) const
    {
        return carried.parentID().isEmpty() ? nullptr : m_project.sm()->layerFromID(carried.parentID()).get();
    }

    // Whether what is relative to the layer is so to the scene.
    bool isAtOrigin(Korvane::LayerBase const& layer) const
    {
        PointAnimData const data = m_solve.collectPointData(layer.points(), true, false);
        auto const areAll = [](std::vector<Vector3> const& samples, double value)
        {
            return std::all_of(samples.begin(), samples.end(),
                               [=](Vector3 const& v) { return v.x == value && v.y == value && v.z == value; });
        };
        return areAll(data.positions, 0.0) && areAll(data.rotations, 0.0) && areAll(data.scales, 1.0);
    }

    static QString listed(QStringList const& names)
    {
        constexpr int MOST_NAMES = 10;
        QString const text = names.mid(0, MOST_NAMES).join(QStringLiteral(", "));
        return names.size() <= MOST_NAMES ? text : text + QStringLiteral(", ...");
    }

    static Korvane::LayerGroup const* carrierOf(Korvane::LayerBase const& layer)
    {
        return layer.isMoving() ? layer.parentGroup(false) : nullptr;
    }

    AE3DMotionExporter const& m_exporter;
    AEExportBuilder& m_builder;
    Korvane::CameraSolve::ExporterHelper& m_solve;
    KORV_ProjectManager& m_project;
    ZN::Scene3DParameterSet const& m_scene;
    bool m_hierarchy;
    bool m_withFeatures;
    std::vector<AEExportBuilder::NullHeaderInfo> m_nulls;

    /// Layers and groups that the running walk has been to.
    std::set<Korvane::LayerBase const*> m_done;

    /// What bears a name that others give as their parent's.
    std::map<QString, std::set<void const*>> m_parents;
    QStringList m_clashes;
    QStringList m_strayModels;

    /// Set once the camera was written.
    std::optional<SolveDigits> m_digits;
    std::map<Korvane::LayerBase const*, Carrier> m_carriers;
};

QStringList AE3DMotionExporter::writeAll(AEExportBuilder& builder, bool includeFeatures) const
{
    if (!m_project || !m_project->sm())
    {
        return {};
    }
    SceneWriter writer(*this, builder, includeFeatures);
    writer.write();
    return writer.warnings();
}

}
