// The export library on a host that isn't the reference host: the same objects, linked
// against other bodies for the headers of src/Host.

#include "Core/DataFormat.h"
#include "Core/ExportFunctions.h"
#include "Core/ExporterFactories.h"
#include "OtherHost.h"

#include <gtest/gtest.h>

#include <QStringList>

TEST(OtherHost, OffersItsCategoriesAndExportsItsLayer)
{
    QStringList keys;
    Export::TrackingExporterFactory::forEachFormat(
        [&](Export::TrackingDataFormat const& format) { keys.append(format.internalName()); }, nullptr);
    EXPECT_TRUE(keys.contains("scratch_corner_pin") && keys.contains("after_effects_corner_pin"));
    EXPECT_FALSE(keys.contains("after_effects_transform")) << "its category isn't offered";

    auto const project = slidingProject();
    Export::Preset::ExportInfo info;
    info.format = "after_effects_corner_pin";
    auto const wrapper = Export::createExporter(info, *project);
    ASSERT_TRUE(wrapper->isExportPossible(*project).first);
    EXPECT_EQ(wrapper->filenameSuggestion(*project), "Slider");
    QByteArray const text = wrapper->getExportResult(*project, "pin.txt").files.value("pin.txt");
    EXPECT_TRUE(text.contains("\tUnits Per Second\t30\n\tSource Width\t200\n\tSource Height\t100\n")) << text.data();
    EXPECT_TRUE(text.contains("ADBE Corner Pin-0004\n\tFrame\tX pixels\tY pixels\n"
                              "\t0\t50\t70\n\t1\t55\t70\n\t2\t60\t70\n"))
        << text.data();
}
