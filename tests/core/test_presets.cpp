#include "Core/Preset.h"
#include "Core/PresetJsonException.h"
#include "CoreFixtures.h"
#include "PresetTexts.h"

#include <QMap>
#include <QVariant>

using namespace Export;
using namespace PresetTexts;

namespace
{

using Info = Preset::ExportInfo;
using Presets = QHash<QString, Preset>;
using Options = QMap<QString, QVariant>;

Info onlyExport(Presets const& presets)
{
    return presets.value("p").exports.at(0);
}

template <typename UserOptions>
UserOptions read(std::string const& type, std::string const& options)
{
    return std::get<UserOptions>(onlyExport(parsed(exportWith(type, options))).options);
}

Anm::Context frame(int number)
{
    return Anm::Context(Anm::Time::fromInt(number), Anm::View::defaultView());
}

/// Through the text and back.
template <typename UserOptions>
UserOptions again(Info::Type type, UserOptions const& options)
{
    std::string const text = serialisePresets(presetOf({"f", type, options, std::nullopt}), false);
    return std::get<UserOptions>(onlyExport(parsed(text)).options);
}

Presets twoPresets()
{
    UserTrackingOptions pin;
    pin.trackingOption = ZN_TRACKING_OPTION_STABILIZED;
    pin.invert = true;
    pin.referenceFrame = frame(12);
    pin.layerSelection = {ZN::SpecifiedLayer, QString::fromUtf8("Straße \"7\"")};
    pin.viewsToExport = {Anm::View(1), Anm::View(0)};
    UserShapeOptions const shapes{{ZN::VisibleLayers, "stale"}, {}};
    UserCameraSolveOptions const camera{KV::CameraSolveExporter::SelectedObjects,
                                        Options{{"pointSizeMode", "small"}, {"includeFeatures", false}}};
    std::vector<Info> several;
    several.push_back({"nuke_roto", Info::Shape, shapes, std::nullopt});
    several.push_back({"fbx", Info::Camera, camera, QString("cam.fbx")});
    return {{QString::fromUtf8("日本"), Preset({"pin", Info::Tracking, pin, QString::fromUtf8("out/ü.txt")})},
            {"all", Preset(std::move(several))},
            {"empty", Preset()}};
}

TEST(Presets, TextIsSortedReadableAndReadBack)
{
    std::string const text =
        R"({"presets":[{"exports":[)"
        R"({"format":"nuke_roto","options":{"exportMode":"visible","viewsToExport":[]},"type":"shape"},)"
        R"({"filePath":"cam.fbx","format":"fbx","options":{"customData":{"includeFeatures":false,)"
        R"("pointSizeMode":"small"},"objectsToExport":"selected"},"type":"camera"}],"name":"all"},)"
        R"({"exports":[],"name":"empty"},)"
        R"({"exports":[{"filePath":"out/ü.txt","format":"pin","options":{"invert":true,"layer":"Straße \"7\"",)"
        R"("layerExportMode":"specified","referenceFrame":12,"trackingOption":"stabilized","undistort":false,)"
        R"("viewsToExport":[1,0]},"type":"tracking"}],"name":"日本"}],"version":1})";
    EXPECT_EQ(serialisePresets(twoPresets(), false), text);
    EXPECT_EQ(serialisePresets(parsed(text), false), text);
    EXPECT_EQ(serialisePresets({}, true), "{\n  \"presets\": [],\n  \"version\": 1\n}");
}

TEST(Presets, EveryChoiceComesBack)
{
    for (int choice = 0; choice < 64; ++choice)
    {
        int const option = choice % 4;
        int const mode = choice / 4 % 4;
        LayerSelection const selection{static_cast<ZN::LayerExportMode>(mode), "Sign"};
        UserTrackingOptions const options{static_cast<ZN_TRACKING_OPTION>(option),
                                          choice / 16 % 2 != 0,
                                          choice / 32 != 0,
                                          frame(mode - 2),
                                          selection,
                                          {Anm::View(mode)}};
        EXPECT_TRUE(again(Info::Tracking, options) == options) << choice;
        UserShapeOptions const shapes{selection, {Anm::View(mode), Anm::View(option)}};
        EXPECT_TRUE(again(Info::Shape, shapes) == shapes) << choice;
    }
    for (int objects = 0; objects <= 2; ++objects)
    {
        UserCameraSolveOptions const options{static_cast<KV::CameraSolveExporter::ObjectsToExport>(objects),
                                             Options{{"a", true}, {"b", false}, {QString::fromUtf8("é"), "true"}}};
        EXPECT_TRUE(again(Info::Camera, options) == options) << objects;
    }
    // A bool isn't a text, and a text isn't a bool, although QVariant converts both.
    auto const types = again(Info::Camera, UserCameraSolveOptions{{}, Options{{"flag", true}, {"text", "true"}}});
    auto const map = std::any_cast<Options>(types.customData);
    EXPECT_EQ(map["flag"].userType(), QMetaType::Bool);
    EXPECT_EQ(map["text"].userType(), QMetaType::QString);
}

TEST(Presets, AbsentKeysTakeTheirDefaults)
{
    std::vector<Anm::View> const views{Anm::View::defaultView()};
    UserTrackingOptions const tracked{ZN_TRACKING_OPTION_BASIC, false, false, Anm::Context::invalid(),
                                      {ZN::SelectedLayer, ""},  views};
    EXPECT_TRUE(read<UserTrackingOptions>("tracking", "{}") == tracked);
    EXPECT_TRUE(read<UserShapeOptions>("shape", "{}") == (UserShapeOptions{{ZN::AllLayers, ""}, views}));
    EXPECT_TRUE(read<UserCameraSolveOptions>("camera", "{}") ==
                (UserCameraSolveOptions{KV::CameraSolveExporter::AllObjects, {}}));
    EXPECT_EQ(onlyExport(parsed(exportWith("shape", "{}"))).filePath, std::nullopt);
    EXPECT_TRUE(parsed(R"({"presets": []})").isEmpty());
    // A layer counts only when it is specified; keys of other programs are passed over.
    EXPECT_TRUE(read<UserShapeOptions>("shape", R"({"layer": 5, "colour": {"r": [1]}})") ==
                (UserShapeOptions{{ZN::AllLayers, ""}, views}));
}

TEST(Presets, ReferenceFrames)
{
    auto const reference = [](std::string const& number)
    { return read<UserTrackingOptions>("tracking", R"({"referenceFrame": )" + number + "}").referenceFrame; };
    EXPECT_EQ(reference("0"), frame(0));
    EXPECT_EQ(reference("12.9"), frame(12));
    EXPECT_EQ(reference("-0.9"), frame(0));
    EXPECT_EQ(reference("-2147483648"), frame(-2147483647 - 1));
    EXPECT_EQ(reference("2.147483647e9"), frame(2147483647));

    UserTrackingOptions options;
    EXPECT_EQ(again(Info::Tracking, options).referenceFrame, frame(-1)) << "an invalid one is written as -1";
    options.referenceFrame.setTime(Anm::Time::fromDouble(12.9));
    EXPECT_EQ(again(Info::Tracking, options).referenceFrame, frame(12));
}

TEST(Presets, TheLaterOfTwoOfOneNameWins)
{
    Presets const presets = parsed(
        R"({"presets": [{"name": "p", "exports": [{"type": "shape", "format": "old", "options": {}},
                                                  {"type": "shape", "format": "older", "options": {}}]},
                        {"name": "p", "exports": [{"type": "shape", "format": "new", "options": {}}]}]})");
    ASSERT_EQ(presets.size(), 1);
    ASSERT_EQ(presets["p"].exports.size(), 1u);
    EXPECT_EQ(onlyExport(presets).format, "new");
}

TEST(Presets, WhatHasNoTextIsRefused)
{
    auto const text = [](Info const& info) { serialisePresets(presetOf(info), false); };
    std::string const noWord = "Enum missing from options array.";
    std::string const noConversion = "QVariant type conversion to json not implemented";
    auto const all = KV::CameraSolveExporter::AllObjects;
    auto const unknownObjects = static_cast<KV::CameraSolveExporter::ObjectsToExport>(3);
    struct
    {
        Info info;
        std::string text;
    } const cases[] = {
        {{"f", static_cast<Info::Type>(3), UserShapeOptions(), std::nullopt}, noWord},
        {{"f", Info::Camera, UserCameraSolveOptions{unknownObjects, {}}, std::nullopt}, noWord},
        {{"f", Info::Camera, UserCameraSolveOptions{all, Options{{"n", 1}}}, std::nullopt}, noConversion},
        {{"f", Info::Camera, UserCameraSolveOptions{all, Options{{"n", QVariant()}}}, std::nullopt}, noConversion},
    };
    for (auto const& [info, words] : cases)
    {
        EXPECT_EQ(CoreTest::thrown<CustomJsonException>([&, &refused = info] { text(refused); }).toStdString(), words);
    }
    // The type and the alternative that the options hold number cameras and shapes differently.
    EXPECT_THROW(text({"f", Info::Camera, UserShapeOptions(), std::nullopt}), std::bad_variant_access);
    EXPECT_THROW(text({"f", Info::Shape, UserCameraSolveOptions(), std::nullopt}), std::bad_variant_access);
    EXPECT_THROW(text({"f", Info::Tracking, UserShapeOptions(), std::nullopt}), std::bad_variant_access);
}

/// An exporter without a map of options uses its defaults; with an empty one, all are off.
TEST(Presets, NoCustomDataStaysNone)
{
    for (std::any const& none : {std::any(), std::any(Options()), std::any(42)})
    {
        UserCameraSolveOptions const options{KV::CameraSolveExporter::AllObjects, none};
        UserCameraSolveOptions const after = again(Info::Camera, options);
        EXPECT_FALSE(after.customData.has_value());
        EXPECT_TRUE(after == options);
    }
}

}
