#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtXml/QDomDocument>

namespace Vorn::Util {

/// \ingroup values
/// Helper functions for small XML documents with the DOM classes of Qt. Static members only. They
/// have no state: any thread may call them for a document of its own.
///
/// \snippet docs/samples/values.cpp xml
class VORNUTILITY_EXPORT Xml
{
public:
    /// There are no objects of this class.
    explicit Xml() = delete; // explicit: Xml{} does not compile either

    /// "true" or "false".
    static QString boolToString(bool value);

    /// True for "true" and "Y" in this letter case, false for every other text.
    static bool stringToBool(const QString &text);

    /// Creates an element of \a document with a text node. The caller must insert the element into
    /// the document.
    static QDomElement textElement(const QString &tagName, const QString &text,
                                   QDomDocument &document);

    /// The text of the first child of \a element with the name \a name. Returns \a defaultValue if
    /// there is none, and an empty string if the child is empty. A processing instruction with this
    /// name counts as an empty child.
    ///
    /// Only the first node of the child is read: for `<a>one<!-- -->two</a>` the result is
    /// "one". If the first node is a comment, the result is the text of the comment. If it is an
    /// element, the result is empty.
    static QString valueOf(const QString &name, const QDomElement &element,
                           const QString &defaultValue);
};

} // namespace Vorn::Util
