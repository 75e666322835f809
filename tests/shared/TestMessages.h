#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QtGlobal>

/// Keeps what is written to Qt's debug channel while it lives, instead of showing it. Messages of
/// other kinds and categories are kept too, with kind and category in front, so that no test
/// mistakes them for debug messages of the library.
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

    static void keep(QtMsgType type, const QMessageLogContext &context, const QString &text)
    {
        const QString category = QString::fromLatin1(context.category);
        const bool isOwn = type == QtDebugMsg && category == QLatin1String("vorn.utility");
        kept().append(
            isOwn ? text : QStringLiteral("%1 %2: %3").arg(QString::number(type), category, text));
    }

    QtMessageHandler before_;
};
