#include "Core/DataFormat.h"
#include "CoreFixtures.h"
#include "Host/Product.h"

#include <QCoreApplication>
#include <QTranslator>

using namespace Export;

namespace
{

using T = TrackingDataFormat;
using S = ShapeDataFormat;
using C = CameraSolveFormat;
using L = LensDataFormat;

template <typename Format>
using Accessors = std::vector<Format const& (*)()>;

Accessors<T> const TRACKING = {&T::AE_CORNER_PIN_LEGACY,
                               &T::AE_TRANSFORM,
                               &T::ALEMBIC_MESH,
                               &T::ALEMBIC_VERTEX_TRANSFORM,
                               &T::FINALCUT_BASICMOTION,
                               &T::FINALCUT_DISTORT,
                               &T::IFFFSE_POINTS,
                               &T::IFFFSE_POINTS_FLAME_2014,
                               &T::AUTODESK_FLAME_AXIS,
                               &T::SHAKE_SCRIPT,
                               &T::AVID_DS,
                               &T::NUKE_ASCII,
                               &T::NUKE_CORNER_PIN,
                               &T::NUKE_TRACKER,
                               &T::NUKE_MESH_TRACKER,
                               &T::XML_MATRICES,
                               &T::XML_CORNERPIN,
                               &T::HITFILM_TRANSFORM_DATA,
                               &T::HITFILM_CORNER_PIN_DATA,
                               &T::FUSION_COMP,
                               &T::AE_CORNER_PIN,
                               &T::AE_POWER_PIN,
                               &T::DORIN_CORNER_PIN,
                               &T::DORIN_CENTER_POINT,
                               &T::AE_CORNER_PIN_SIMPLE,
                               &T::MOTION_CORNER_PIN,
                               &T::MARLO_BLEND,
                               &T::MOTION_TRANSFORM,
                               &T::IFFFSE_STABILIZER,
                               &T::IFFFSE_STABILIZER_FLAME_2014,
                               &T::SCRATCH_CORNER_PIN,
                               &T::FLOWBOX_CORNER_PIN,
                               &T::GLIMMERSET_CORNER_PIN,
                               &T::KESTRELIA_TRACKERS};

Accessors<S> const SHAPES = {&S::AE_MARLO_SHAPE,
                             &S::SHAKE_SSF_SCRIPT,
                             &S::FLAME_GMASK_SCRIPT,
                             &S::FLAME_TRACER_BASIC,
                             &S::FLAME_TRACER_SHAPE_AND_AXIS,
                             &S::COMBUSTION_GMASK_SCRIPT,
                             &S::FC_MARLO_SHAPE,
                             &S::FUSION_SHAPE,
                             &S::FUSION_MULTIPOLY_SHAPE,
                             &S::NUKE_ROTO_PAINT_WITH_MATRIX,
                             &S::NUKE_ROTO_PAINT_NO_MATRIX,
                             &S::NUKE_ROTO_WITH_MATRIX,
                             &S::NUKE_ROTO_NO_MATRIX,
                             &S::NUKE_SPLINE_WARP,
                             &S::HITFILM_WITH_MATRIX,
                             &S::MARLO_BLEND,
                             &S::GLIMMERSET_FXS,
                             &S::PREMIERE_SHAPE};

Accessors<C> const CAMERAS = {&C::AE,        &C::AE_legacy, &C::FBX_NUKE, &C::FBX_MAYA6,
                              &C::FBX_MAYA7, &C::HIT_FILM,  &C::USD,      &C::KestreliaProjectFile,
                              &C::Alembic};

Accessors<L> const LENSES = {&L::OSTRANDER_XML, &L::MARLO_LENS_AE, &L::DISTORTION_MAP_CLIP};

/// What can be counted over all formats of a kind.
struct Totals
{
    int formats = 0;
    int legacy = 0;
    int fileOnly = 0;
    int clipboardOnly = 0;
    int severalViews = 0;
    int severalFiles = 0;
    int withoutDescription = 0;

    bool operator==(Totals const& other) const
    {
        return formats == other.formats && legacy == other.legacy && fileOnly == other.fileOnly &&
               clipboardOnly == other.clipboardOnly && severalViews == other.severalViews &&
               severalFiles == other.severalFiles && withoutDescription == other.withoutDescription;
    }
};

void PrintTo(Totals const& totals, std::ostream* out)
{
    *out << totals.formats << " formats, " << totals.legacy << " legacy, " << totals.fileOnly << " file only, "
         << totals.clipboardOnly << " clipboard only, " << totals.severalViews << " with views, " << totals.severalFiles
         << " with several files, " << totals.withoutDescription << " undescribed";
}

/// Counts the formats of a kind; keys and display names must be unique, and the
/// categories must be some that the product offers.
template <typename Format>
Totals totalsOf(Accessors<Format> const& accessors, QSet<QString> const& offered)
{
    Totals totals;
    QSet<QString> keys;
    QSet<QString> names;
    for (auto const accessor : accessors)
    {
        Format const& format = accessor();
        ++totals.formats;
        totals.legacy += format.isLegacy() ? 1 : 0;
        totals.fileOnly += format.supportsSaveToClipboard() ? 0 : 1;
        totals.clipboardOnly += format.supportsSaveToFile() ? 0 : 1;
        totals.severalViews += format.flags().testFlag(HoldsSeveralViews) ? 1 : 0;
        totals.severalFiles += format.numFiles() > 1 ? 1 : 0;
        totals.withoutDescription += format.description().isEmpty() ? 1 : 0;
        keys.insert(format.internalName());
        names.insert(format.displayName());
        EXPECT_FALSE(format.options().isEmpty()) << format.internalName().toStdString();
        EXPECT_TRUE(offered.contains(format.options())) << format.internalName().toStdString();
    }
    EXPECT_EQ(keys.size(), totals.formats);
    EXPECT_EQ(names.size(), totals.formats);
    return totals;
}

TEST(DataFormat, TablesAreComplete)
{
    EXPECT_EQ(totalsOf(TRACKING, Product::trackExportOptions()), (Totals{34, 12, 4, 0, 6, 4, 1}));
    EXPECT_EQ(totalsOf(SHAPES, Product::shapeExportOptions()), (Totals{18, 4, 3, 1, 7, 0, 0}));
    EXPECT_EQ(totalsOf(CAMERAS, Product::cameraSolveExportOptions()), (Totals{9, 2, 7, 0, 3, 0, 0}));
    EXPECT_EQ(totalsOf(LENSES, {"None", "AfterEffects", "STMap"}), (Totals{3, 0, 1, 0, 0, 0, 3}));
}

TEST(DataFormat, RowsHoldTheirFields)
{
    T const& tracking = T::GLIMMERSET_CORNER_PIN();
    EXPECT_EQ(tracking.displayName(), QString("Glimmerset Corner Pin"));
    EXPECT_EQ(tracking.internalName(), QString("glimmerset_corner_pin"));
    EXPECT_EQ(tracking.extension(), QString(".txt"));
    EXPECT_EQ(tracking.options(), (QSet<QString>{"glimmerset", "vegas"}));
    EXPECT_EQ(tracking.description(), QString("Dorin FX Glimmerset Corner Pin Data."));
    EXPECT_EQ(int(tracking.capabilities()), 7);
    EXPECT_EQ(int(tracking.flags()), 3);

    T const& points = T::AVID_DS();
    EXPECT_EQ(points.numFiles(), 8u);
    EXPECT_TRUE(points.isLegacy());
    EXPECT_EQ(int(points.flags()), 2);
    EXPECT_EQ(T::FLOWBOX_CORNER_PIN().description(),
              QString("Flowbox Corner Pin Data.  This is a Legacy Format and is no longer supported."));

    S const& shape = S::PREMIERE_SHAPE();
    EXPECT_EQ(shape.internalName(), QString("premiere_shape"));
    EXPECT_FALSE(shape.supportsSaveToFile());
    EXPECT_TRUE(shape.supportsSaveToClipboard());
    EXPECT_EQ(int(shape.capabilities()), 9);
    EXPECT_EQ(int(shape.flags()), 2);
    EXPECT_EQ(shape.numFiles(), 1u);
    EXPECT_EQ(S::COMBUSTION_GMASK_SCRIPT().description(),
              QString("GMask for Autodesk Combution. This is a Legacy Format and is no longer supported."));

    EXPECT_EQ(int(C::FBX_MAYA6().flags()), 13);
    EXPECT_EQ(int(C::HIT_FILM().flags()), 8);
    EXPECT_TRUE(C::AE_legacy().description().endsWith("moving objects with many nulls."));

    L const& lens = L::DISTORTION_MAP_CLIP();
    EXPECT_EQ(lens.customDataTypeName(), QString("Korvane::STMapExportParams"));
    EXPECT_EQ(lens.numFiles(), 0u);
    EXPECT_EQ(lens.extension(), QString());
    EXPECT_EQ(int(lens.flags()), 0);
    EXPECT_EQ(L::FORMATS_BY_NAME().keys(), (QStringList{"after_effects_marlo_lens", "distortion_map", "marlo_xml"}));
}

TEST(DataFormat, CapabilitiesAndCategoriesDecideFlagsAndOptions)
{
    for (int const capabilities : {0, 1, 6, 7, 24, 32, 40})
    {
        T const format("a", "b", ".c", "d", {}, T::ExportCapabilities(QFlag(capabilities)), false, 1, SaveToFile);
        EXPECT_EQ(int(format.flags()), (capabilities & 1) | 2) << capabilities;
    }
    for (int const capabilities : {0, 1, 2, 5, 9, 13, 15})
    {
        S const format("a", "b", ".c", "", "d", S::ExportCapabilities(QFlag(capabilities)), false, SaveToFile);
        EXPECT_EQ(int(format.flags()), capabilities & 2 ? 3 : 2) << capabilities;
        EXPECT_TRUE(format.options().isEmpty());
    }
    EXPECT_EQ(C("a", "b", ".c", "d", "fbx", 1, {}, SaveToFile, false).options(), QSet<QString>{"fbx"});
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
