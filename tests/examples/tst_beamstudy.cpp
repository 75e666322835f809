#include "BeamStudy.h"

#include <QtCore/QFileInfo>

// The study in examples/cluster_study/beam: a real program with known results.
class TestBeamStudy : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void aKilledAndResumedStudyAgreesWithTheory();
    void aWrongDeflectionIsNoticed();
};

void TestBeamStudy::initTestCase()
{
    const QString missing = BeamStudy::missingProgram();
    if (!missing.isEmpty())
        QSKIP(qPrintable(missing));
}

void TestBeamStudy::aKilledAndResumedStudyAgreesWithTheory()
{
    BeamStudy study;
    QVERIFY(study.cases().size() >= 40);
    QCOMPARE(study.runKilledAndResumed({}), QString());
    QVERIFY(QFileInfo(study.outputFile(QStringLiteral("results.7z"))).size() > 0);
}

// The deflection of a beam that is 1 percent shorter than its row says.
void TestBeamStudy::aWrongDeflectionIsNoticed()
{
    BeamStudy study(1);
    QVERIFY2(study.run({}) == 0, study.output().constData());
    QFile table(study.outputFile(QStringLiteral("results.csv")));
    QVERIFY(table.open(QIODevice::ReadWrite));
    const QByteArray content = table.readAll();
    QVERIFY(content.contains("400,20,40,250"));
    const Row row = study.table().first();
    const QByteArray deflection = row.value(QStringLiteral("deflection")).toLatin1();
    const QByteArray other = QByteArray::number(deflection.toDouble() * 0.97);
    QVERIFY(!deflection.isEmpty());
    table.resize(0);
    table.seek(0);
    table.write(QByteArray(content).replace(deflection, other));
    table.close();
    QVERIFY(study.problem().startsWith(QLatin1String("Case 1 deviates by -0.03")));
}

QTEST_GUILESS_MAIN(TestBeamStudy)

#include "tst_beamstudy.moc"
