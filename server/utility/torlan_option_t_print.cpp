// Writing the options to the log.
#include <QDir>

#include "utility/cnfserver.h"
#include "utility/torlan_option_t.h"
#include "utility/torlan_option_t_log.h"

namespace utility {

namespace {

const QString dashes =
    QStringLiteral("----------------------------------------------------------------------------");

/// Lines of print() at one level.
void print_lines(const QStringList& _lines, int _level) {
    for (const QString& line : _lines) {
        log_option(line, _level, "print", __LINE__);
    }
}

QStringList testing_warning() {
    const QString frame = QStringLiteral(
        "::============================================================================::");
    return {frame,
            QStringLiteral("SPECIAL FUNCTION FOR TESTING ENABLE"),
            QStringLiteral("This makes it possible to execute commands normally prohibited in "
                           "release execution."),
            QStringLiteral("Not enabled it in real installation."),
            QStringLiteral("This could degrade performance and fail to provide the necessary "
                           "safety"),
            frame};
}

QStringList version_lines(const QJsonObject& _versions) {
    QStringList lines{QStringLiteral("Versions: ")};
    for (auto entry = _versions.begin(); entry != _versions.end(); ++entry) {
        lines.append(QStringLiteral(" - ") + entry.key() + QStringLiteral(": ") +
                     entry.value().toString());
    }
    return lines;
}

using option = torlan_option_t;

QStringList build_and_device_lines() {
    return {
        QStringLiteral("Build branch: ") + option::BuildBranch(),
        QStringLiteral("Build commit: ") + option::BuildCommit(),
        QStringLiteral("Build time: ") + option::BuildTime(),
        QStringLiteral("Image version: ") + option::ImageVersion(),
        QStringLiteral("Language: ") + option::Language(),
        QStringLiteral("Browse avahi: ") +
            (option::Avahi_browse_option() ? QStringLiteral("true") : QStringLiteral("false")),
        QStringLiteral("Serial device: ") + option::Serial(),
        QStringLiteral("Brand: ") + option::Brand().ToString(),
        QStringLiteral("Product name: ") + option::ProductName(),
    };
}

QStringList setting_lines() {
    return {
        QStringLiteral("Url config server: ") + cnfserver::base,
        QStringLiteral("Installation id: ") + option::InstallationId(),
        QStringLiteral("Folder Log: ") + option::LogsFolder(),
        QStringLiteral("Folder plugin: ") + option::PluginFolder(),
        QStringLiteral("System CA certs: ") + option::SystemCaCerts(),
        QStringLiteral("Folder client: ") + option::ClientFolder(),
        QStringLiteral("File certs: ") + option::CaCertsFile().join(QStringLiteral(" - ")),
        QStringLiteral("Bus monitor: ") + QString::number(option::LevelBusMonitor()),
        QStringLiteral("Cloud Web url: ") + option::CloudWeb(),
        QStringLiteral("Cloud Service url: ") + option::CloudService(),
        QStringLiteral("Cloud MQTT url: ") + option::CloudMQTTUrl(),
        QStringLiteral("Starting server with log level stdout: ") +
            QString::number(option::LogLevelStd()),
        QStringLiteral("Starting server with log level file: ") +
            QString::number(option::LogLevelFile()),
        QStringLiteral("Starting server with log size: ") + QString::number(option::LogSize()) +
            QStringLiteral(" MB"),
        QStringLiteral("Starting server with log rotation: ") +
            QString::number(option::LogRotate()),
    };
}

QStringList saving_lines() {
    // Readers of the log know this spelling.
    return {QStringLiteral("Dalay to save: ") + QString::number(option::DelayToSave()) +
                QStringLiteral(" msec."),
            QStringLiteral("Iteration force save: ") +
                QString::number(option::DelayIterationToForceSave()),
            QStringLiteral("Update datetime to realtime db: ") +
                QString::number(option::UpdateDateTimeToDatabase()) + QStringLiteral(" sec.")};
}

}  // namespace

void torlan_option_t::print() {
    const torlan_option_t* const options = instance;
    print_lines({QStringLiteral("::") + dashes + QStringLiteral("::")}, 4);
    if (options != nullptr && options->special_function_for_testing) {
        print_lines(testing_warning(), 3);
    }
    print_lines(version_lines(Versions()), 4);
    print_lines(build_and_device_lines(), 4);
    print_lines(setting_lines(), 4);
    print_lines(saving_lines(), 6);
    print_lines({dashes}, 4);
    print_lines({dashes, QStringLiteral("Resource"), dashes}, 6);
    int depth = 0;
    print_dir(QStringLiteral(":/"), depth);
    print_lines({dashes}, 6);
}

void torlan_option_t::print_dir(QString path, int& depth) {
    // Of the folder, for all its entries; the depth grows meanwhile.
    const QString indent(depth, QLatin1Char(' '));
    const QDir folder(path);
    // NoSort keeps QDir's own order, by name; Unsorted would follow the resource system's hashes.
    const QFileInfoList files = folder.entryInfoList(QDir::Files, QDir::NoSort);
    for (const QFileInfo& file : files) {
        log_option(indent + file.absoluteFilePath(), 6, __func__, __LINE__);
    }
    const QFileInfoList folders = folder.entryInfoList(QDir::Dirs, QDir::NoSort);
    for (const QFileInfo& entry : folders) {
        log_option(indent + entry.absoluteFilePath(), 6, __func__, __LINE__);
        ++depth;
        print_dir(entry.absoluteFilePath(), depth);
    }
}

}  // namespace utility
