#include "Writing/Dom.h"

#include "Host/KORV_Exception.h"

#include <QHash>

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <vector>

using namespace Export;

namespace
{

QDomDocument parsed(QByteArray const& text, bool hasNamespaces = false)
{
    QDomDocument document;
    QString message;
    EXPECT_TRUE(document.setContent(text, hasNamespaces, &message)) << text.constData() << ": " << qPrintable(message);
    return document;
}

QDomDocument withRoot()
{
    QDomDocument document{QString()};
    appendElement(document, "a");
    return document;
}

TEST(Dom, SavesAsQtDoes)
{
    std::vector<QDomDocument> documents = {QDomDocument(), QDomDocument("only a type")};
    for (char const* const text : {
             "<a/>",
             "<a><b><c k='1'/></b><d>t</d><e/></a>",
             "<a>t<b/>u<c><d/></c></a>",
             "<a><b/>t<c/></a>",
             "<a><![CDATA[<&>]]><b/><![CDATA[x]]></a>",
             "<!--x--><?p d?><a><b>t<!-- c --></b><!-- c -->u<!-- c --><?p?>v<?p d?></a><!--y-->",
             "<?xml version='1.0' encoding='utf-8'?><!DOCTYPE r PUBLIC 'p' \"s'\"><r/>",
             "<!DOCTYPE r [<!NOTATION n SYSTEM 's'><!ENTITY e SYSTEM 'v'>]><r/>",
             "<a k='&lt;>&amp;&quot;&apos;]]>&#9;&#10;&#13;'>&lt;>&amp;\"']]&gt;\t\n&#13;</a>",
             "<a "
             "k='\xc3\xa9\xf0\x9f\x98\x80'>"
             "\x7f\xc2\x80\xdf\xbf\xe0\xa0\x80\xef\xbf\xbd\xf0\x90\x80\x80\xf4\x8f\xbf\xbd</a>",
         })
    {
        documents.push_back(parsed(text));
    }
    documents.push_back(parsed("<p:a xmlns:p='u' p:x='1'><b xmlns='v' xmlns:q='w' q:y='2'/><p:c/></p:a>", true));
    QDomDocument empty = withRoot();
    appendElement(empty.documentElement(), "b", QString());
    empty.documentElement().appendChild(empty.createEntityReference("amp"));
    EXPECT_EQ(domText(empty, -1), "<a><b></b>&amp;</a>");
    QDomDocument longText = withRoot();
    appendElement(longText.documentElement(), "b", (QString("]]>") + QChar(0x20ac)).repeated(20000));
    documents.insert(documents.end(), {empty, longText});
    for (QDomDocument const& document : documents)
    {
        for (int const indent : {-2, -1, 0, 1, 3})
        {
            EXPECT_EQ(domText(document, indent), document.toByteArray(indent)) << "indent " << indent;
        }
    }
}

TEST(Dom, OrdersByNameWhateverTheHash)
{
    std::set<QByteArray> texts;
    std::set<QByteArray> textsOfQt;
    QStringList names = {"b", "Z", "a", "a1", QString::fromUtf8("\xc3\xa9"), "a-b", "_", "a.b"};
    for (int run = 0; run < 8; ++run)
    {
        qSetGlobalQHashSeed(-1); // a new one
        QDomDocument document = parsed("<!DOCTYPE r [<!ENTITY f SYSTEM 'x'><!ENTITY e PUBLIC 'y' 'z'>]><r/>");
        for (QString const& name : names)
        {
            document.documentElement().setAttribute(name, 1);
        }
        texts.insert(domText(document));
        textsOfQt.insert(document.toByteArray());
        names.move(0, names.size() - 1);
    }
    EXPECT_GT(textsOfQt.size(), 1u);
    ASSERT_EQ(texts.size(), 1u);
    EXPECT_STREQ(texts.begin()->constData(), "<!DOCTYPE r [\n"
                                             "<!ENTITY e PUBLIC 'y' 'z'>\n<!ENTITY f SYSTEM 'x'>\n]>\n"
                                             "<r Z=\"1\" _=\"1\" a=\"1\" a-b=\"1\" a.b=\"1\" a1=\"1\" b=\"1\" "
                                             "\xc3\xa9=\"1\"/>\n");
}

TEST(Dom, KeepsDocumentsWellFormed)
{
    QChar const high(0xd83d);
    QChar const low(0xde00);
    QString const odd =
        QString("a\1b") + QChar(0) + QChar(0x1f) + QChar(0xfffe) + QChar(0xffff) + low + high + high + low + high;
    QString const kept = QString("a?b??????").replace('?', QChar(0xfffd)) + high + low + QChar(0xfffd);
    QDomDocument document = withRoot();
    QDomElement root = document.documentElement();
    root.setAttribute("k", odd);
    appendElement(root, "b", odd);
    QDomElement halves = appendElement(root, "c", "x]]");
    halves.appendChild(document.createTextNode(">y"));
    appendElement(root, "d").appendChild(document.createCDATASection("]]>" + odd + "]]>]]"));
    root.appendChild(document.createComment("--- ->" + odd + "-"));
    root.appendChild(document.createProcessingInstruction("p", "q?>" + odd));

    QDomElement const read = parsed(domText(document)).documentElement();
    EXPECT_EQ(read.attribute("k"), kept);
    EXPECT_EQ(read.firstChildElement("b").text(), kept);
    EXPECT_EQ(read.firstChildElement("c").text(), "x]]>y");
    EXPECT_EQ(read.firstChildElement("d").text(), "]]>" + kept + "]]>]]");
    EXPECT_EQ(read.lastChild().previousSibling().nodeValue(), "- - - ->" + kept + "- ");
    EXPECT_EQ(read.lastChild().nodeValue(), "q? >" + kept);
}

TEST(Dom, RefusesWhatXmlCannotHold)
{
    for (char const* const name :
         {"", "1a", "9a", "a;", "-a", ".a", "a b", "a<", "a>", "a/", "a=", "a\"", "a'", "a&", "a\n"})
    {
        QDomDocument document = withRoot();
        document.documentElement().setAttribute(name, 1);
        EXPECT_THROW(domText(document), KORV_BadArgument) << name;
        QDomDocument tagged = withRoot();
        EXPECT_THROW(
            {
                appendElement(tagged.documentElement(), name);
                domText(tagged);
            },
            KORV_BadArgument)
            << name;
    }
    QDomDocument twice = withRoot();
    twice.documentElement().setAttributeNS("u", "p:k", 1);
    twice.documentElement().setAttributeNS("v", "p:k", 1);
    EXPECT_THROW(domText(twice), KORV_BadArgument);
    QDomDocument latin;
    latin.appendChild(latin.createProcessingInstruction("xml", "version='1.0' encoding = 'ISO-8859-1'"));
    EXPECT_THROW(domText(latin), KORV_BadArgument);
    EXPECT_THROW(appendElement(QDomNode(), "a"), KORV_BadArgument);
}

TEST(Dom, WritesAnyDepthAndRefusesWhatIsTooLong)
{
    constexpr int DEPTH = 100000;
    QDomDocument document;
    std::vector<QDomNode> held = {document.createElement("a")}; // or Qt's own release of them would recurse
    while (held.size() < DEPTH)
    {
        held.push_back(document.createElement("a"));
        held.back().appendChild(held[held.size() - 2]);
    }
    document.appendChild(held.back());
    EXPECT_EQ(domText(document, -1),
              QByteArray("<a>").repeated(DEPTH - 1) + "<a/>" + QByteArray("</a>").repeated(DEPTH - 1));

    QDomDocument wide = withRoot();
    appendElement(wide.documentElement(), "b");
    EXPECT_THROW(domText(wide, std::numeric_limits<int>::max()), KORV_OperationFailed);
}

}
