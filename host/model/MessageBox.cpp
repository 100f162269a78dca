#include "Host/MessageBox.h"

#include <cstdio>

Korvane::Callbacks::~Callbacks() = default;

ZN::Callbacks::~Callbacks() = default;

KORV_MessageBox::KORV_MessageBox(ZN::Callbacks const* callbacks) : m_callbacks(callbacks)
{
}

KORV_MESSAGEBOX_REPLY KORV_MessageBox::warning(std::string title, std::string text, KORV_MESSAGEBOX_STYLE style) const
{
    if (m_callbacks)
    {
        return m_callbacks->warning(title, text, style);
    }
    std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
    return KORV_MESSAGEBOX_REPLY_OK;
}
