#pragma once

#include <Utility/Export.h>

#include <QtCore/QString>
#include <QtXml/QDomDocument>

// <sys/sysmacros.h> defines macros of these names; the class comment says what follows from that.
#ifdef major
#undef major
#endif
#ifdef minor
#undef minor
#endif

namespace Vorn::Util {

/// A release of the product: major, minor and patch number, and a development stage that is
/// carried but neither compared nor written.
///
/// \code
/// if (Version(QStringLiteral("23.1.12")) < Version::Current)
///     convert();
/// \endcode
///
/// A plain value; any thread may use it. A version that could not be read is 0.0.0 and invalid.
///
/// \note This header removes the macros `major` and `minor` that glibc's `<sys/sysmacros.h>`
/// defines. A program that includes both headers uses `gnu_dev_major()` and `gnu_dev_minor()`
/// instead.
class VORNUTILITY_EXPORT Version
{
public:
    // The numbers of this build.
    static const int Major = 24;
    static const int Minor = 0;
    static const int Patch = 75;
    static const int Hotfix = 1;
    static const int DevStage = 0;

    static const Version Current;        ///< 24.0.75
    static const Version CurrentRelease; ///< 24.0.1: its patch is the hotfix number
    static const QString Public;         ///< "2024", the public name of this build

    constexpr Version(int major = 0, int minor = 0, int patch = 0, int developmentStage = 0)
        : major_(major)
        , minor_(minor)
        , patch_(patch)
        , developmentStage_(developmentStage)
    {
    }

    /// 0.0.0, then fromString().
    Version(const QString &text);

    void setVersion(int major, int minor, int patch, int developmentStage);

    constexpr int major() const { return major_; }
    constexpr int minor() const { return minor_; }
    constexpr int patch() const { return patch_; }
    constexpr int developmentStage() const { return developmentStage_; }
    void setDevelopmentStage(int developmentStage);

    /// True when the major number is not 0.
    constexpr bool isValid() const { return major_ != 0; }

    /// Reads "MAJOR.MINOR.PATCH"; a part that is no number gives 0. A text of more or fewer parts
    /// changes nothing.
    void fromString(const QString &text);

    /// "24.0.75".
    QString toString() const;

    /// "v9", "v10", "2010", "2011" for the majors 9 to 12, for any other the number itself.
    QString toPublic() const;

    /// Reads the children "major", "minor" and "patch"; a patch that is 0 or missing is read from
    /// "build", as older files have it. The stage stays.
    void fromElement(const QDomElement &element);

    /// A new element "version" of \a document, which the caller puts into its place.
    QDomElement toElement(QDomDocument &document) const;

    /// The name of the source branch that the library was built from; empty for a build from no
    /// named branch.
    static QString Branch();

    bool operator==(const Version &other) const;
    bool operator!=(const Version &other) const;
    bool operator<(const Version &other) const;
    bool operator<=(const Version &other) const;
    bool operator>(const Version &other) const;
    bool operator>=(const Version &other) const;

private:
    int major_;
    int minor_;
    int patch_;
    int developmentStage_;
};

} // namespace Vorn::Util
