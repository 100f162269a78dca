// Roto shapes of contours that come in parts, and of parts that move apart. The reference host makes neither of them,
// so some of its functions are replaced in this program: the dynamic linker finds these bodies first.

#include "Host/ExportedShape.h"
#include "Host/KORV_Layer.h"
#include "Nuke/NukeRotoExporters.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace
{

enum class Parts
{
    One,
    Two,
    TwoMovingApart
};

Parts contourParts = Parts::One;

/// What the reference host has for the first part of a contour.
template <typename Result>
Result const& ofHost(char const* symbol, Korvane::ExportedShape const* shape, int contour)
{
    auto const body =
        reinterpret_cast<Result const& (*)(Korvane::ExportedShape const*, int, int)>(dlsym(RTLD_NEXT, symbol));
    return body(shape, contour, 0);
}

}

int Korvane::ExportedShape::numContourCC(int) const
{
    return contourParts == Parts::One ? 1 : 2;
}

// The second part has the outline of the feather.
Korvane::ExportedShape::Curves const& Korvane::ExportedShape::maskShape(int contour, int part) const
{
    return part == 0 ? ofHost<Curves>("_ZNK7Korvane13ExportedShape9maskShapeEii", this, contour)
                     : blurShape(contour, part);
}

Korvane::ExportedShape::Curves const& Korvane::ExportedShape::blurShape(int contour, int) const
{
    return ofHost<Curves>("_ZNK7Korvane13ExportedShape9blurShapeEii", this, contour);
}

std::vector<KORV_ExportHomography> const& Korvane::ExportedShape::transform(int contour, int part) const
{
    using Motion = std::vector<KORV_ExportHomography>;
    auto const& motion = ofHost<Motion>("_ZNK7Korvane13ExportedShape9transformEii", this, contour);
    static Motion const other{{{1, 0, 0, 0, 1, 0, 0, 0, 1}, 0}, {{1, 0, 7, 0, 1, 0, 0, 0, 1}, 1}};
    return part == 1 && contourParts == Parts::TwoMovingApart ? other : motion;
}

namespace
{

QByteArray exported(Parts parts)
{
    ProjectBuilder builder;
    builder.addLayer("A").track([](int frame) { return ProjectBuilder::translation(20 * frame, 0); });
    std::vector<double> const lens{10, 20, -7, -8, 1, 2, 30, 40, -3, -4, 5, 6};
    std::vector<double> const feather{3, 20, -7, -8, 1, 2, 30, 40, -3, -4, 5, 6};
    builder.layer().contours.push_back({"lens", false, true, true, {}, {{0, lens, feather}, {1, lens, feather}}});
    auto const project = builder.make();
    contourParts = parts;
    auto const files =
        Export::NukeRotoExporter(true).exportShape(*project, "out.nk", {project->currentLayer()->numericID()}, {});
    contourParts = Parts::One;
    return files->value("out.nk");
}

// The nodes of shapes.
QList<QByteArray> shapes(QByteArray const& text)
{
    QList<QByteArray> found;
    for (int at = text.indexOf("NodeType: 3"); at >= 0; at = text.indexOf("NodeType: 3", at + 1))
    {
        found.append(text.mid(at, text.indexOf("NumOfChildren", at) - at));
    }
    return found;
}

TEST(RotoParts, EachIsAShapeAndHasAMatrixWhereTheirMotionsDiffer)
{
    for (bool const apart : {false, true})
    {
        QByteArray const text = exported(apart ? Parts::TwoMovingApart : Parts::Two);
        QList<QByteArray> const found = shapes(text);
        ASSERT_EQ(found.size(), 2);
        EXPECT_TRUE(found[0].contains(" 0 2 \"\" 0 10 0 1 ") && found[1].contains(" 0 2 \"\" 0 3 0 1 "))
            << text.constData();
        EXPECT_EQ(text.contains("    NodeType: 1\n    Transform2: "), !apart);
        EXPECT_EQ(found[0].contains("Transform2: ") && found[0].contains("\"\" 1 20000000 0 1 "), apart);
        EXPECT_EQ(found[1].contains("Transform2: ") && found[1].contains("\"\" 1 7 0 1 "), apart);
    }
}

}
