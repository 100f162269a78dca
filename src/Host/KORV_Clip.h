#pragma once

#include "Host/HostApi.h"

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

private:
    std::unique_ptr<Data> m_data;
};
