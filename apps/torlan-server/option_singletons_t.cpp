#include "option_singletons_t.h"

#include <QCoreApplication>
#include <QJsonObject>

#include "build_facts.h"
#include "http/http_t.h"
#include "options_t.h"
#include "program/version.h"
#include "utility/http_read_config_server_t.h"
#include "utility/torlan_option_t.h"

namespace torlan {

using utility::http_read_config_server_t;
using utility::torlan_option_t;

namespace {

QJsonObject library_versions() {
    return {{QStringLiteral("libhttp"), http_t::LIBHTTP_VERSION},
            {QStringLiteral("qt"), QLatin1String(qVersion())}};
}

}  // namespace

option_singletons_t::option_singletons_t(const options_t& _options) {
    torlan_option_t* const values = torlan_option_t::createInstance(
        QCoreApplication::instance(), QSysInfo::kernelType(), version(), library_versions(),
        QLatin1String(build_branch), QLatin1String(build_commit), QLatin1String(build_time),
        nullptr);
    if (_options.stdout_level) {
        values->set_log_level_std(*_options.stdout_level);
    }
    if (_options.file_level) {
        values->set_log_level_file(*_options.file_level);
    }
    if (_options.log_size) {
        values->set_log_size(*_options.log_size);
    }
    if (_options.log_rotate) {
        values->set_log_rotate(*_options.log_rotate);
    }
}

option_singletons_t::~option_singletons_t() {
    http_read_config_server_t::destroyInstance();
    torlan_option_t::destroyInstance();
}

}  // namespace torlan
