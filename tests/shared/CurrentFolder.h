#pragma once

#include <QtCore/QDir>
#include <QtCore/QString>

/// Makes a folder the current one of the process while the object lives.
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
