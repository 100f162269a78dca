#pragma once
// A program that our code runs in as its plug-in.

#include "marlohost/ProjectFile.h"

#include "Host/PluginHost.h"

class OtherProgram : public Korvane::PluginHost
{
public:
    explicit OtherProgram(bool adobe) : m_adobe(adobe)
    {
    }
    bool isAdobe() const override
    {
        return m_adobe;
    }
    TXIHost const* host() const override
    {
        return nullptr;
    }
    QSize compositionSize() const override
    {
        return {640, 480};
    }

private:
    bool m_adobe;
};

inline MarloHost::HostServices insideOf(bool adobe)
{
    MarloHost::HostServices services;
    services.pluginHost = std::make_shared<OtherProgram>(adobe);
    return services;
}
