#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtXml/QDomDocument>

// <sys/sysmacros.h> defines macros with these names; see the note at the class.
#ifdef major
#undef major
#endif
#ifdef minor
#undef minor
#endif

namespace Vorn::Util {

/// \ingroup values
/// The version number of a release of the product: major, minor and patch number. A version also
/// has a development stage, which is neither compared nor converted to text or XML.
///
/// \snippet docs/samples/values.cpp version
///
/// A default-constructed version is 0.0.0, which is not valid. Objects can be copied; any thread
/// may use this class.
///
/// \note This header removes the macros `major` and `minor` that glibc's `<sys/sysmacros.h>`
/// defines. A program that includes both headers uses `gnu_dev_major()` and `gnu_dev_minor()`
/// instead.
class VORNUTILITY_EXPORT Version
{
public:
    static const int Major = 24;   ///< the major number of this library
    static const int Minor = 0;    ///< the minor number of this library
    static const int Patch = 75;   ///< the patch number of this library
    static const int Hotfix = 1;   ///< the number of the release; see CurrentRelease
    static const int DevStage = 0; ///< the development stage of this library

    static const Version Current;        ///< 24.0.75
    static const Version CurrentRelease; ///< 24.0.1; its patch number is Hotfix
    static const QString Public;         ///< "2024", the public name of the release

    /// The version with these numbers. They are not checked.
    constexpr Version(int major = 0, int minor = 0, int patch = 0, int developmentStage = 0)
        : major_(major)
        , minor_(minor)
        , patch_(patch)
        , developmentStage_(developmentStage)
    {
    }

    /// Reads \a text with fromString(). The version is 0.0.0 if \a text does not have three parts.
    Version(const QString &text);

    /// Sets all four numbers. They are not checked.
    void setVersion(int major, int minor, int patch, int developmentStage);

    constexpr int major() const { return major_; } ///< The first number.
    constexpr int minor() const { return minor_; } ///< The second number.
    constexpr int patch() const { return patch_; } ///< The third number.

    /// A number of the caller, which the class only stores.
    constexpr int developmentStage() const { return developmentStage_; }

    /// Sets developmentStage().
    void setDevelopmentStage(int developmentStage);

    /// Whether the major number is not 0.
    constexpr bool isValid() const { return major_ != 0; }

    /// Reads "MAJOR.MINOR.PATCH" and sets the development stage to 0. A part that is not a number
    /// is read as 0. If \a text has not exactly three parts, nothing changes.
    void fromString(const QString &text);

    /// The version as text, for example "24.0.75".
    QString toString() const;

    /// The public name of the major number: "v9", "v10", "2010" and "2011" for 9 to 12, otherwise
    /// the number itself. For 24 it is "24"; the public name of this release is Public.
    /// Kept for compatibility: see "Public names of versions" in docs/compatibility.md.
    QString toPublic() const;

    /// Reads the child elements "major", "minor" and "patch". If "patch" is 0 or missing, the child
    /// element "build" of older files is read instead. A text that is not a number is read as 0.
    /// The development stage does not change.
    void fromElement(const QDomElement &element);

    /// Creates an element "version" in \a document with the child elements "major", "minor" and
    /// "patch". The caller inserts it into the document.
    QDomElement toElement(QDomDocument &document) const;

    /// The name of the source branch that the library was built from; empty if it was not built
    /// from a branch.
    static QString Branch();

    /// Compares the major, minor and patch number. No comparison looks at the development stage.
    bool operator==(const Version &other) const;

    bool operator!=(const Version &other) const; ///< The opposite of `==`.

    /// Compares the major numbers; if they are equal, the minor numbers, and then the patch
    /// numbers.
    bool operator<(const Version &other) const;

    bool operator<=(const Version &other) const; ///< The opposite of `>`.
    bool operator>(const Version &other) const;  ///< Like `<` with exchanged sides.
    bool operator>=(const Version &other) const; ///< The opposite of `<`.

private:
    int major_;
    int minor_;
    int patch_;
    int developmentStage_;
};

} // namespace Vorn::Util
