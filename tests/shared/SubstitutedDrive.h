#pragma once

#include <QtCore/QDir>
#include <QtCore/QLibrary>
#include <QtCore/QString>

/// A drive of Windows that stands for a folder while the object lives, as the program "subst" makes
/// one.
class SubstitutedDrive
{
public:
    explicit SubstitutedDrive(const QString &folder)
        : folder_(folder)
    {
        for (char letter = 'D'; letter <= 'Y' && name_.isEmpty(); ++letter) {
            const QString name = QLatin1Char(letter) + QStringLiteral(":");
            if (!QDir(name + QLatin1Char('/')).exists() && define(0, name))
                name_ = name;
        }
    }
    ~SubstitutedDrive()
    {
        constexpr quint32 RemoveDefinition = 2;
        if (!name_.isEmpty())
            define(RemoveDefinition, name_);
    }
    Q_DISABLE_COPY(SubstitutedDrive)

    QString name() const { return name_; } // empty when there is none

private:
    bool define(quint32 flags, const QString &name) const
    {
        using Function = int (*)(quint32, const ushort *, const ushort *);
        const auto function = reinterpret_cast<Function>(
            QLibrary::resolve(QStringLiteral("kernel32"), "DefineDosDeviceW"));
        return function && function(flags, name.utf16(), folder_.utf16()) != 0;
    }

    QString folder_;
    QString name_;
};
