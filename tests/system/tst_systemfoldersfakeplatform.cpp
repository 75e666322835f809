// Folders on a fake platform. Each test function runs this program again as a child process, whose
// platform it sets up.

#include "../helper/systemcalls.h"
#include "FakePlatform.h"
#include "SystemCalls.h"
#include "TestFiles.h"
#include "TestSystem.h"

#include <Utility/Registry.h>

#include <QtCore/QFile>
#include <QtCore/QHash>
#include <QtCore/QTemporaryDir>
#include <QtTest/QtTest>

#include <array>

using namespace Vorn::Util;

namespace {

using Platform::SettingsValue;

QString native(const QString &path)
{
    return QDir::toNativeSeparators(path);
}

QString withProductFolder(const QString &root)
{
    return native(root + QStringLiteral("/Vantorel/VORN 2024"));
}

// The answer of the platform, passed to the child process as "platform.FUNCTION=ANSWER".
QString answer(const char *function, const QString &text)
{
    return QStringLiteral("platform.%1=%2").arg(QString::fromLatin1(function), text);
}

// "platform.variable=NAME=VALUE", "platform.setting=NAME=VALUE"
QString answer(const char *function, const char *name, const QString &text)
{
    return answer(function, QString::fromLatin1(name) + QLatin1Char('=') + text);
}

// "platform.settingsFailure=OUTCOME|CODE|MESSAGE"
QString settingsFailure(SettingsValue::Outcome outcome, int code, const QString &message)
{
    return answer("settingsFailure", QStringLiteral("%1|%2|").arg(outcome).arg(code) + message);
}

void answerSettings(const QString &name, const QString &text)
{
    fakePlatform().readSettingsValue = [name, text](const QString &key, const QString &asked) {
        const bool found = key == QLatin1String("SOFTWARE\\Vantorel\\VORN\\24.0") && asked == name;
        return SettingsValue{found ? SettingsValue::Found : SettingsValue::NoKey,
                             found ? text : QString(), 2, QStringLiteral("Not found\n")};
    };
}

void answerSettingsFailure(const QStringList &parts)
{
    const auto outcome = static_cast<SettingsValue::Outcome>(parts.value(0).toInt());
    const SettingsValue failure{outcome, QString(), parts.value(1).toInt(), parts.value(2)};
    fakePlatform().readSettingsValue
        = [failure](const QString &, const QString &) { return failure; };
}

bool answerPlatform(const QString &function, const QString &text)
{
    FakePlatform &platform = fakePlatform();
    const QString name = text.section(QLatin1Char('='), 0, 0);
    const QString value = text.section(QLatin1Char('='), 1);
    const auto constant = [text] { return text; };
    // The product's folder lies below these: the platform gets its name.
    const auto constantForMaker = [text](const QString &maker) {
        return maker == QLatin1String("Vantorel") ? text : QStringLiteral("unknown maker");
    };
    if (function == QLatin1String("commonApplicationDataFolder")) {
        platform.commonApplicationDataFolder = constantForMaker;
    } else if (function == QLatin1String("publicDocumentsRoot")) {
        platform.publicDocumentsRoot = constantForMaker;
    } else if (function == QLatin1String("userDataRoot")) {
        platform.userDataRoot = constant;
    } else if (function == QLatin1String("programFile")) {
        platform.programFile = constant;
    } else if (function == QLatin1String("variable")) {
        platform.environmentVariable = [name, value](const char *asked) {
            return name == QLatin1String(asked) ? value : QString();
        };
    } else if (function == QLatin1String("setting")) {
        answerSettings(name, value);
    } else if (function == QLatin1String("settingsFailure")) {
        answerSettingsFailure(text.split(QLatin1Char('|')));
    } else {
        return false;
    }
    return true;
}

int runAsChild(const QStringList &steps)
{
    SystemCalls calls;
    const QString prefix = QStringLiteral("platform.");
    for (const QString &step : steps) {
        const QString function = step.section(QLatin1Char('='), 0, 0);
        const bool done = function.startsWith(prefix)
            ? answerPlatform(function.mid(prefix.size()), step.section(QLatin1Char('='), 1))
            : calls.run(step);
        if (!done)
            return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}

QString childBehaviour()
{
    return QStringLiteral("child");
}

SystemOutcome run(const QStringList &steps)
{
    return runSystemCalls(QCoreApplication::applicationFilePath(), childBehaviour(), steps);
}

} // namespace

class TestSystemFoldersFakePlatform : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void programDataLiesInTheCommonFolder();
    void allUsersDataLieInThePublicDocuments();
    void userDataLieBelowTheirRoot();
    void withoutTheVariablePublicDocumentsLieInTheDoubledFolder();
    void anEmptyVariableIsNone();
    void tutorialsWithoutTheVariable();
    void ruleAndTemplateFoldersAreCreatedByEveryCall();
    void ruleAndTemplateFoldersThatCannotBeCreatedAreEmpty();

    void programFolderIsThatOfTheProgramFile();
    void programFolderIsThatOfTheMainProgramFirst();
    void aFolderIsNoMainProgram();
    void withoutAProgramFileTheSettingCounts_data();
    void withoutAProgramFileTheSettingCounts();
    void withoutAProgramFileTheVariableDoesNotCount();
    void whatIsNotFoundIsLookedForAgain();

    void aKeyThatCannotBeOpenedIsPrinted();
    void aValueThatCannotBeReadIsPrinted();
    void printedTextsAreNotExpanded();
    void theKeyAndTheNameArePassedOn();

private:
    QTemporaryDir folder_;
    QString here_; // a folder for the test function
    int functions_ = 0;
};

void TestSystemFoldersFakePlatform::init()
{
    here_ = folder_.filePath(QString::number(++functions_));
    QVERIFY(QDir().mkdir(here_));
    fakePlatform() = FakePlatform();
}

void TestSystemFoldersFakePlatform::programDataLiesInTheCommonFolder()
{
    const SystemOutcome outcome
        = run({answer("commonApplicationDataFolder", native(QStringLiteral("/common data"))),
               QStringLiteral("getProgramDataPath=VORN 2024"),
               QStringLiteral("getProgramDataPath=%1%2")});
    QCOMPARE(outcome.results,
             (QStringList{native(QStringLiteral("/common data/Vantorel/VORN 2024")),
                          native(QStringLiteral("/common data/Vantorel/%1%2"))}));
    QVERIFY(!QFileInfo::exists(QStringLiteral("/common data")));
}

void TestSystemFoldersFakePlatform::allUsersDataLieInThePublicDocuments()
{
    QCOMPARE(run({answer("publicDocumentsRoot", here_ + QLatin1Char('/')),
                  QStringLiteral("getAllUsersDataPath"),
                  answer("publicDocumentsRoot", QStringLiteral("/other/")),
                  QStringLiteral("getAllUsersDataPath")})
                 .results,
             (QStringList{withProductFolder(here_), withProductFolder(here_)}));
    QVERIFY(QDir(here_).isEmpty());
}

void TestSystemFoldersFakePlatform::userDataLieBelowTheirRoot()
{
    QCOMPARE(
        run({answer("userDataRoot", here_ + QLatin1Char('/')), QStringLiteral("getUserDataPath"),
             answer("userDataRoot", QStringLiteral("/other/")), QStringLiteral("getUserDataPath")})
            .results,
        (QStringList{withProductFolder(here_), withProductFolder(here_)}));
    QVERIFY(QDir(here_).isEmpty());
}

void TestSystemFoldersFakePlatform::withoutTheVariablePublicDocumentsLieInTheDoubledFolder()
{
    const QString expected = withProductFolder(withProductFolder(here_));
    const SystemOutcome outcome = run({answer("commonApplicationDataFolder", native(here_)),
                                       QStringLiteral("getPublicDocumentsDirPath"),
                                       QStringLiteral("getProgramDataPath=VORN 2024")});
    QCOMPARE(outcome.results, (QStringList{expected, withProductFolder(here_)}));
    QCOMPARE(outcome.messages, QStringList());
    QVERIFY(QFileInfo(expected).isDir());
}

void TestSystemFoldersFakePlatform::anEmptyVariableIsNone()
{
    QCOMPARE(
        run({answer("commonApplicationDataFolder", native(here_)),
             answer("variable", "PUBLIC", QString()), QStringLiteral("getPublicDocumentsDirPath")})
            .results,
        QStringList{withProductFolder(withProductFolder(here_))});
}

void TestSystemFoldersFakePlatform::tutorialsWithoutTheVariable()
{
    const QString expected
        = native(withProductFolder(withProductFolder(here_)) + QStringLiteral("/Tutorials"));
    QCOMPARE(run({answer("commonApplicationDataFolder", native(here_)),
                  QStringLiteral("getTutorialsDirPath")})
                 .results,
             QStringList{expected});
    QVERIFY(QFileInfo(expected).isDir());
}

void TestSystemFoldersFakePlatform::ruleAndTemplateFoldersAreCreatedByEveryCall()
{
    const QString rule = native(withProductFolder(here_) + QStringLiteral("/Rule"));
    const QString templates = native(withProductFolder(here_) + QStringLiteral("/Template"));
    QCOMPARE(run({answer("userDataRoot", here_ + QLatin1Char('/')),
                  QStringLiteral("getRuleDirPath"), QStringLiteral("getTemplateDirPath"),
                  QStringLiteral("removeFolder=") + withProductFolder(here_),
                  QStringLiteral("getRuleDirPath"), QStringLiteral("getTemplateDirPath")})
                 .results,
             (QStringList{rule, templates, rule, templates}));
    QVERIFY(QFileInfo(rule).isDir());
    QVERIFY(QFileInfo(templates).isDir());
}

void TestSystemFoldersFakePlatform::ruleAndTemplateFoldersThatCannotBeCreatedAreEmpty()
{
    const QString file = here_ + QStringLiteral("/file");
    QVERIFY(writeFile(file, QByteArray()));
    const SystemOutcome outcome
        = run({answer("userDataRoot", file + QLatin1Char('/')), QStringLiteral("getRuleDirPath"),
               QStringLiteral("getTemplateDirPath"), QStringLiteral("getUserDataPath")});
    QCOMPARE(outcome.results, (QStringList{QString(), QString(), withProductFolder(file)}));
    QCOMPARE(outcome.messages, QStringList());
}

void TestSystemFoldersFakePlatform::programFolderIsThatOfTheProgramFile()
{
    const QString folder = native(QFileInfo(here_).absoluteFilePath());
    const SystemOutcome outcome
        = run({answer("programFile", native(here_ + QStringLiteral("/program.exe"))),
               answer("setting", "InstallationDirectory", QStringLiteral("/setting")),
               QStringLiteral("getCurrentExePath"),
               answer("programFile", QStringLiteral("/other/program.exe")),
               QStringLiteral("getCurrentExePath"),
               QStringLiteral("getProgramFilesPathFromRegistry=false")});
    QCOMPARE(outcome.results, (QStringList{folder, folder, folder}));
}

void TestSystemFoldersFakePlatform::programFolderIsThatOfTheMainProgramFirst()
{
    const QFileInfo original(QCoreApplication::applicationFilePath());
    const QString program = here_ + QLatin1Char('/') + original.fileName();
    QVERIFY(QFile::copy(original.filePath(), program));
    QVERIFY(writeFile(here_ + QStringLiteral("/VORN.exe"), QByteArray()));
    QCOMPARE(runSystemCalls(program, childBehaviour(),
                            {answer("programFile", QStringLiteral("/other/program.exe")),
                             QStringLiteral("getCurrentExePath")})
                 .results,
             QStringList{native(QFileInfo(here_).canonicalFilePath())});
}

void TestSystemFoldersFakePlatform::aFolderIsNoMainProgram()
{
    const QFileInfo original(QCoreApplication::applicationFilePath());
    const QString program = here_ + QLatin1Char('/') + original.fileName();
    QVERIFY(QFile::copy(original.filePath(), program));
    QVERIFY(QDir(here_).mkdir(QStringLiteral("VORN.exe")));
    const QString other = folder_.filePath(QStringLiteral("other"));
    QCOMPARE(runSystemCalls(program, childBehaviour(),
                            {answer("programFile", other + QStringLiteral("/program.exe")),
                             QStringLiteral("getCurrentExePath")})
                 .results,
             QStringList{native(other)});
}

void TestSystemFoldersFakePlatform::withoutAProgramFileTheSettingCounts_data()
{
    QTest::addColumn<QString>("setting");
    QTest::addColumn<QString>("programFolder");
    QTest::addColumn<QString>("installationFolder");

    const QString folder = QStringLiteral("/opt/VORN");
    const QString slash = QStringLiteral("/");
    const QString backslash = QStringLiteral("\\");
    QTest::newRow("plain") << folder << folder << folder;
    QTest::newRow("with /") << folder + slash << folder << folder;
    QTest::newRow("with \\") << folder + backslash << folder << folder;
    QTest::newRow("with two") << folder + slash + slash << folder << folder + slash;
    QTest::newRow("mixed") << folder + backslash + slash << folder << folder + backslash;
}

// A separator at its end is taken off by both functions, one each.
void TestSystemFoldersFakePlatform::withoutAProgramFileTheSettingCounts()
{
    QFETCH(QString, setting);
    QFETCH(QString, programFolder);
    QFETCH(QString, installationFolder);

    const QString settings = answer("setting", "InstallationDirectory", setting);
    QCOMPARE(run({settings, QStringLiteral("getCurrentExePath"),
                  QStringLiteral("getProgramFilesPathFromRegistry=true")})
                 .results,
             (QStringList{native(programFolder), native(programFolder)}));
    QCOMPARE(run({settings, QStringLiteral("getProgramFilesPathFromRegistry=true")}).results,
             QStringList{native(installationFolder)});
}

void TestSystemFoldersFakePlatform::withoutAProgramFileTheVariableDoesNotCount()
{
    QCOMPARE(run({answer("variable", "TAVELINE2024DIR", QStringLiteral("/variable")),
                  QStringLiteral("getCurrentExePath"),
                  QStringLiteral("getProgramFilesPathFromRegistry=false"),
                  QStringLiteral("getCurrentExePath")})
                 .results,
             (QStringList{QString(), native(QStringLiteral("/variable")),
                          native(QStringLiteral("/variable"))}));
}

void TestSystemFoldersFakePlatform::whatIsNotFoundIsLookedForAgain()
{
    const QString folder = native(QStringLiteral("/found"));
    const SystemOutcome outcome
        = run({QStringLiteral("getCurrentExePath"), QStringLiteral("getAnalyzeDirPath"),
               answer("setting", "AnalyzeDirectory", QStringLiteral("/found")),
               QStringLiteral("getAnalyzeDirPath"),
               answer("setting", "InstallationDirectory", QStringLiteral("/found")),
               QStringLiteral("getCurrentExePath")});
    QCOMPARE(outcome.results, (QStringList{QString(), QString(), folder, folder}));
    QCOMPARE(outcome.printed.size(), 2);
}

void TestSystemFoldersFakePlatform::aKeyThatCannotBeOpenedIsPrinted()
{
    const QString denied
        = settingsFailure(SettingsValue::NoKey, 5, QStringLiteral("Access is denied.\n"));
    const SystemOutcome outcome
        = run({denied, QStringLiteral("readRegistryValue=Name"),
               QStringLiteral("readRegistryValue=Name|SOFTWARE\\Vantorel\\VORN\\24.x")});
    QCOMPARE(outcome.results, (QStringList{QString(), QString()}));
    QCOMPARE(
        outcome.printed,
        (QStringList{
            QStringLiteral("RegOpenKeyEx: SOFTWARE\\Vantorel\\VORN\\24.0: 5: Access is denied."),
            QStringLiteral("RegOpenKeyEx: SOFTWARE\\Vantorel\\VORN\\24.x: 5: Access is denied.")}));
}

void TestSystemFoldersFakePlatform::aValueThatCannotBeReadIsPrinted()
{
    const SystemOutcome outcome = run(
        {settingsFailure(SettingsValue::NoValue, 234, QStringLiteral("Success.\n")),
         QStringLiteral("readRegistryValue=Name"), QStringLiteral("readWideInstallationFolder"),
         QStringLiteral("readNarrowInstallationFolder")});
    QCOMPARE(outcome.results,
             (QStringList{QString(), QStringLiteral("false"), QStringLiteral("false")}));
    const QString line = QStringLiteral("RegQueryValueEx: 234 Success.");
    QCOMPARE(outcome.printed, (QStringList{line, line, line}));
}

void TestSystemFoldersFakePlatform::printedTextsAreNotExpanded()
{
    QCOMPARE(run({settingsFailure(SettingsValue::NoKey, 2, QStringLiteral("%1 %2 %s\n")),
                  QStringLiteral("readRegistryValue=Name|%3%d%2\\key")})
                 .printed,
             QStringList{QStringLiteral("RegOpenKeyEx: %3%d%2key: 2: %1 %2 %s")});
    QCOMPARE(run({settingsFailure(SettingsValue::NoValue, 2, QStringLiteral("%1 %2 %s\n")),
                  QStringLiteral("readRegistryValue=Name")})
                 .printed,
             QStringList{QStringLiteral("RegQueryValueEx: 2 %1 %2 %s")});
}

void TestSystemFoldersFakePlatform::theKeyAndTheNameArePassedOn()
{
    QStringList asked;
    fakePlatform().settingsSubkeys = [&asked](const QString &key) {
        asked += key;
        return QStringList{QStringLiteral("24.0"), QStringLiteral("24.2")};
    };
    fakePlatform().readSettingsValue = [&asked](const QString &key, const QString &name) {
        asked += {key, name};
        return SettingsValue{SettingsValue::Found, QString(), 0, QString()};
    };
    std::array<wchar_t, 1024> out{};
    Registry::readRegistryValue(L"Name", out.data(), L"SOFTWARE\\Vantorel/24.x");
    QCOMPARE(asked,
             (QStringList{QStringLiteral("SOFTWARE\\Vantorel"),
                          QStringLiteral("SOFTWARE\\Vantorel\\24.2"), QStringLiteral("Name")}));
}

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    if (arguments.value(0) == childBehaviour())
        return runAsChild(arguments.mid(1));
    TestSystemFoldersFakePlatform test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_systemfoldersfakeplatform.moc"
