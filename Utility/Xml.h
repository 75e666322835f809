#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtXml/QDomDocument>

namespace Vorn::Util {

/// Helpers for small XML documents built with the Qt DOM. Static members only; stateless.
///
/// \code
/// QDomElement root = document.documentElement();
/// root.appendChild(Xml::textElement("cores", "8", document));
/// int cores = Xml::valueOf("cores", root, "1").toInt();
/// \endcode
class VORNUTILITY_EXPORT Xml
{
public:
    explicit Xml() = delete; // explicit: Xml{} does not compile either

    /// "true" or "false".
    static QString boolToString(bool value);

    /// True for exactly "true" and "Y", false for every other text.
    static bool stringToBool(const QString &text);

    /// Creates an element that holds one text node. It belongs to \a document but stands nowhere
    /// in it yet: the caller appends it to its parent.
    static QDomElement textElement(const QString &tagName, const QString &text,
                                   QDomDocument &document);

    /// The text of the first child of \a element named \a name. Returns \a defaultValue when there
    /// is no such child, and an empty string when the child is empty.
    ///
    /// Only the first node of that child counts: of `<a>one<!-- -->two</a>` the result is "one",
    /// and a child that begins with a comment gives the comment's text, one that begins with an
    /// element gives an empty string.
    static QString valueOf(const QString &name, const QDomElement &element,
                           const QString &defaultValue);
};

} // namespace Vorn::Util
