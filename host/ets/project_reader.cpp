#include "ets/project_reader.h"

#include <QRegularExpression>
#include <algorithm>
#include <memory>

#include "ets/information_reader.h"
#include "ets/installation_reader_t.h"
#include "ets/linked_types_t.h"
#include "ets/project_password.h"
#include "ets/zip_t.h"

namespace ets {

using base::result_of_t;
using base::result_t;

namespace {

QRegularExpression pattern(const char* _text) {
    return QRegularExpression(QRegularExpression::anchoredPattern(QLatin1String(_text)),
                              QRegularExpression::CaseInsensitiveOption);
}

QStringList matching(const QStringList& _names, const char* _pattern) {
    QStringList found = _names.filter(pattern(_pattern));
    found.sort();
    return found;
}

/// The files of the project itself, in the zip that they are in.
struct files_t {
    QString information;
    QStringList installations;
};

files_t files_in(const QStringList& _names) {
    files_t files{matching(_names, "(P-[0-9A-F]+/)?project\\.xml").value(0), {}};
    const QString folder = files.information.left(files.information.lastIndexOf(u'/') + 1);
    for (const QString& name : matching(_names, "(P-[0-9A-F]+/)?[0-9]+\\.xml")) {
        if (name.left(name.lastIndexOf(u'/') + 1) == folder) {
            files.installations.append(name);
        }
    }
    return files;
}

class project_zip_t {
 public:
    project_zip_t(const QByteArray& _bytes, const reading_t& _how)
        : how(_how), left(_how.limits.total_bytes), outer(_bytes, _how.limits, &left) {}

    result_of_t<project_t> read() {
        const auto names = outer.names();
        if (!names.is_ok()) {
            return names;
        }
        const QStringList locked = matching(names.value, "P-[0-9A-F]+\\.zip");
        const result_t opened = locked.isEmpty() ? result_t() : unlock(locked.constFirst());
        if (!opened.is_ok()) {
            return opened;
        }
        if (how.password_used != nullptr) {
            *how.password_used = !locked.isEmpty();
        }
        const result_t done = read_files(names.value, locked.isEmpty());
        if (!done.is_ok()) {
            return done;
        }
        return project;
    }

 private:
    /// Opens the inner zip, which is all that a password protects.
    result_t unlock(const QString& _name) {
        if (!how.password) {
            return result_t::failed(
                QStringLiteral("The project is protected: its password is missing."));
        }
        QByteArray bytes;
        const result_t unpacked = outer.visit({_name}, [&](const QString&, QIODevice* _file) {
            bytes = _file->readAll();
            return result_t();
        });
        if (!unpacked.is_ok()) {
            return unpacked;
        }
        inner = std::make_unique<zip_t>(bytes, how.limits, &left);
        const auto names = inner->names();
        if (!names.is_ok()) {
            return names;
        }
        inner_names = names.value;
        return find_password();
    }

    result_t find_password() {
        const files_t files = files_in(inner_names);
        bool only_locked = true;
        for (const QByteArray& candidate : zip_passwords(*how.password)) {
            inner->set_password(candidate);
            project_t read;
            const result_t tried =
                inner->visit({files.information}, [&](const QString& _name, QIODevice* _file) {
                    return read_information(_file, _name, &read);
                });
            if (tried.is_ok()) {
                return {};
            }
            only_locked = only_locked && inner->is_locked();
        }
        return result_t::failed(
            only_locked ? QStringLiteral("The password of the project is wrong.")
                        : QStringLiteral(
                              "The password of the project is wrong, or the project is damaged."));
    }

    result_t read_files(const QStringList& _outer_names, bool _is_open) {
        zip_t& zip = _is_open ? outer : *inner;
        const files_t files = files_in(_is_open ? _outer_names : inner_names);
        if (files.information.isEmpty() || files.installations.isEmpty()) {
            return result_t::failed(QStringLiteral("The zip holds no ETS project."));
        }
        result_t read = zip.visit({files.information}, [&](const QString& _name, QIODevice* _file) {
            return read_information(_file, _name, &project);
        });
        links_t links;
        for (const QString& file : files.installations) {
            read = !read.is_ok() ? read : zip.visit({file}, [&](const QString& _n, QIODevice* _f) {
                return installation_reader_t(&project, &links, how.limits)
                    .read(_f, _n, how.progress);
            });
        }
        return read.is_ok()
                   ? linked_types_t(&outer, _outer_names, links).resolve(&project, how.progress)
                   : read;
    }

    const reading_t& how;
    qint64 left;
    zip_t outer;
    std::unique_ptr<zip_t> inner;
    QStringList inner_names;
    project_t project;
};

}  // namespace

result_of_t<project_t> read_project(const QByteArray& _zip, const reading_t& _how) {
    return project_zip_t(_zip, _how).read();
}

}  // namespace ets
