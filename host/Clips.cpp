#include "Project.h"

namespace ZN
{

ImageFormat::ImageFormat(QSize const& size, double pixelAspect) : m_size(size), m_par(pixelAspect)
{
}

QSize ImageFormat::size() const
{
    return m_size;
}

double ImageFormat::par() const
{
    return m_par;
}

}

ZN_BaseClipInfo::ZN_BaseClipInfo(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

ZN_BaseClipInfo::~ZN_BaseClipInfo() = default;

unsigned int ZN_BaseClipInfo::width() const
{
    return static_cast<unsigned int>(m_data->format.size().width());
}

unsigned int ZN_BaseClipInfo::height() const
{
    return static_cast<unsigned int>(m_data->lines);
}

ZN::ImageFormat const& ZN_BaseClipInfo::format() const
{
    return m_data->format;
}

bool ZN_BaseClipInfo::bIsInterlaced() const
{
    return m_data->interlaced;
}

int ZN_BaseClipInfo::baseClipOffset() const
{
    return m_data->offset;
}

KORV_Clip::KORV_Clip(std::unique_ptr<Data> data) : m_data(std::move(data))
{
}

KORV_Clip::~KORV_Clip() = default;

unsigned int KORV_Clip::id() const
{
    return m_data->id;
}

QString const& KORV_Clip::name() const
{
    return m_data->name;
}

ZN_BaseClipInfo const& KORV_Clip::info() const
{
    return *m_data->info;
}
