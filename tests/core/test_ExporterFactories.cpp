#include "Core/ExporterFactories.h"
#include "Core/formats/ExporterMap.h"
#include "CoreFixtures.h"

using namespace Export;
using namespace CoreTest;

namespace
{

using T = TrackingDataFormat;

/// A format that no table has, in no category.
T customTracking(QString const& displayName, QString const& internalName)
{
    return T(displayName, internalName, ".txt", "", {}, {}, false, 1, SaveToFile);
}

ShapeDataFormat customShape(QString const& displayName)
{
    return ShapeDataFormat(displayName, "custom_shape", ".txt", "", "", {}, false, SaveToFile);
}

CameraSolveFormat customCamera(QString const& displayName)
{
    return CameraSolveFormat(displayName, "custom_camera", ".txt", "", "", 1, {}, SaveToFile, false);
}

QStringList offeredNames(TXIHost const* host)
{
    QStringList names;
    TrackingExporterFactory::forEachFormat([&names](T const& format) { names.append(format.displayName()); }, host);
    return names;
}

TEST(ExporterFactories, OneExporterServesAllCallsOfAFormat)
{
    auto const exporter = TrackingExporterFactory::getExporter(T::AE_TRANSFORM());
    ASSERT_TRUE(exporter);
    EXPECT_EQ(exporter, TrackingExporterFactory::getExporter(T::AE_TRANSFORM()));
    auto const project = MarloHost::makeProject(projectOf({}));
    EXPECT_EQ(exporter, TrackingExporterFactory::getExporter(T::byName(*project, "after_effects_transform"), *project));
}

TEST(ExporterFactories, UnknownFormatsAndNoExporterAreRefusedWithTheirTexts)
{
    using Tracking = TrackingExporterFactory;
    using Shape = ShapeExporterFactory;
    using Camera = CameraSolveExporterFactory;
    auto const project = MarloHost::makeProject(projectOf({}));
    T const tracking = customTracking("Nobody's", "nobodys");
    ShapeDataFormat const shape = customShape("Nobody's");
    CameraSolveFormat const camera = customCamera("Nobody's");
    struct
    {
        std::function<void()> call;
        QString text;
    } const cases[] = {
        {[&] { Tracking::registerCustomExporter(tracking, nullptr); }, "There is no exporter to register"},
        {[&] { Shape::registerCustomExporter(shape, nullptr); }, "There is no exporter to register"},
        {[&] { Camera::registerCustomExporter(camera, nullptr); }, "There is no exporter to register"},
        {[&] { Tracking::getExporter(tracking); }, "Invalid export format"},
        {[&] { Tracking::getExporter(tracking, *project); }, "Invalid export format"},
        {[&] { Tracking::unregisterExporter(tracking); }, "Invalid tracking data format"},
        {[&] { T::byName(*project, "nobodys"); }, "Invalid export format name"},
        {[&] { Shape::getExporter(shape); }, "Invalid export format"},
        {[&] { Shape::getExporter(shape, *project); }, "Invalid export format"},
        {[&] { Shape::unregisterExporter(shape); }, "Invalid shape data format"},
        {[&] { ShapeDataFormat::byName(*project, "nobodys"); }, "Invalid export format name"},
        {[&] { Camera::getExporter(camera); }, "Invalid export format"},
        {[&] { Camera::unregisterExporter(camera); }, "Invalid camera solve format"},
    };
    for (auto const& testCase : cases)
    {
        EXPECT_EQ(thrown<KORV_BadArgument>(testCase.call), testCase.text);
    }
}

TEST(ExporterFactories, CustomFormatsAreToldApartByDisplayName)
{
    auto const exporter = std::make_shared<FakeTrackingExporter>();
    T const custom = customTracking("Zz %1", "after_effects_transform");
    TrackingExporterFactory::registerCustomExporter(custom, exporter);
    EXPECT_EQ(TrackingExporterFactory::getExporter(custom), exporter);
    for (QString const& taken : {QString("Zz %1"), QString("After Effects Corner Pin")})
    {
        EXPECT_EQ(thrown<KORV_BadArgument>(
                      [&]
                      { TrackingExporterFactory::registerCustomExporter(customTracking(taken, "other"), exporter); }),
                  "Format with '" + taken + "' name already has been registered");
    }

    // Both have the internal name; the later display name is found.
    auto const project = MarloHost::makeProject(projectOf({}));
    EXPECT_EQ(T::byName(*project, "after_effects_transform").displayName(), QString("Zz %1"));
    TrackingExporterFactory::unregisterExporter(custom);
    EXPECT_EQ(T::byName(*project, "after_effects_transform").displayName(), QString("After Effects Transform Data"));
}

TEST(ExporterFactories, CameraSolveFormatsByName)
{
    using Factory = CameraSolveExporterFactory;
    CameraSolveFormat const format = customCamera("Custom Camera");
    Factory::registerCustomExporter(format, std::make_shared<FakeCameraSolveExporter>());
    EXPECT_TRUE(Factory::isRegistered(format));
    ASSERT_TRUE(Factory::formatByName("custom_camera"));
    EXPECT_EQ(Factory::formatByName("custom_camera")->displayName(), QString("Custom Camera"));
    EXPECT_TRUE(CameraSolveFormat::MAP_ALL().contains("custom_camera"));
    auto const again = std::make_shared<FakeCameraSolveExporter>();
    EXPECT_FALSE(thrown<KORV_BadArgument>([&] { Factory::registerCustomExporter(format, again); }).isEmpty());
    Factory::unregisterExporter(format);
    EXPECT_FALSE(Factory::isRegistered(format));
    EXPECT_FALSE(Factory::formatByName("custom_camera"));
}

TEST(ExporterFactories, CallbacksMayChangeTheFactory)
{
    auto const exporter = std::make_shared<FakeShapeExporter>();
    ShapeDataFormat const first = customShape("Custom Shape A");
    ShapeDataFormat const second = customShape("Custom Shape B");
    ShapeExporterFactory::registerCustomExporter(first, exporter);
    ShapeExporterFactory::registerCustomExporter(second, exporter);
    QStringList names;
    ShapeExporterFactory::forEachFormat(
        [&](ShapeDataFormat const& format)
        {
            names.append(format.displayName());
            if (format.displayName() == "Custom Shape A")
            {
                EXPECT_EQ(ShapeExporterFactory::getExporter(second), exporter);
                ShapeExporterFactory::unregisterExporter(second);
            }
        },
        nullptr);
    ShapeExporterFactory::unregisterExporter(first);
    EXPECT_TRUE(names.contains("Custom Shape B"));
    EXPECT_FALSE(ShapeDataFormat::MAP_ALL(nullptr).contains("custom_shape"));
}

void expectNothingForARefusingHost()
{
    auto const project = projectInHost({});
    // First, so that it is the call that asks the host.
    EXPECT_THROW(TrackingExporterFactory::getExporter(T::AE_TRANSFORM(), *project), KORV_BadArgument);
    EXPECT_THROW(ShapeExporterFactory::getExporter(ShapeDataFormat::AE_MARLO_SHAPE(), *project), KORV_BadArgument);
    EXPECT_THROW(T::byName(*project, "after_effects_transform"), KORV_BadArgument);
    EXPECT_THROW(ShapeDataFormat::byName(*project, "after_effects_mask"), KORV_BadArgument);
}

void expectWhatTheFirstHostTakes()
{
    FakeHost const vegas({"vegas"});
    QStringList const expected = {"After Effects CC Power Pin", "After Effects Corner Pin", "Glimmerset Corner Pin",
                                  "Vantarium Corner Pin - 11.0.0"};
    EXPECT_EQ(offeredNames(&vegas), expected);

    // The map is built; neither another host nor none changes it any more.
    FakeHost const all({"aftereffects", "vegas", "dorin", "scratch"});
    EXPECT_EQ(offeredNames(&all), expected);
    EXPECT_EQ(all.asked, 0);
    EXPECT_EQ(offeredNames(nullptr), expected);
}

void expectTheFirstHostToReplaceWhatItTakes()
{
    QStringList const before = offeredNames(nullptr);
    auto const taken = TrackingExporterFactory::getExporter(T::AE_TRANSFORM());
    auto const refused = TrackingExporterFactory::getExporter(T::SCRATCH_CORNER_PIN());
    T const custom = customTracking("Custom", "custom");
    TrackingExporterFactory::registerCustomExporter(custom, std::make_shared<FakeTrackingExporter>());

    FakeHost const host({"aftereffects"});
    QStringList after = offeredNames(&host);
    after.removeOne("Custom");
    EXPECT_EQ(after, before);
    EXPECT_NE(TrackingExporterFactory::getExporter(T::AE_TRANSFORM()), taken);
    EXPECT_EQ(TrackingExporterFactory::getExporter(T::SCRATCH_CORNER_PIN()), refused);
}

TEST(ExporterFactoriesDeathTest, TheFirstHostIsAskedForEveryRowAndNoOther)
{
    IN_FRESH_PROCESS(expectNothingForARefusingHost());
    IN_FRESH_PROCESS(expectWhatTheFirstHostTakes());
    IN_FRESH_PROCESS(expectTheFirstHostToReplaceWhatItTakes());
}

TEST(ExporterMap, ProductAndHostDecideWhatIsOffered)
{
    QSet<QString> const product = {"a", "b"};
    QSet<QString> const extra = {"c"};
    struct
    {
        QSet<QString> categories;
        bool hasHost;
        QStringList hostTakes;
        bool grantsExtra;
        bool expected;
    } const cases[] = {
        {{"a"}, false, {}, false, true},
        {{"x", "b"}, false, {}, false, true},
        {{"x"}, false, {}, false, false},
        {{}, false, {}, false, false},
        {{}, true, {"a"}, false, false},
        {{"a"}, true, {"a"}, false, true},
        {{"a"}, true, {"b"}, false, false},
        {{"a", "b"}, true, {"b"}, false, true},
        {{"c"}, true, {"c"}, false, false},
        {{"c"}, true, {"c"}, true, true},
        {{"c"}, true, {}, true, false},
        {{"a"}, true, {"a"}, true, true},
        // The category that the host takes need not be the one that the product offers.
        {{"a", "x"}, true, {"x"}, false, true},
        {{"c"}, false, {}, true, false},
    };
    for (auto const& testCase : cases)
    {
        FakeHost const host(testCase.hostTakes, testCase.grantsExtra);
        T const format("n", "n", "", "", testCase.categories, {}, false, 1, SaveToFile);
        EXPECT_EQ(isOffered(format, product, extra, testCase.hasHost ? &host : nullptr), testCase.expected)
            << "case " << &testCase - cases;
    }
}

TEST(ExporterMap, AFailingExporterLeavesTheRowsBeforeItAndTheNextCallStartsOver)
{
    static int firstMade = 0;
    static bool secondFails = true;
    using Map = ExporterMap<T, Korvane::TrackingExporter>;
    auto const makeFirst = []() -> std::shared_ptr<Korvane::TrackingExporter>
    {
        ++firstMade;
        return std::make_shared<FakeTrackingExporter>();
    };
    auto const makeSecond = []() -> std::shared_ptr<Korvane::TrackingExporter>
    {
        if (secondFails)
        {
            throw std::runtime_error("no licence");
        }
        return std::make_shared<FakeTrackingExporter>();
    };
    FormatTraits const traits{{}, {}, "", "", "", {0, 0, 0}};
    Map exporters({{&T::AE_TRANSFORM, makeFirst, traits}, {&T::AE_POWER_PIN, makeSecond, traits, true}},
                  [](T const& format, TXIHost const*) { return format.internalName() == "after_effects_transform"; });
    EXPECT_EQ(thrown<std::runtime_error>([&] { exporters.built(nullptr); }), QString("no licence"));
    secondFails = false;
    EXPECT_EQ(exporters.built(nullptr).size(), 2);
    EXPECT_EQ(firstMade, 2);
    EXPECT_EQ(exporters.built(nullptr).size(), 2);
    EXPECT_EQ(firstMade, 2);
}

}
