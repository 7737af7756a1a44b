#include "loader/driver_loader_t.h"

#include <QDir>
#include <QLibrary>
#include <QSet>
#include <exception>

#include "loader/elf_note_reader_t.h"
#include "process/trusted_path.h"

namespace loader {

namespace {

struct query_result_t {
    const void* data;
    std::size_t size;
};
using query_metadata_t = query_result_t (*)();
using make_instance_t = QObject* (*)();

refusal_t refusal(refusal_reason_t _reason, const QString& _file, const QString& _what) {
    return {_reason, _file + QLatin1Char(' ') + _what + QLatin1Char('.')};
}

refusal_t check_interface(const QString& _file, const QByteArray& _descriptor,
                          driver_metadata_t& _metadata) {
    const auto metadata = driver_metadata_t::parse(_descriptor);
    if (!metadata) {
        return refusal(refusal_reason_t::malformed_metadata, _file,
                       QStringLiteral("has metadata that cannot be understood"));
    }
    if (metadata->interface != driver_loader_t::driver_interface) {
        return refusal(refusal_reason_t::other_interface, _file,
                       QStringLiteral("is a plugin of another interface, \"%1\"")
                           .arg(metadata->interface.left(100)));
    }
    _metadata = *metadata;
    return {};
}

QString threw_text(const std::exception* _exception) {
    return QStringLiteral("threw while it was made: ") +
           (_exception ? QString::fromLocal8Bit(_exception->what())
                       : QStringLiteral("an unknown exception"));
}

}  // namespace

driver_loader_t::driver_loader_t(QString _folder) : folder(std::move(_folder)) {}

std::vector<loaded_driver_t> driver_loader_t::load_all() {
    left_out.clear();
    std::vector<loaded_driver_t> drivers;
    for (candidate_t& candidate : scan()) {
        const root_t root = load(candidate.file);
        if (root.refusal) {
            refuse(candidate.file, root.refusal);
            continue;
        }
        drivers.emplace_back(candidate.file, std::move(candidate.metadata), root.driver);
    }
    return drivers;
}

QList<QFileInfo> driver_loader_t::files() {
    const QDir dir(folder);
    if (!dir.isReadable()) {
        refuse(folder, refusal(refusal_reason_t::unreadable, folder,
                               QStringLiteral("is not a folder that can be read")));
        return {};
    }
    return dir.entryInfoList({QStringLiteral("*.so")}, QDir::Files | QDir::System, QDir::Name);
}

std::vector<driver_loader_t::candidate_t> driver_loader_t::scan() {
    std::vector<candidate_t> candidates;
    QSet<QString> seen;
    for (const QFileInfo& info : files()) {
        const QString file = info.absoluteFilePath();
        const QString canonical = info.canonicalFilePath();
        if (!canonical.isEmpty() && seen.contains(canonical)) {
            refuse(file, refusal(refusal_reason_t::duplicate, file,
                                 QStringLiteral("is another name of ") + canonical));
            continue;
        }
        seen.insert(canonical);
        // A library runs as it is loaded: who can write it could do whatever this server may.
        if (const base::result_t ours = process::check_only_ours(file);
            !canonical.isEmpty() && !ours.is_ok()) {
            refuse(file, {refusal_reason_t::changeable,
                          file + QStringLiteral(" is not loaded: ") + ours.error});
            continue;
        }
        elf_note_reader_t reader(file);
        const base::result_of_t<QByteArray> note = reader.read();
        driver_metadata_t metadata;
        const refusal_t why =
            note.is_ok() ? check_interface(file, note.value, metadata) : reader.refusal();
        if (why) {
            refuse(file, why);
        } else {
            candidates.push_back({file, std::move(metadata)});
        }
    }
    return candidates;
}

// Qt's own loader refuses a plugin whose label is newer than the process's Qt; drivers carry one
// fixed label, so the two entry points are called directly.
driver_loader_t::root_t driver_loader_t::load(const QString& _file) {
    QLibrary library(_file);
    library.setLoadHints(QLibrary::ResolveAllSymbolsHint);
    if (!library.load()) {
        return {nullptr, refusal(refusal_reason_t::not_loadable, _file,
                                 QStringLiteral("cannot be loaded: ") + library.errorString())};
    }
    const root_t root = make_root(library);
    if (root.refusal.reason == refusal_reason_t::missing_entry_point) {
        library.unload();
    }
    return root;
}

driver_loader_t::root_t driver_loader_t::make_root(QLibrary& _library) {
    const QString file = _library.fileName();
    const auto query =
        reinterpret_cast<query_metadata_t>(_library.resolve("qt_plugin_query_metadata_v2"));
    const auto make = reinterpret_cast<make_instance_t>(_library.resolve("qt_plugin_instance"));
    if (query == nullptr || make == nullptr) {
        return {nullptr, refusal(refusal_reason_t::missing_entry_point, file,
                                 QStringLiteral("lacks a plugin's entry point"))};
    }
    try {
        const query_result_t said = query();
        const QByteArray descriptor(static_cast<const char*>(said.data),
                                    static_cast<qsizetype>(said.size));
        driver_metadata_t metadata;
        const refusal_t why = check_interface(file, descriptor, metadata);
        return why ? root_t{nullptr, why} : as_driver(file, make());
    } catch (const std::exception& exception) {
        return {nullptr, refusal(refusal_reason_t::threw, file, threw_text(&exception))};
    } catch (...) {
        return {nullptr, refusal(refusal_reason_t::threw, file, threw_text(nullptr))};
    }
}

driver_loader_t::root_t driver_loader_t::as_driver(const QString& _file, QObject* _instance) {
    if (_instance == nullptr) {
        return {nullptr, refusal(refusal_reason_t::no_instance, _file,
                                 QStringLiteral("made no driver object"))};
    }
    auto* driver = qobject_cast<interfaces::plugin_driver_interface_t*>(_instance);
    if (driver == nullptr) {
        delete _instance;
        return {nullptr, refusal(refusal_reason_t::not_a_driver, _file,
                                 QStringLiteral("made an object that is no driver"))};
    }
    return {driver, {}};
}

void driver_loader_t::refuse(const QString& _file, const refusal_t& _refusal) {
    left_out.append({_file, _refusal.reason, _refusal.text});
}

}  // namespace loader
