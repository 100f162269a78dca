#pragma once
// The document of one export.

#include "Premiere/document/MaskNodes.h"

namespace Export::Premiere
{

/// A clip with a filter that masks hang on.
class MARLO_EXPORT_API XmlBuilder
{
public:
    /// @param environment of new identifiers; not null
    explicit XmlBuilder(Environment environment);

    IMaskContainer& masks() const
    {
        return *m_masks;
    }

    /// The document; empty when no mask has a key.
    /// @throws KORV_OperationFailed when it is longer than a text can be
    void toString(QString& out) const;

private:
    Environment m_environment;
    boost::shared_ptr<VFCClipboardItem> m_root;
    boost::shared_ptr<IMaskContainer> m_masks;
};

}
