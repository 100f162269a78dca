#include "Core/DataFormat.h"
#include "CoreFixtures.h"

#include <QCoreApplication>
#include <QTranslator>

using namespace Export;

namespace
{

using T = TrackingDataFormat;
using S = ShapeDataFormat;
using C = CameraSolveFormat;
using L = LensDataFormat;

TEST(DataFormat, AnEmptyCategoryIsNone)
{
    EXPECT_TRUE(S("a", "b", ".c", "", "d", {}, false, SaveToFile).options().isEmpty());
    EXPECT_TRUE(C("a", "b", ".c", "d", "", 1, {}, SaveToFile, false).options().isEmpty());
}

TEST(DataFormatDeathTest, IdsCountTheFormatsInTheOrderOfFirstUse)
{
    IN_FRESH_PROCESS({
        EXPECT_EQ(T::FUSION_COMP().id(), 0);
        EXPECT_EQ(T().id(), 1);
        EXPECT_EQ(T::AE_TRANSFORM().id(), 2);
        EXPECT_EQ(T::FUSION_COMP().id(), 0);
        T copy = T::AE_TRANSFORM();
        copy = T::FUSION_COMP();
        EXPECT_EQ(copy.id(), 0);
        EXPECT_EQ(T().id(), 3);
        EXPECT_EQ(S::MARLO_BLEND().id(), 0);
        EXPECT_EQ(L::FORMATS_BY_NAME().value("distortion_map", L::OSTRANDER_XML()).id(), 2);
    });
}

TEST(DataFormat, EmptyTrackingFormat)
{
    T const format;
    EXPECT_EQ(format.displayName(), QString());
    EXPECT_EQ(format.numFiles(), 0u);
    EXPECT_EQ(int(format.flags()), 2);
    EXPECT_EQ(int(format.capabilities()), 0);
    EXPECT_TRUE(format.supportsSaveToClipboard() && format.supportsSaveToFile() && !format.isLegacy());
}

TEST(DataFormat, BaseNameTakesTheLengthOfTheExtensionOff)
{
    EXPECT_EQ(T::AE_TRANSFORM().baseName("shot.txt"), QString("shot"));
    EXPECT_EQ(T::AE_TRANSFORM().baseName("shot.nuke"), QString("shot."));
    EXPECT_EQ(T::NUKE_TRACKER().baseName("a.b"), QString(""));
    EXPECT_EQ(T::NUKE_TRACKER().baseName("a"), QString(""));
    EXPECT_EQ(L::DISTORTION_MAP_CLIP().baseName("shot.txt"), QString("shot.txt"));
}

TEST(DataFormat, OrderLooksAtDisplayNamesOnly)
{
    // Plain comparison of code units: capitals come before small letters.
    EXPECT_TRUE(T::AE_POWER_PIN() < T::AE_CORNER_PIN_LEGACY());
    EXPECT_TRUE(T::SCRATCH_CORNER_PIN() < T::SHAKE_SCRIPT());
    T const left("same", "a", "", "", {}, {}, false, 1, SaveToFile);
    T const right("same", "b", "", "", {}, {}, false, 1, SaveToFile);
    EXPECT_FALSE(left < right || right < left);
}

/// Answers with context, text and disambiguation.
class EchoTranslator : public QTranslator
{
public:
    bool isEmpty() const override
    {
        return false;
    }

    QString translate(char const* context, char const* text, char const* disambiguation, int) const override
    {
        return QStringLiteral("%1/%2/%3")
            .arg(QLatin1String(context), QLatin1String(text), QLatin1String(disambiguation));
    }
};

void expectTextsOfFirstUse()
{
    int argc = 0;
    QCoreApplication const application(argc, nullptr);
    EchoTranslator translator;
    QCoreApplication::installTranslator(&translator);
    EXPECT_EQ(T::FUSION_COMP().displayName(), QString("TrackingDataFormat/Fusion Tracker Data/TrackingDataFormat"));
    EXPECT_EQ(T::FUSION_COMP().description(), QString("TrackingDataFormat/Blackmagic Fusion Tracker Data./"));
    EXPECT_EQ(C::USD().displayName(), QString("CameraSolveFormat/USD 3D Data/"));
    EXPECT_EQ(C::USD().description(), QString("CameraSolveFormat/USD 3D Camera Solve Data./"));
    EXPECT_EQ(L::MARLO_LENS_AE().displayName(), QString("Export::LensDataFormat/Marlo Lens for After Effects/"));
    EXPECT_EQ(S::FUSION_SHAPE().displayName(), QString("Fusion Poly Shape Data"));

    QCoreApplication::removeTranslator(&translator);
    EXPECT_EQ(C::USD().displayName(), QString("CameraSolveFormat/USD 3D Data/"));
    EXPECT_EQ(C::Alembic().displayName(), QString("Alembic 3D Data"));
}

TEST(DataFormatDeathTest, TextsAreTranslatedAtFirstUseAndStay)
{
    IN_FRESH_PROCESS(expectTextsOfFirstUse());
}

}
