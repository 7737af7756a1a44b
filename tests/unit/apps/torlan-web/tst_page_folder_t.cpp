#include "page_folder_t.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using torlan::page_folder_t;

class tst_page_folder_t : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void init() {
        place = std::make_unique<QTemporaryDir>();
        write("secret.html", "secret");
        write("web/index.html", "page");
    }

    void files_are_found_by_their_address_data() {
        QTest::addColumn<QByteArray>("path");
        QTest::addColumn<QByteArray>("type");
        QTest::newRow("page") << QByteArray("/") << QByteArray("text/html; charset=utf-8");
        QTest::newRow("by name") << QByteArray("/index.html")
                                 << QByteArray("text/html; charset=utf-8");
        QTest::newRow("script") << QByteArray("/js/a.js")
                                << QByteArray("text/javascript; charset=utf-8");
        QTest::newRow("style") << QByteArray("/a.css") << QByteArray("text/css; charset=utf-8");
        QTest::newRow("picture") << QByteArray("/a.svg") << QByteArray("image/svg+xml");
        QTest::newRow("other type") << QByteArray("/mqtt.stamp") << QByteArray();
        QTest::newRow("hidden") << QByteArray("/.hidden.js") << QByteArray();
        QTest::newRow("a folder") << QByteArray("/js") << QByteArray();
        QTest::newRow("the way out") << QByteArray("/../secret.html") << QByteArray();
        QTest::newRow("the coded way out") << QByteArray("/%2e%2e/secret.html") << QByteArray();
        QTest::newRow("no slash") << QByteArray("index.html") << QByteArray();
    }
    void files_are_found_by_their_address() {
        QFETCH(QByteArray, path);
        for (const char* name : {"js/a.js", "a.css", "a.svg", "mqtt.stamp", ".hidden.js"}) {
            write(QStringLiteral("web/") + QLatin1String(name), "x");
        }
        page_folder_t folder;
        QCOMPARE(folder.read(place->filePath("web")).error, QString());
        const page_folder_t::file_t* const file = folder.find(path);
        QTEST(file == nullptr ? QByteArray() : file->type, "type");
    }

    void page_that_is_replaced_stays_in_one_piece() {
        page_folder_t folder;
        QVERIFY(folder.read(place->filePath("web")).is_ok());
        write("web/index.html", "other");
        QCOMPARE(folder.find("/")->bytes, QByteArray("page"));
    }

    void folder_without_a_page_is_told() {
        page_folder_t folder;
        QFile::remove(place->filePath("web/index.html"));
        QVERIFY(folder.read(place->filePath("web")).error.contains("index.html is missing"));
        QVERIFY(!folder.read(place->filePath("nowhere")).is_ok());
    }

    void huge_file_is_refused() {
        write("web/huge.js", QByteArray(page_folder_t::max_bytes + 1, 'x'));
        page_folder_t folder;
        QVERIFY(folder.read(place->filePath("web")).error.contains("huge.js"));
    }

 private:
    void write(const QString& _name, const QByteArray& _bytes) {
        const QString path = place->filePath(_name);
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QFile file(path);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(_bytes);
    }

    std::unique_ptr<QTemporaryDir> place;
};

QTEST_GUILESS_MAIN(tst_page_folder_t)
#include "tst_page_folder_t.moc"
