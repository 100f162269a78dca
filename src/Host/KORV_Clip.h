#pragma once

#include "Host/Anm.h"
#include "Host/HostApi.h"
#include "mtx/Camera.h"

#include <QString>

#include <memory>

class ZN_ClipInfo;

/// A clip of the project.
class MARLO_HOST_API KORV_Clip
{
public:
    struct Data;

    explicit KORV_Clip(std::unique_ptr<Data> data);
    ~KORV_Clip();
    KORV_Clip(KORV_Clip const&) = delete;
    KORV_Clip& operator=(KORV_Clip const&) = delete;

    unsigned int id() const;
    QString const& name() const;
    ZN_ClipInfo const& info() const;

    /// The pinhole that the clip was seen through at a frame, in pixels of its raster (of one
    /// field in interlaced material), without the distortion of its lens; y0 is measured from
    /// the top edge.
    Mtx_Camera camera(Anm::Context const& context) const;

private:
    std::unique_ptr<Data> m_data;
};
