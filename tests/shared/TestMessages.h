#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

/// Keeps what is written to Qt's debug channel while it lives, instead of showing it. Messages of
/// other kinds are kept too, with their kind in front, so that no test mistakes them for debug
/// messages.
class TestMessages
{
public:
    TestMessages()
        : before_(qInstallMessageHandler(keep))
    {
        kept().clear();
    }

    ~TestMessages() { qInstallMessageHandler(before_); }

    QStringList lines() const { return kept(); }

private:
    Q_DISABLE_COPY(TestMessages)

    static QStringList &kept()
    {
        static QStringList lines;
        return lines;
    }

    static void keep(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        kept().append(type == QtDebugMsg ? text : QStringLiteral("%1: %2").arg(type).arg(text));
    }

    QtMessageHandler before_;
};
