#pragma once
// Warnings that an exporter shows while it works.

#include "Host/HostApi.h"

#include <string>

enum KORV_MESSAGEBOX_STYLE
{
    KORV_MESSAGEBOX_OK = 1,
    KORV_MESSAGEBOX_OK_CANCEL = 2
};

enum KORV_MESSAGEBOX_REPLY
{
    KORV_MESSAGEBOX_REPLY_OK = 1,
    KORV_MESSAGEBOX_REPLY_CANCEL = 2
};

namespace ZN
{

/// How the host shows a warning; a program with windows opens a dialog here.
class MARLO_HOST_API Callbacks
{
public:
    virtual ~Callbacks();
    virtual KORV_MESSAGEBOX_REPLY warning(std::string const& title, std::string const& text,
                                          KORV_MESSAGEBOX_STYLE style) const = 0;
};

}

namespace Korvane
{

class MARLO_HOST_API Callbacks : public ZN::Callbacks
{
public:
    ~Callbacks() override;
};

}

class MARLO_HOST_API KORV_MessageBox
{
public:
    /// @param callbacks null writes the warning to stderr
    explicit KORV_MessageBox(ZN::Callbacks const* callbacks);

    KORV_MESSAGEBOX_REPLY warning(std::string title, std::string text, KORV_MESSAGEBOX_STYLE style) const;

private:
    ZN::Callbacks const* m_callbacks;
};
