// Power cuts under the real programs: the image behind a loop device is copied while commands are
// acknowledged, and the copy is mounted and read.
#include <unistd.h>

#include <QRandomGenerator>
#include <QtTest>
#include <atomic>
#include <thread>

#include "kit/free_port.h"
#include "kit/sample_installation.h"
#include "system/support/config_process_t.h"

namespace {

int run(const QString& _program, const QStringList& _arguments, const QByteArray& _input = {},
        QByteArray* _output = nullptr) {
    QProcess process;
    process.start(_program, _arguments);
    process.write(_input);
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit) {
        return -1;
    }
    if (_output != nullptr) {
        *_output = process.readAllStandardOutput();
    }
    return process.exitCode();
}

/// What the n-th command leads to, by what all before it did; 0: the import.
struct home_t {
    QString value = "0";  ///< of i-lamp
    int bits = 1;         ///< of bob's grant on e-lamp
    bool has_guest = false;

    bool operator==(const home_t&) const = default;

    static home_t after(int _commands) {
        home_t home;
        for (int i = 1; i <= _commands; ++i) {
            switch (i % 4) {
                case 0:
                    home.value = QString::number(i);
                    break;
                case 1:
                    home.bits = i % 8 == 1 ? 0 : 1;
                    break;
                case 2:
                    home.has_guest = true;
                    break;
                default:
                    home.has_guest = false;
            }
        }
        return home;
    }
    static QStringList command(int _number) {
        switch (_number % 4) {
            case 0:
                return {"set", "i-lamp", QString::number(_number)};
            case 1:
                return {"grant", "bob", "e-lamp", _number % 8 == 1 ? "deny" : "read"};
            case 2:
                return {"user", "add", "guest"};
            default:
                return {"user", "remove", "guest"};
        }
    }
    static home_t read(const QString& _data) {
        database::store::sqlite_store_t store;
        const auto opened = store.open(_data + "/installation.db");
        const auto whole = opened.is_ok()
                               ? store.read()
                               : base::result_of_t<database::installation::installation_t>(opened);
        home_t home;
        home.value = whole.is_ok() ? whole.value.items.value("i-lamp").value : whole.error;
        home.bits = whole.value.permissions.value("u-bob").value("e-lamp");
        home.has_guest = whole.value.users.contains("u-guest");
        return home;
    }
};

}  // namespace

class tst_power_cuts : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase();
    void nothing_acknowledged_is_lost_by_100_cuts();

 private:
    bool mount(const QString& _image, const QString& _at) const {
        return QDir().mkpath(_at) && run("mount", {"-o", "loop", _image, _at}) == 0;
    }
    /// Copies the image as it is at one moment: none of its blocks may change meanwhile.
    bool copy() const;
    QByteArray written_blocks() const;

    QTemporaryDir folder;
    const QString image = folder.filePath("disk.img");
    const QString disk = folder.filePath("disk");
    const QString taken = folder.filePath("copy.img");
    const QString after = folder.filePath("copy");
    QString device;
    bool is_mounted = false;
};

void tst_power_cuts::initTestCase() {
    if (::geteuid() != 0) {
        QSKIP("NOT RUN: power cuts need root, to mount an image file");
    }
    QFile file(image);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(24 * 1024 * 1024));
    file.close();
    if (run("mkfs.ext4", {"-q", "-F", image}) != 0 || !mount(image, disk)) {
        QSKIP("NOT RUN: this machine makes no ext4 on a loop device");
    }
    is_mounted = true;
    QByteArray text;
    QCOMPARE(run("findmnt", {"-n", "-o", "SOURCE", disk}, {}, &text), 0);
    device = QFileInfo(QString::fromUtf8(text.trimmed())).fileName();
}

void tst_power_cuts::cleanupTestCase() {
    if (is_mounted) {
        run("umount", {disk});
    }
}

QByteArray tst_power_cuts::written_blocks() const {
    QFile counters("/sys/block/" + device + "/stat");
    return counters.open(QIODevice::ReadOnly) ? counters.readAll().simplified() : QByteArray();
}

bool tst_power_cuts::copy() const {
    for (int i = 0; i < 200; ++i) {
        const QByteArray before = written_blocks();
        QFile::remove(taken);
        const bool copied = run("cp", {"--sparse=always", image, taken}) == 0;
        // Nothing in flight, nothing written since: a moment.
        const QList<QByteArray> numbers = before.split(' ');
        if (copied && !before.isEmpty() && written_blocks() == before && numbers.value(8) == "0") {
            return true;
        }
    }
    return false;
}

void tst_power_cuts::nothing_acknowledged_is_lost_by_100_cuts() {
    const QString data = disk + "/data";
    QVERIFY(QDir().mkdir(data));
    const auto torlanctl = [&data](const QStringList& _command) {
        return run(TORLANCTL, QStringList{"--data", data} + _command, "secret-of-guest\n");
    };
    const QString document = folder.filePath("home.json");
    QFile home(document);
    QVERIFY(home.open(QIODevice::WriteOnly) && home.write(kit::small_home_text()) > 0);
    home.close();
    QCOMPARE(torlanctl({"import", document}), 0);

    const QString settings = folder.filePath("settings.json");
    QFile file(settings);
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("{\"static\": {}}") > 0);
    file.close();
    support::config_process_t config(settings);
    QProcess server;
    server.start(TORLAN_SERVER,
                 {"--data", data, "--port", QString::number(kit::free_port()), "--config-port",
                  QString::number(config.port()), "--logs", folder.filePath("logs")});
    while (!server.readAllStandardOutput().contains("torlan: ready")) {
        QVERIFY2(server.waitForReadyRead(60000), server.readAllStandardError());
    }

    int acknowledged = 0;
    int lost = 0;
    for (int cut = 0; cut < 100; ++cut) {
        std::atomic<int> done = acknowledged;
        std::atomic<bool> goes_on = true;
        std::thread commands([&]() {
            while (goes_on && torlanctl(home_t::command(done + 1)) == 0) {
                ++done;
            }
        });
        QTest::qWait(20 + QRandomGenerator::global()->bounded(400));
        // While a command is under way, or, every other time, right after one.
        if (cut % 2 != 0) {
            goes_on = false;
            commands.join();
        }
        bool copied = false;
        int kept = done;
        copied = copy();
        const int begun = done + 1;
        goes_on = false;
        if (commands.joinable()) {
            commands.join();
        }
        acknowledged = done;
        QVERIFY2(copied, "the image never stood still");
        QVERIFY(mount(taken, after));
        const home_t found = home_t::read(after + "/data");
        QCOMPARE(run("umount", {after}), 0);
        bool is_one = false;
        for (; kept <= begun; ++kept) {
            is_one = is_one || found == home_t::after(kept);
        }
        lost += int(!is_one);
    }
    server.terminate();
    QVERIFY(server.waitForFinished(15000));
    qInfo("100 cuts, %d acknowledged changes, lost in %d cuts", acknowledged, lost);
    QCOMPARE(lost, 0);
}

QTEST_GUILESS_MAIN(tst_power_cuts)
#include "tst_power_cuts.moc"
