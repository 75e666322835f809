#pragma once

#include <QtCore/QDir>
#include <QtCore/QString>

/// The current folder of the process while the object lives; the one before comes back.
class CurrentFolder
{
public:
    explicit CurrentFolder(const QString &folder)
        : before_(QDir::currentPath())
        , isUsed_(QDir::setCurrent(folder))
    {
    }
    ~CurrentFolder() { QDir::setCurrent(before_); }

    /// False when the folder cannot be entered.
    bool isUsed() const { return isUsed_; }

private:
    Q_DISABLE_COPY(CurrentFolder)

    QString before_;
    bool isUsed_;
};
