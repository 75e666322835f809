#pragma once

#include <Utility/Export.h>

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QVector>

namespace Vorn::Util {

/// \ingroup values
/// Base class of enumerations whose members can be looked up by name and by value at run time.
///
/// \snippet docs/samples/values.cpp enum
/// \snippet docs/samples/values.cpp enum lookup
///
/// The constructors that take a name register a new member, usually as a static object. Members are
/// never removed. All modules of the process share the registered members. The id of a member is
/// its index in its type, in the order of registration. If a name or value is registered twice, a
/// lookup finds the first one.
///
/// Threads: register all members before other threads look them up. There is no lock.
class VORNUTILITY_EXPORT Enum
{
public:
    /// Destroys the object. The member stays registered.
    ~Enum() = default;

    /// The number of members of \a type; 0 if the type is unknown.
    static int count(const QString &type);

    /// The first member of \a type with the name \a string, in the same letter case. If there is
    /// none, the result is invalid.
    static Enum fromString(const QString &type, const QString &string);

    /// The first member of \a type with the value \a value. If there is none, the result is
    /// invalid.
    static Enum fromValue(const QString &type, int value);

    /// The name; empty for an invalid member.
    QString toString() const;

    /// The value; -1 for an invalid member.
    int toValue() const;

    /// False for the result of a lookup that found nothing.
    bool isValid() const;

    /// Compares type and id.
    bool operator==(const Enum &other) const;

    /// The opposite of `==`.
    bool operator!=(const Enum &other) const;

protected:
    static const int Invalid = -1; ///< the id of an invalid member; can be used in a `case`

    /// An invalid member without a type.
    Enum();

    /// The registered member \a id of \a type. Registers nothing.
    Enum(const QString &type, int id);

    /// Registers a new member.
    Enum(const QString &type, const QString &string, int value);

    /// Registers a new member whose value is its id, also if an earlier member has another value
    /// than its id. After "A" and "B" = 10 the member "C" gets the value 2, not 11.
    /// Kept for compatibility: see "Automatic values" in docs/compatibility.md.
    Enum(const QString &type, const QString &string);

    /// The same member of the same type. Registers nothing.
    Enum(const Enum &other);

    /// Becomes the same member of the same type.
    Enum &operator=(const Enum &other);

    /// The index of the member in its type; Invalid for an invalid member.
    int id() const;

private:
    void init(const QString &type, const QString &string, int value);
    static QHash<QString, QVector<QString>> &strings();
    static QHash<QString, QVector<int>> &values();
    static QHash<QString, int> &count();

    QString type_;
    int id_;
};

} // namespace Vorn::Util
