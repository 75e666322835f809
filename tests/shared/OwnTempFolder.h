#pragma once

#include "TestFolder.h"

#include <Utility/System.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QVector>

#include <array>

/// The environment variables that name the folder for temporary files on the supported systems.
constexpr std::array<const char *, 3> TempVariables{"TMPDIR", "TMP", "TEMP"};

/// Makes System::getTempDirPath() return a folder that no other process uses. Create the object
/// before the first call of that function, which keeps its result. The environment is the same
/// afterwards, so that the tests' other temporary files lie elsewhere.
class OwnTempFolder
{
public:
    OwnTempFolder()
        : path_(QDir(folder_.path()).canonicalPath() + QStringLiteral("/temp"))
    {
        QDir().mkpath(path_);
        struct Variable
        {
            const char *name;
            QByteArray before;
        };
        QVector<Variable> variables;
        for (const char *name : TempVariables) {
            variables.append({name, qgetenv(name)});
            qputenv(name, QFile::encodeName(QDir::toNativeSeparators(path_)));
        }
        isUsed_ = QDir(Vorn::Util::System::getTempDirPath()).canonicalPath() == path_;
        for (const Variable &variable : qAsConst(variables)) {
            if (variable.before.isEmpty())
                qunsetenv(variable.name);
            else
                qputenv(variable.name, variable.before);
        }
    }

    /// False when the folder could not be made or the function had been called before.
    bool isUsed() const { return isUsed_; }

    QString path() const { return path_; }
    QString filePath(const QString &name) const { return path_ + QLatin1Char('/') + name; }

private:
    Q_DISABLE_COPY(OwnTempFolder)

    TestFolder folder_;
    QString path_;
    bool isUsed_ = false;
};
