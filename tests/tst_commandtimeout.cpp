#include "HelperProgram.h"
#include "TestSystem.h"

#include <Utility/Command.h>

#include <QtCore/QElapsedTimer>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

using namespace Vorn::Util;

class tst_CommandTimeout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aHangingCommandIsStoppedAfter30Seconds();
};

namespace {

QString scriptLine(const QString &arguments)
{
    return QStringLiteral("%1\"%2\" %3\n")
        .arg(onWindows() ? QStringLiteral("@") : QString(),
             QDir::toNativeSeparators(helperProgram()), arguments);
}

} // namespace

// What it has printed so far is returned, and the rest of its script is never run. The program
// that the interpreter waited for learns of the end by the end of its input.
void tst_CommandTimeout::aHangingCommandIsStoppedAfter30Seconds()
{
    const QString start = QDir::currentPath();
    const QTemporaryDir folder;
    QVERIFY(QDir::setCurrent(folder.path()));
    const QString output = QStringLiteral("first\r\nsecond\r\nunfinished");
    const QString command = scriptLine(QStringLiteral("hang %1 ended.txt")
                                           .arg(QString::fromLatin1(output.toLatin1().toHex())))
        + scriptLine(QStringLiteral("copy ended.txt rest.txt"));

    QElapsedTimer timer;
    timer.start();
    QCOMPARE(Command().run(command, 100, false), output);
    QVERIFY2(timer.elapsed() >= 29900, "stopped too early");
    QVERIFY(!QFile::exists(QStringLiteral("work.bat")));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(QStringLiteral("ended.txt")), 30000);
    QVERIFY(!QFile::exists(QStringLiteral("rest.txt")));
    QVERIFY(QDir::setCurrent(start));
}

QTEST_GUILESS_MAIN(tst_CommandTimeout)

#include "tst_commandtimeout.moc"
