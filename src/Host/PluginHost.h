#pragma once

#include "Host/HostApi.h"

#include <QSize>

/// The program that a plug-in build runs in, as far as it narrows the formats.
class MARLO_HOST_API TXIHost
{
public:
    virtual ~TXIHost();

    /// The number with which grants() is asked for extra export categories.
    static constexpr int EXTRA_EXPORT_CATEGORIES = 24;

    /// Whether the host grants the capability of that number.
    virtual bool grants(int capability) const = 0;

    /// Whether the host takes formats of a category.
    /// @param scope 0 in all callers
    /// @param category the category as UTF-8
    virtual bool takesCategory(int scope, char const* category) const = 0;
};

namespace Korvane
{

/// Present when the program runs as a plug-in inside another application.
class MARLO_HOST_API PluginHost
{
public:
    virtual ~PluginHost();

    virtual bool isAdobe() const = 0;
    virtual TXIHost const* host() const = 0;

    /// Size of the composition that the plug-in works in, in pixels.
    virtual QSize compositionSize() const = 0;
};

}
