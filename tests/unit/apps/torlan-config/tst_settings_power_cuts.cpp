// What is left of acknowledged settings when the power goes.
#include <QJsonDocument>
#include <QTemporaryDir>
#include <QTest>

#include "kit/recorded_disk.h"
#include "settings_file_t.h"
#include "settings_service_t.h"

using namespace torlan;

class tst_settings_power_cuts : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { recorded_disk::root.clear(); }
    void nothing_acknowledged_is_lost();

 private:
    /// A document that counts when so many calls had been made; acknowledged, or asked for next.
    struct promise_t {
        qsizetype calls;
        QJsonObject document;
    };
    void promise(const QString& _file);
    static QJsonObject read(const QString& _file);
    /// Empty: the folder holds what was acknowledged last, or what was under way.
    QString broken_promise(const QString& _folder, qsizetype _calls) const;

    QTemporaryDir folder;
    QList<recorded_disk::call_t> calls;
    QList<promise_t> promises;
};

void tst_settings_power_cuts::initTestCase() {
    recorded_disk::root = folder.path();
    settings_file_t file;
    QCOMPARE(file.open(folder.filePath("settings.json")).error, QString());
    promise(file.path());
    const settings_service_t service(&file);
    for (int i = 0; i < 40; ++i) {
        const QByteArray path =
            i % 3 == 0 ? "/static/torlan/paths/logs" : "/kept/" + QByteArray::number(i);
        const QByteArray value =
            '"' + QByteArray(1 + 97 * (i % 11), 'a') + QByteArray::number(i) + '"';
        QCOMPARE(service.put(settings_path_t::parse(path), value).status, 200);
        promise(file.path());
    }
    calls = recorded_disk::calls;
    QVERIFY2(calls.size() > 100, qPrintable(QString::number(calls.size())));
}

void tst_settings_power_cuts::nothing_acknowledged_is_lost() {
    std::mt19937 random(20261122);
    recorded_disk::disk_t disk;
    int cuts = 0;
    for (qsizetype i = 0; i < calls.size(); ++i) {
        disk.see(calls.at(i));
        for (int cut = 0; cut < 8; ++cut, ++cuts) {
            const QTemporaryDir left;
            disk.leave(left.path(), random);
            const QString wrong = broken_promise(left.path(), i + 1);
            QVERIFY2(wrong.isEmpty(),
                     qPrintable(QStringLiteral("after call %1: %2").arg(i + 1).arg(wrong)));
        }
    }
    qInfo("%d cuts, %d acknowledged settings, 0 lost", cuts, int(promises.size()));
}

void tst_settings_power_cuts::promise(const QString& _file) {
    promises.append({recorded_disk::calls.size(), read(_file)});
}

QJsonObject tst_settings_power_cuts::read(const QString& _file) {
    QFile source(_file);
    return source.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(source.readAll()).object()
                                            : QJsonObject{{"there is", "no file"}};
}

QString tst_settings_power_cuts::broken_promise(const QString& _folder, qsizetype _calls) const {
    qsizetype kept = -1;
    while (kept + 1 < promises.size() && promises[kept + 1].calls <= _calls) {
        ++kept;
    }
    const QJsonObject found = read(_folder + "/settings.json");
    for (qsizetype i = qMax<qsizetype>(kept, 0); i < qMin(kept + 2, promises.size()); ++i) {
        if (promises[i].document == found) {
            return {};
        }
    }
    return kept < 0 && !QFile::exists(_folder + "/settings.json")
               ? QString()
               : QStringLiteral("promise %1 is lost").arg(kept);
}

QTEST_GUILESS_MAIN(tst_settings_power_cuts)
#include "tst_settings_power_cuts.moc"
