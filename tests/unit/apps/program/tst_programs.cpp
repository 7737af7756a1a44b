#include <fcntl.h>
#include <unistd.h>

#include <QProcess>
#include <QTest>

/// What the real programs do alike.
class tst_programs : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void shows_its_name_and_the_one_version_data() { programs(); }
    void shows_its_name_and_the_one_version() {
        QFETCH(QString, name);
        for (const char* option : {"--version", "-v"}) {
            const ended_t ended = run({QString::fromLatin1(option)});
            QCOMPARE(ended.output, name + QStringLiteral(" " PROJECT_VERSION "\n"));
            QCOMPARE(ended.error, QString());
            QCOMPARE(ended.status, 0);
        }
    }

    void help_names_every_option_data() { programs(); }
    void help_names_every_option() {
        QFETCH(QString, option);
        const ended_t ended = run({QStringLiteral("--help")});
        for (const QString& word :
             {option, QStringLiteral("--help"), QStringLiteral("--version")}) {
            QVERIFY2(ended.output.contains(word), qPrintable(ended.output));
        }
        QCOMPARE(ended.error, QString());
        QCOMPARE(ended.status, 0);
    }

    void a_wrong_call_is_one_sentence_data() { programs(); }
    void a_wrong_call_is_one_sentence() {
        QFETCH(QString, speaker);
        const ended_t ended = run({QStringLiteral("--frob")});
        QCOMPARE(ended.output, QString());
        // torlanctl knows options by command.
        const QString refusal = speaker == QLatin1String("torlanctl")
                                    ? QStringLiteral("torlanctl has no option \"--frob\".")
                                    : QStringLiteral("Unknown option 'frob'.");
        QFETCH(QString, name);
        QCOMPARE(ended.error,
                 QStringLiteral("%1: %2 See %3 --help.\n").arg(speaker, refusal, name));
        QCOMPARE(ended.status, 2);
    }

    void a_bare_locale_adds_no_warning_data() { programs(); }
    void a_bare_locale_adds_no_warning() {
        QProcessEnvironment environment;
        environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
        const ended_t ended = run(
            {QStringLiteral("--version")},
            [&environment](QProcess* _process) { _process->setProcessEnvironment(environment); });
        QCOMPARE(ended.error, QString());
        QCOMPARE(ended.status, 0);
    }

    void a_reader_that_went_away_kills_nothing_data() { programs(); }
    void a_reader_that_went_away_kills_nothing() {
        int ends[2] = {-1, -1};
        QCOMPARE(::pipe2(ends, O_CLOEXEC), 0);
        ::close(ends[0]);
        const int unread = ends[1];
        const ended_t ended = run({QStringLiteral("--help")}, [unread](QProcess* _process) {
            _process->setChildProcessModifier([unread]() { ::dup2(unread, STDOUT_FILENO); });
        });
        ::close(unread);
        QVERIFY2(ended.status >= 0, "killed");
    }

 private:
    struct ended_t {
        int status = -1;  ///< -1: it did not start, was killed or hung
        QString output;
        QString error;
    };

    static void programs() {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("speaker");
        QTest::addColumn<QString>("option");
        const auto row = [](const char* _program, const char* _name, const char* _speaker,
                            const char* _option) {
            QTest::newRow(_name) << QString::fromLatin1(_program) << QString::fromLatin1(_name)
                                 << QString::fromLatin1(_speaker) << QString::fromLatin1(_option);
        };
        row(TORLAN_CONFIG, "torlan-config", "torlan-config", "--trigger");
        row(TORLAN_SERVER, "torlan-server", "torlan", "--ws-port");
        row(TORLAN_ETS, "torlan-ets", "torlan-ets", "--user-password-file");
#ifdef TORLAN_KNX_HOUSE
        row(TORLAN_KNX_HOUSE, "torlan-knx-house", "torlan-knx-house", "--knx");
#endif
        row(TORLANCTL, "torlanctl", "torlanctl", "--data");
    }

    template <class Prepare>
    static ended_t run(const QStringList& _arguments, Prepare _prepare) {
        QFETCH(QString, program);
        QProcess process;
        _prepare(&process);
        process.start(program, _arguments);
        if (!process.waitForFinished() || process.exitStatus() != QProcess::NormalExit) {
            return {};
        }
        return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
                QString::fromUtf8(process.readAllStandardError())};
    }
    static ended_t run(const QStringList& _arguments) {
        return run(_arguments, [](QProcess*) {});
    }
};

QTEST_GUILESS_MAIN(tst_programs)
#include "tst_programs.moc"
