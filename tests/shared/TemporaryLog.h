#pragma once

#include <Utility/Log.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <initializer_list>

/// An open log in a folder of its own, whose lines carry no time.
class TemporaryLog
{
public:
    TemporaryLog()
        : log_(folder_.filePath(QStringLiteral("run.log")), Vorn::Util::Log::NoFileTimeStamp)
    {
        log_.setTimeStamp(Vorn::Util::Log::NoTimeStamp);
        if (!log_.open(false))
            qFatal("No log for the test");
    }

    operator Vorn::Util::Log *() { return &log_; }

    QString fileName() const { return log_.name(); }

    /// The lines on disk, without the blank that stands in front of each.
    QStringList lines() const
    {
        QFile file(fileName());
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            qFatal("The test's log cannot be read");
        QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
        if (!lines.takeLast().isEmpty())
            qFatal("The test's log ends within a line");
        for (QString &line : lines)
            line.remove(0, 1);
        return lines;
    }

    /// The lines with "TIME" for every duration.
    QStringList linesWithoutTimes() const
    {
        const QRegularExpression duration(QStringLiteral(" in ([0-9]+:)*[0-9]+\\.[0-9]{2}( sec)?"));
        return lines().replaceInStrings(duration, QStringLiteral(" in TIME"));
    }

private:
    QTemporaryDir folder_;
    Vorn::Util::Log log_;
};

inline QStringList texts(std::initializer_list<const char *> texts)
{
    QStringList list;
    for (const char *text : texts)
        list.append(QString::fromUtf8(text));
    return list;
}
