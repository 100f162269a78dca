#pragma once
// Building XML as a tree, and saving it. QDomDocument saves the attributes of an
// element in the order of a hash whose seed changes from process to process; exports
// of the same project have to be the same bytes, so they are saved here.

#include "Core/ExportApi.h"

#include <QByteArray>
#include <QDomDocument>

namespace Export
{

/// The text of a document in UTF-8: the bytes of `QDomDocument::toByteArray(indent)`,
/// but with the attributes of each element ascending by name, compared by code units
/// (as are the entities and notations of a document type).
///
/// What isn't XML 1.0 doesn't reach the text:
/// - Control characters other than tab, line feed and carriage return, surrogates
///   without their partner, U+FFFE and U+FFFF become U+FFFD.
/// - "]]>" ends a CDATA section in its middle, and the next one goes on. A blank parts
///   "--" in comments and "?>" in processing instructions.
/// - Names that can't stand in a tag are refused, and so are two attributes of one name.
///
/// Beyond that the tree is taken as it was built, at any depth: that there is one root,
/// that the XML declaration comes first, and that prefixes and entities are declared is
/// up to the caller.
///
/// @param indent blanks for each level; with -1 there is no white space but the line ends
///        that follow comments and processing instructions
/// @throws KORV_BadArgument for such names, and when the document declares another
///         encoding than UTF-8
/// @throws KORV_OperationFailed when the text is longer than TextBuffer::LARGEST
MARLO_EXPORT_API QByteArray domText(QDomDocument const& document, int indent = 1);

/// Adds an element at the end of a node, which may be the document itself.
/// @throws KORV_BadArgument when the name is empty or the parent null, as a QDomDocument
///         made without arguments is before its first node
MARLO_EXPORT_API QDomElement appendElement(QDomNode parent, QString const& name);

/// The same with a text inside. An empty text is a text too: `<name></name>`.
MARLO_EXPORT_API QDomElement appendElement(QDomNode const& parent, QString const& name, QString const& text);

}
