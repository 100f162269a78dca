#pragma once
// Descriptions of clips.

#include "Host/HostApi.h"

#include <QSize>
#include <QString>

#include <memory>

namespace ZN
{

/// Raster size and pixel shape of a clip.
class MARLO_HOST_API ImageFormat
{
public:
    ImageFormat(QSize const& size, double pixelAspect);

    QSize size() const;

    /// Width of a pixel divided by its height.
    double par() const;

private:
    QSize m_size;
    double m_par;
};

}

/// What never changes about a clip.
class MARLO_HOST_API ZN_BaseClipInfo
{
public:
    struct Data;

    explicit ZN_BaseClipInfo(std::unique_ptr<Data> data);
    virtual ~ZN_BaseClipInfo();
    ZN_BaseClipInfo(ZN_BaseClipInfo const&) = delete;
    ZN_BaseClipInfo& operator=(ZN_BaseClipInfo const&) = delete;

    unsigned int width() const;

    /// Lines of the raster that is tracked: of one field in interlaced material.
    unsigned int height() const;

    ZN::ImageFormat const& format() const;
    bool bIsInterlaced() const;

    /// What is added to a host frame to show it; in host frames.
    int baseClipOffset() const;

private:
    std::unique_ptr<Data> m_data;
};
