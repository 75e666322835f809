#include "Messages.h"

#include <QtCore/QMutex>

namespace SystemReport {

namespace {

constexpr int MaxMessages = 100;

QMutex &mutex()
{
    static QMutex lock;
    return lock;
}

QStringList &texts()
{
    static QStringList kept;
    return kept;
}

void keep(QtMsgType, const QMessageLogContext &, const QString &text)
{
    const QMutexLocker locker(&mutex());
    if (texts().size() < MaxMessages)
        texts() << text;
}

} // namespace

void collectMessages()
{
    qInstallMessageHandler(keep);
}

Section messages()
{
    const QMutexLocker locker(&mutex());
    Section section;
    section.title = QStringLiteral("Messages");
    section.remark = QStringLiteral("Written by the library while the report was made.");
    for (const QString &text : qAsConst(texts()))
        section.rows << QStringList{QString::number(section.rows.size() + 1), text};
    return section;
}

} // namespace SystemReport
