#include "Host/ExportedShape.h"

#include "ShapeParts.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

double const KORV_NumericOptimiser::s_matrixScale = 1e6;

namespace Korvane
{

/// This host makes one part of each contour.
struct ExportedShape::Data
{
    std::vector<MarloHost::ShapePart> contours;

    MarloHost::ShapePart const& at(int contour, int part) const
    {
        if (part != 0)
        {
            throw std::out_of_range("a contour has one part");
        }
        return contours.at(static_cast<std::size_t>(contour));
    }
};

ExportedShape::ExportedShape(KORV_ProjectManager const& project, int firstFrame, int lastFrame, KORV_Layer const& layer,
                             Anm::View const& view, unsigned int flags, double scale, QPointF const& offset, bool)
    : m_data(std::make_unique<Data>())
{
    m_data->contours = MarloHost::makeShapeParts(project, layer, {firstFrame, lastFrame, view, flags, scale, offset});
}

ExportedShape::ExportedShape(ExportedShape const& other) : m_data(std::make_unique<Data>(*other.m_data))
{
    for (MarloHost::ShapePart& part : m_data->contours)
    {
        part.mask = MarloHost::copyOf(part.mask);
        part.blur = MarloHost::copyOf(part.blur);
    }
}

ExportedShape& ExportedShape::operator=(ExportedShape const& other)
{
    m_data = std::move(ExportedShape(other).m_data);
    return *this;
}

ExportedShape::~ExportedShape() = default;

ExportedShape& ExportedShape::operator+=(ExportedShape const& other)
{
    ExportedShape const copy(other);
    std::move(copy.m_data->contours.begin(), copy.m_data->contours.end(), std::back_inserter(m_data->contours));
    return *this;
}

int ExportedShape::numShapes() const
{
    return numContours();
}

int ExportedShape::numContours() const
{
    return static_cast<int>(m_data->contours.size());
}

int ExportedShape::numContourCC(int contour) const
{
    m_data->at(contour, 0);
    return 1;
}

unsigned int ExportedShape::numValidContourMasks() const
{
    return static_cast<unsigned int>(std::count_if(
        m_data->contours.begin(), m_data->contours.end(),
        [](MarloHost::ShapePart const& part) { return !part.mask.empty() && part.mask.front()->numSpans() > 0; }));
}

ExportedShape::Curves const& ExportedShape::maskShape(int contour, int part) const
{
    return m_data->at(contour, part).mask;
}

ExportedShape::Curves const& ExportedShape::blurShape(int contour, int part) const
{
    return m_data->at(contour, part).blur;
}

std::string const& ExportedShape::maskName(int contour, int part) const
{
    return m_data->at(contour, part).name;
}

std::vector<KORV_ExportHomography> const& ExportedShape::transform(int contour, int part) const
{
    return *m_data->at(contour, part).transform;
}

void ExportedShape::convertAllShapesToClockwise()
{
    for (MarloHost::ShapePart& part : m_data->contours)
    {
        double area = 0;
        for (int i = 0; i < part.mask.size(); ++i)
        {
            area += part.facing[static_cast<std::size_t>(i)] * MarloHost::areaOf(*part.mask[i]);
        }
        // An open curve has no inside to run around.
        if (area > 0 && part.mask.front()->closed)
        {
            MarloHost::turnAround(part.mask);
            MarloHost::turnAround(part.blur);
        }
    }
}

}
