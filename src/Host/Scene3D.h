#pragma once
// The 3D scene of a project.

#include "Host/AnmParameter.h"
#include "Host/HostApi.h"

#include <memory>

namespace ZN
{

class MARLO_HOST_API Camera3DParameterSet
{
public:
    struct Data;

    explicit Camera3DParameterSet(std::unique_ptr<Data> data);
    ~Camera3DParameterSet();

    /// Non-zero once the camera has been solved.
    Anm::Parameter<unsigned int> const& solved() const;

private:
    std::unique_ptr<Data> m_data;
};

class MARLO_HOST_API Scene3DParameterSet
{
public:
    struct Data;

    explicit Scene3DParameterSet(std::unique_ptr<Data> data);
    ~Scene3DParameterSet();

    /// The camera of that index, null when the scene has none.
    Camera3DParameterSet const* cameraParameters(unsigned int index) const;

private:
    std::unique_ptr<Data> m_data;
};

}
