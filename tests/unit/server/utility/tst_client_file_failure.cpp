#include <QTemporaryDir>
#include <QTest>
#include <cstdlib>
#include <new>

#include "http/http_t.h"
#include "logs/classlogs.h"
#include "unit/server/utility/support/config_server_t.h"
#include "unit/server/utility/support/options_guard_t.h"
#include "utility/cnfserver.h"
#include "utility/http_read_config_server_t.h"

namespace {

thread_local bool memory_is_out = false;

}  // namespace

// The only way a client file is reported as not written is an exception while it is written.
void* operator new(std::size_t _size) {
    if (memory_is_out) {
        memory_is_out = false;
        throw std::bad_alloc();
    }
    if (void* const memory = std::malloc(_size == 0 ? 1 : _size)) {
        return memory;
    }
    throw std::bad_alloc();
}
void* operator new(std::size_t _size, const std::nothrow_t&) noexcept {
    return std::malloc(_size == 0 ? 1 : _size);
}
void operator delete(void* _memory) noexcept {
    std::free(_memory);
}
void operator delete(void* _memory, std::size_t) noexcept {
    std::free(_memory);
}

namespace {

/// Lets the memory run out right behind the line that announces the file.
class exhausting_logger_t : public utility::logs::classlogs {
 public:
    exhausting_logger_t() { setInstance(this); }
    ~exhausting_logger_t() override { setInstance(nullptr); }
    Q_DISABLE_COPY_MOVE(exhausting_logger_t)

    void log_asynch(const QString& _message, int _level, const QString& _function, const QString&,
                    int) override {
        lines << QStringLiteral("%1 %2 %3").arg(QString::number(_level), _function, _message);
        memory_is_out = _message.startsWith(QLatin1String("Save client configuration file"));
    }

    QStringList lines;
};

}  // namespace

class tst_client_file_failure : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void a_file_that_could_not_be_written_is_reported() {
        const options_guard_t options;
        utility::http_read_config_server_t client(nullptr);
        const exhausting_logger_t logger;
        client.generate_HTTP_ClientFileConfig({{QStringLiteral("a"), 1}});
        QCOMPARE(logger.lines.size(), 3);
        QCOMPARE(logger.lines.at(0),
                 QStringLiteral("4 generate_HTTP_ClientFileConfig Save client configuration file "
                                "to: /config/comunication.json"));
        QVERIFY(logger.lines.at(1).startsWith(QLatin1String("1 writeToFile Handling exception: ")));
        QCOMPARE(logger.lines.at(2),
                 QStringLiteral("2 generate_HTTP_ClientFileConfig Error to craete mqtt "
                                "configuration client /config/comunication.json"));
    }

    void a_file_that_could_not_be_written_is_no_failure_of_the_whole() {
        const options_guard_t options;
        config_server_t server;
        server.answer("GET", "200 OK", R"({"installation":{"installation_id":"i"}})");
        QVERIFY(http_t::map_base(utility::cnfserver::base, server.port()));
        utility::http_read_config_server_t client(nullptr);
        const exhausting_logger_t logger;
        QVERIFY(client.read_configuration());
        QVERIFY(logger.lines.constLast().contains(QLatin1String("Error to craete")));
    }
};

QTEST_GUILESS_MAIN(tst_client_file_failure)
#include "tst_client_file_failure.moc"
