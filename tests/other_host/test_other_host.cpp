// The export library on a host that isn't the reference host: OtherHost.cpp and stubs.

#include "Core/DataFormat.h"
#include "Core/ExporterFactories.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/Product.h"
#include "Host/TrackingExporter.h"

#include <gtest/gtest.h>

#include <QStringList>

KORV_ProjectManager& otherProject();

// "vegas" is one of several categories of most of these; the host's extra category, "nuke",
// counts in plug-ins only.
TEST(OtherHost, OffersTheFormatsOfItsCategories)
{
    QStringList keys;
    Export::TrackingExporterFactory::forEachFormat(
        [&](Export::TrackingDataFormat const& format) { keys.append(format.internalName()); }, nullptr);
    EXPECT_EQ(keys.join(' ').toStdString(),
              "after_effects_cc_power_pin after_effects_corner_pin flowbox_corner_pin glimmerset_corner_pin "
              "vantarium_corner_pin");
}

// The corners counter-clockwise from the lower left: left edge at 10 + 5 f, lower edge at
// 30 + f / 4, the others 40 and 20 further; frame f is shown as 1001 + f.
TEST(OtherHost, ExportsItsPin)
{
    auto const exporter =
        Export::TrackingExporterFactory::getExporter(Export::TrackingDataFormat::FLOWBOX_CORNER_PIN());
    Anm::Context const start(Anm::Time::fromInt(0), Anm::View::defaultView());
    QByteArray const pin = exporter->exportTracking(otherProject(), "pin", 7, start, {}).files.value("pin");
    EXPECT_TRUE(pin.contains(" to1 {{curve x1001 10 x1002 15 x1003 20} {curve x1001 30 x1002 30.25 x1003 30.5}}\n"
                             " to2 {{curve x1001 50 x1002 55 x1003 60} {curve x1001 30 x1002 30.25 x1003 30.5}}\n"
                             " to3 {{curve x1001 50 x1002 55 x1003 60} {curve x1001 50 x1002 50.25 x1003 50.5}}\n"
                             " to4 {{curve x1001 10 x1002 15 x1003 20} {curve x1001 50 x1002 50.25 x1003 50.5}}\n"))
        << pin.data();
    EXPECT_TRUE(pin.contains(" name CornerPin2D_Slider\n")) << pin.data();
}

TEST(OtherHost, StopsWhereItHasNoBody)
{
    EXPECT_DEATH(Product::shapeExportOptions(), "this host has no body for Product::shapeExportOptions\\(\\)");
}
