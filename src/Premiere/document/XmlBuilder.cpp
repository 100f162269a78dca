#include "Premiere/document/XmlBuilder.h"

#include "Writing/Dom.h"

namespace Export::Premiere
{

XmlBuilder::XmlBuilder(Environment environment)
    : m_environment(std::move(environment)),
      m_root(boost::make_shared<VFCClipboardItem>(m_environment)),
      m_masks(m_root->filter())
{
}

void XmlBuilder::toString(QString& out) const
{
    constexpr int INDENT = 2;
    QDomDocument document;
    document.appendChild(document.createProcessingInstruction(QStringLiteral("xml"),
                                                              QStringLiteral("version=\"1.0\" encoding=\"UTF-8\"")));
    QDomElement premiereData = addAttribute(document.createElement(QStringLiteral("PremiereData")), Version(3));
    document.appendChild(premiereData);
    out.clear();
    if (writeTree(m_root, document, premiereData, *m_environment))
    {
        out = QString::fromUtf8(domText(document, INDENT));
    }
}

}
