// Reads the configuration once in a process of its own: what ends the process can be seen from
// outside. Arguments: port of the configuration server, "log" or "quiet". Ends with 42 when the
// configuration was read, 43 when not.
#include <QCoreApplication>
#include <cstdio>

#include "http/http_t.h"
#include "logs/classlogs.h"
#include "utility/cnfserver.h"
#include "utility/http_read_config_server_t.h"
#include "utility/torlan_option_t.h"

namespace {

class printing_logger_t : public utility::logs::classlogs {
    void log_asynch(const QString& _message, int _level, const QString& _function,
                    const QString& _source, int _line) override {
        std::printf("%d %s %s %s %d\n", _level, qPrintable(_message), qPrintable(_function),
                    qPrintable(_source), _line > 0 ? 1 : 0);
    }
};

}  // namespace

int main(int _count, char** _arguments) {
    const QCoreApplication application(_count, _arguments);
    const QStringList arguments = QCoreApplication::arguments();
    static printing_logger_t logger;
    utility::torlan_option_t::createInstance(nullptr, {}, {}, {}, {}, {}, {}, nullptr);
    if (arguments.value(2) == QLatin1String("log")) {
        utility::logs::classlogs::setInstance(&logger);
    }
    if (!http_t::map_base(utility::cnfserver::base, arguments.value(1).toUShort())) {
        return 44;
    }
    return utility::http_read_config_server_t::getInstance(nullptr)->read_configuration() ? 42 : 43;
}
