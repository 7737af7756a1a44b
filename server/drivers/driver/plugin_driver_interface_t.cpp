#include "drivers/driver/plugin_driver_interface_t.h"

#include "logs/log_line.h"

namespace interfaces {

namespace {
constexpr const char* source = "server/drivers/driver/plugin_driver_interface_t";
}

plugin_driver_interface_t::plugin_driver_interface_t(const QString& _name, const QString& _version,
                                                     bool _use_persistent_topic)
    : id(_name),
      name(_name),
      version(_version),
      use_persistent_topic(_use_persistent_topic),
      valid_name_pattern(QStringLiteral(R"([\/\w-_{}\[\]\(\)\?\^\$£!:.,=;@+']+)")),
      reserved(nullptr),
      reserved_text(QLatin1String("")) {
    const char* function = "plugin_driver_interface_t";
    utility::log_line(
        QStringLiteral("Constructor plugin ") + name + QStringLiteral(" v. ") + version, 4,
        function, source, 36);
    if (name.trimmed().isEmpty()) {
        utility::log_line(QStringLiteral("Error to init driver name "), 2, function, source, 39);
    }
    if (version.trimmed().isEmpty()) {
        utility::log_line(QStringLiteral("Error to init version "), 2, function, source, 41);
    }
}

plugin_driver_interface_t::~plugin_driver_interface_t() = default;

void* plugin_driver_interface_t::getCapability(const char*) {
    return nullptr;
}

bool plugin_driver_interface_t::init_database(database::database_t* _database) {
    const char* function = "init_database";
    const QString in_brackets = QLatin1Char('[') + id + QStringLiteral("] ");
    // The name stands twice; clients of the log parse this text, keep it.
    utility::log_line(in_brackets + QStringLiteral("Init ") + name + QStringLiteral(" VERSION ") +
                          version + QStringLiteral(" from: ") + name,
                      4, function, source, 177);
    if (_database == nullptr) {
        utility::log_line(in_brackets + QStringLiteral("Error to set database is nullptr!"), 0,
                          function, source, 179);
        return false;
    }
    database = _database;
    if (use_persistent_topic) {
        id = database->getPersistent()->getTopicbase()->getTopic() + QLatin1Char('/') + name;
    }
    if (id.trimmed() == name.trimmed()) {
        utility::log_line(QStringLiteral("TODO FS check if is correct"), 3, function, source, 188);
    }
    if (id.trimmed().isEmpty()) {
        utility::log_line(QLatin1Char('[') + name + QStringLiteral("] Driver id is no setted"), 0,
                          function, source, 191);
        return false;
    }
    utility::log_line(QLatin1Char('[') + id + QStringLiteral("] Driver id: ") + id, 6, function,
                      source, 194);
    return finalize_database_initialization();
}

}  // namespace interfaces
