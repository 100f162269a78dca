#include "Core/ExporterWrapper.h"
#include "Core/ExporterFactories.h"
#include "CoreFixtures.h"
#include "Host/Product.h"
#include "marlohost/Services.h"

#include <boost/make_shared.hpp>

using namespace Export;
using namespace CoreTest;

namespace
{

using Project = boost::shared_ptr<KORV_ProjectManager>;

/// What the check says: "" when the export is possible.
QString reasonAgainst(ExporterWrapper const& wrapper, KORV_ProjectManager& project)
{
    auto const [possible, reason] = wrapper.isExportPossible(project);
    EXPECT_EQ(possible, !reason);
    return QString::fromUtf8(reason.value_or(""));
}

TrackingExporterWrapper tracking(std::shared_ptr<FakeTrackingExporter> const& exporter, LayerSelection const& selection,
                                 UserTrackingOptions options = {})
{
    options.layerSelection = selection;
    return TrackingExporterWrapper(exporter, options, false, "Fake Tracks");
}

ShapeDataFormat shapeFormat()
{
    static ShapeDataFormat const format("Fake Shapes", "fake_shapes", ".txt", "", "", {}, false, SaveToFile);
    return format;
}

ShapeExporterWrapper shape(LayerSelection const& selection, std::shared_ptr<Korvane::ShapeExporter> const& exporter,
                           bool hostPresent = false)
{
    return ShapeExporterWrapper({selection, {Anm::View::defaultView()}}, shapeFormat(), hostPresent, exporter);
}

/// The factory offers an exporter of the fake shape format while one lives.
class RegisteredShapes
{
public:
    explicit RegisteredShapes(std::shared_ptr<Korvane::ShapeExporter> const& exporter)
    {
        ShapeExporterFactory::registerCustomExporter(shapeFormat(), exporter);
    }
    ~RegisteredShapes()
    {
        ShapeExporterFactory::unregisterExporter(shapeFormat());
    }
    RegisteredShapes(RegisteredShapes const&) = delete;
    RegisteredShapes& operator=(RegisteredShapes const&) = delete;
};

/// A hidden layer, and one in a hidden group.
Project hiddenProject(QString const& current = QString())
{
    MarloHost::LayerModel hidden = layer("hidden");
    hidden.hidden = true;
    MarloHost::LayerModel grouped = layer("grouped");
    grouped.group = "group";
    MarloHost::ProjectModel model = projectOf({hidden, grouped}, current);
    model.groups.push_back({"group", "", true, false, false});
    return MarloHost::makeProject(model);
}

TEST(ExporterWrapper, TracksAndShapesNeedTheLayersThatWereAskedFor)
{
    Project const empty = MarloHost::makeProject(projectOf({}));
    Project const hidden = hiddenProject();
    Project const current = hiddenProject("hidden");
    Project const visible = MarloHost::makeProject(projectOf({layer("plane")}));
    QString const noSuchLayer = "Layer with specified name does not exist in this project.";
    struct
    {
        Project project;
        LayerSelection selection;
        QString reason;
    } const cases[] = {
        {empty, {ZN::SelectedLayer, ""}, "No selected layer"},
        {hidden, {ZN::SelectedLayer, ""}, "No selected layer"},
        {current, {ZN::SelectedLayer, "stale"}, ""},
        {empty, {ZN::VisibleLayers, ""}, "No visible layers"},
        {hidden, {ZN::VisibleLayers, ""}, "No visible layers"},
        {visible, {ZN::VisibleLayers, ""}, ""},
        {empty, {ZN::AllLayers, ""}, "No layers"},
        {hidden, {ZN::AllLayers, ""}, ""},
        {hidden, {ZN::SpecifiedLayer, "grouped"}, ""},
        {hidden, {ZN::SpecifiedLayer, "group"}, noSuchLayer},
        {hidden, {ZN::SpecifiedLayer, "renamed"}, noSuchLayer},
    };
    for (auto const& testCase : cases)
    {
        EXPECT_EQ(reasonAgainst(tracking(nullptr, testCase.selection), *testCase.project), testCase.reason)
            << "case " << &testCase - cases;
        EXPECT_EQ(reasonAgainst(shape(testCase.selection, nullptr), *testCase.project), testCase.reason)
            << "case " << &testCase - cases;
    }
}

TEST(ExporterWrapper, ShapesOfVeilContoursAreRefused)
{
    MarloHost::LayerModel plain = layer("plain");
    plain.contours = {veiledContour({}), veiledContour({"right"})};
    MarloHost::LayerModel veiled = layer("veiled");
    veiled.contours = {veiledContour({}), veiledContour({"main"})};
    MarloHost::ProjectModel model = projectOf({plain, veiled}, "plain");
    model.views = QStringList{"main", "right"};
    Project const project = MarloHost::makeProject(model);
    QString const refusal = "Exporting shape data from layers with Veil ML contours is not supported.";

    EXPECT_EQ(reasonAgainst(shape({ZN::SelectedLayer, ""}, nullptr), *project), QString());
    EXPECT_EQ(reasonAgainst(shape({ZN::SpecifiedLayer, "plain"}, nullptr), *project), QString());
    EXPECT_EQ(reasonAgainst(shape({ZN::SpecifiedLayer, "veiled"}, nullptr), *project), refusal);
    EXPECT_EQ(reasonAgainst(shape({ZN::AllLayers, ""}, nullptr), *project), refusal);
    MarloHost::setCurrentLayer(*project, 2);
    EXPECT_EQ(reasonAgainst(shape({ZN::SelectedLayer, ""}, nullptr), *project), refusal);
    ShapeExporterWrapper const bothViews({{ZN::SpecifiedLayer, "plain"}, {Anm::View(0), Anm::View(1)}}, shapeFormat(),
                                         false, nullptr);
    EXPECT_EQ(reasonAgainst(bothViews, *project), refusal);
    // No view means the default one, also for who is refused.
    ShapeExporterWrapper const withoutViews({{ZN::AllLayers, ""}, {}}, shapeFormat(), false, nullptr);
    EXPECT_EQ(reasonAgainst(withoutViews, *project), refusal);
    ShapeExporterWrapper const plainWithoutViews({{ZN::SpecifiedLayer, "plain"}, {}}, shapeFormat(), false, nullptr);
    EXPECT_EQ(reasonAgainst(plainWithoutViews, *project), QString());
}

TEST(ExporterWrapper, CamerasMustBeSolvedAndCalibrationClipsKnown)
{
    Project const project = MarloHost::makeProject(projectOf({layer("plane")}));
    EXPECT_EQ(reasonAgainst(CameraSolveExporterWrapper({}, false, "Camera", nullptr), *project),
              QString("No camera data."));
    EXPECT_EQ(reasonAgainst(LensExporterWrapper(1, {}, "Lens", nullptr), *project), QString());
    EXPECT_EQ(reasonAgainst(LensExporterWrapper(77, {}, "Lens", nullptr), *project),
              QString("Invalid calibration clip"));
}

TEST(ExporterWrapper, TracksGetTheUsersOptions)
{
    auto const exporter = std::make_shared<FakeTrackingExporter>();
    MarloHost::LayerModel top = layer("top");
    top.referenceFrame = 12;
    Project const project = MarloHost::makeProject(projectOf({top, layer("twin"), layer("twin")}, "top"));
    UserTrackingOptions options;
    options.trackingOption = ZN_TRACKING_OPTION_OFFSET;
    options.undistort = true;
    options.referenceFrame = Anm::Context(Anm::Time::fromInt(0), Anm::View::defaultView());
    options.viewsToExport = {Anm::View(5), Anm::View(6)};

    auto const result = tracking(exporter, {ZN::SpecifiedLayer, "twin"}, options).getExportResult(*project, "a.txt");
    EXPECT_EQ(result.files, (QMap<QString, QByteArray>{{"a.txt", "tracks"}}));
    EXPECT_EQ(exporter->layerId, 2u);
    EXPECT_EQ(exporter->referenceFrame, options.referenceFrame);
    EXPECT_EQ(exporter->options.trackingOption, ZN_TRACKING_OPTION_OFFSET);
    EXPECT_EQ(exporter->options.layerExportMode, ZN::SpecifiedLayer);
    EXPECT_EQ(exporter->options.views, options.viewsToExport);
    EXPECT_TRUE(exporter->options.undistort && !exporter->options.invert);
    EXPECT_EQ(exporter->options.viewMode, 1);
}

TEST(ExporterWrapper, TracksWithoutAReferenceFrameTakeASuitableOne)
{
    auto const exporter = std::make_shared<FakeTrackingExporter>();
    MarloHost::LayerModel plane = layer("plane");
    plane.referenceFrame = 12;
    Project const project = MarloHost::makeProject(projectOf({layer("top"), plane}, "plane"));
    TrackingExporterWrapper const wrapper = tracking(exporter, {ZN::AllLayers, "top"});
    wrapper.getExportResult(*project, "a.txt");
    EXPECT_EQ(exporter->referenceFrame.frameValue(), 12);
    EXPECT_EQ(exporter->layerId, 2u);
    EXPECT_EQ(wrapper.formatDisplayName(), QString("Fake Tracks"));
}

TEST(ExporterWrapper, ALayerThatIsGoneEndsTheExport)
{
    Project const project = MarloHost::makeProject(projectOf({layer("plane")}, "plane"));
    QString const text = "Layer with specified name does not exist in this project.";
    LayerSelection const gone = {ZN::SpecifiedLayer, "gone"};
    EXPECT_EQ(thrown<std::runtime_error>(
                  [&] { tracking(std::make_shared<FakeTrackingExporter>(), gone).getExportResult(*project, "a"); }),
              text);
    EXPECT_EQ(thrown<std::runtime_error>([&] { shape(gone, nullptr).getExportResult(*project, "a"); }), text);
}

TEST(ExporterWrapper, ShapeErrorsBecomeMessages)
{
    QString const error = Korvane::ShapeExporter::ERROR_FILENAME;
    auto const exporter = std::make_shared<FakeShapeExporter>(
        QMap<QString, QByteArray>{{"one.txt", "1"}, {error, "%1 \xc3\xa4"}, {"two.txt", "2"}});
    RegisteredShapes const registered(exporter);
    Project const project = MarloHost::makeProject(projectOf({layer("top"), layer("plane")}, "plane"));

    auto const result = shape({ZN::VisibleLayers, ""}, nullptr).getExportResult(*project, "50%2.txt");
    EXPECT_EQ(result.files, (QMap<QString, QByteArray>{{"one.txt", "1"}, {"two.txt", "2"}}));
    EXPECT_EQ(result.messages, QStringList(QString::fromUtf8("50%2.txt: %1 \xc3\xa4")));
    EXPECT_EQ(result.failedCount, 1);
    EXPECT_EQ(exporter->layerIds, QList<unsigned int>{2});
    EXPECT_EQ(exporter->options.layerExportMode, ZN::VisibleLayers);
    EXPECT_EQ(exporter->options.productName, Product::name());
    EXPECT_EQ(exporter->options.productVersion, Product::longVersion());
    EXPECT_EQ(exporter->options.views, std::vector<Anm::View>{Anm::View::defaultView()});
}

TEST(ExporterWrapper, AShapeErrorWithoutWordsIsOnlyCounted)
{
    RegisteredShapes const registered(
        std::make_shared<FakeShapeExporter>(QMap<QString, QByteArray>{{Korvane::ShapeExporter::ERROR_FILENAME, ""}}));
    Project const project = MarloHost::makeProject(projectOf({layer("plane")}, "plane"));
    auto const result = shape({}, nullptr).getExportResult(*project, "a");
    EXPECT_EQ(result.failedCount, 1);
    EXPECT_TRUE(result.messages.isEmpty() && result.files.isEmpty());
}

TEST(ExporterWrapper, ShapesAreExportedByWhatTheFactoryHasNow)
{
    Project const project = MarloHost::makeProject(projectOf({layer("plane")}, "plane"));
    ShapeExporterWrapper const wrapper = shape({}, std::make_shared<FakeShapeExporter>());
    EXPECT_EQ(thrown<KORV_BadArgument>([&] { wrapper.getExportResult(*project, "a"); }),
              QString("Invalid export format"));
    RegisteredShapes const registered(std::make_shared<FakeShapeExporter>(QMap<QString, QByteArray>{{"a", "1"}}));
    EXPECT_EQ(wrapper.getExportResult(*project, "a").files.size(), 1);
}

TEST(ExporterWrapper, CamerasAreExportedInTheDefaultView)
{
    MarloHost::ProjectModel model = projectOf({layer("plane")});
    model.views = QStringList{"left", "right"};
    model.currentView = "right";
    Project const project = MarloHost::makeProject(model, "/shots/sh.010.json");
    auto const exporter = std::make_shared<FakeCameraSolveExporter>();
    UserCameraSolveOptions const options = {KV::CameraSolveExporter::VisibleObjects, std::string("data")};
    CameraSolveExporterWrapper const wrapper(options, false, "Camera", exporter);

    auto const result = wrapper.getExportResult(*project, "a.fbx");
    EXPECT_EQ(exporter->spec.layers.index(), 3u);
    EXPECT_EQ(exporter->context, Anm::Context(Anm::Time::fromInt(7), Anm::View::defaultView()));
    EXPECT_EQ(exporter->spec.views, std::vector<Anm::View>{Anm::View::defaultView()});
    EXPECT_EQ(std::any_cast<std::string>(exporter->spec.customData), "data");
    EXPECT_EQ(exporter->objects, KV::CameraSolveExporter::VisibleObjects);
    EXPECT_EQ(result.files, (QMap<QString, QByteArray>{{"a.fbx", "camera"}}));
    EXPECT_EQ(result.messages, QStringList("one"));
    EXPECT_EQ(result.notices.size(), 1u);
    EXPECT_EQ(result.failedCount, 2);

    EXPECT_EQ(wrapper.filenameSuggestion(*project), QString("sh.010"));
    MarloHost::setCurrentLayer(*project, 1);
    EXPECT_EQ(CameraSolveExporterWrapper(options, true, "Camera", exporter).filenameSuggestion(*project),
              QString("plane"));
}

class FakeLensExporter : public LensExporter
{
public:
    QString getExportedData(KORV_ProjectManager&, unsigned int clipId, std::any userData) const override
    {
        return QString::fromUtf8("\xc3\xa4 %1 %2").arg(clipId).arg(std::any_cast<int>(userData));
    }
};

TEST(ExporterWrapper, LensTextIsStoredAsUtf8)
{
    Project const project = MarloHost::makeProject(projectOf({layer("plane")}, "plane"), "/shots/sh010.json");
    LensExporterWrapper const wrapper(3, 4, "Lens", boost::make_shared<FakeLensExporter>());
    auto const result = wrapper.getExportResult(*project, "a.lens");
    EXPECT_EQ(result.files, (QMap<QString, QByteArray>{{"a.lens", "\xc3\xa4 3 4"}}));
    EXPECT_EQ(wrapper.filenameSuggestion(*project), QString("sh010"));
}

// A shape format may do it in a way of its own, see FakeShapeExporter.
TEST(ExporterWrapper, TheTextReachesTheClipboard)
{
    std::shared_ptr<ExporterWrapper> const wrappers[] = {
        std::make_shared<TrackingExporterWrapper>(std::make_shared<FakeTrackingExporter>(), UserTrackingOptions(),
                                                  false, "Tracks"),
        std::make_shared<CameraSolveExporterWrapper>(UserCameraSolveOptions(), false, "Camera",
                                                     std::make_shared<FakeCameraSolveExporter>()),
        std::make_shared<LensExporterWrapper>(1, std::any(), "Lens", boost::make_shared<FakeLensExporter>()),
    };
    for (auto const& wrapper : wrappers)
    {
        MarloHost::MemoryClipboard clipboard;
        wrapper->setClipboardText(clipboard, "text");
        EXPECT_EQ(clipboard.text(), QString("text")) << wrapper->formatDisplayName().toStdString();
    }
}

}
