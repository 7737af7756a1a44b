#include "conversion.h"

#include <optional>

#include "accounts/broker_hash.h"
#include "database/name_rules.h"
#include "ets/groups_text.h"
#include "ets/house_document.h"
#include "ets/source_reader.h"
#include "installation/password_error.h"
#include "program/file_reader_t.h"
#include "program/password_input.h"
#include "program/private_file.h"
#include "program/progress_line_t.h"
#include "program/say.h"
#include "program/standard_streams.h"

namespace torlan {

using base::result_of_t;
using base::result_t;

namespace {

/// A project's password is the project's: only the user's has rules.
QString project_password_error(const QString& _password) {
    return _password.isEmpty() ? QStringLiteral("must not be empty") : QString();
}

/// What a call works with.
struct call_t {
    const options_t& options;
    std::optional<QString> password{};
    bool was_password_used = false;
};

result_of_t<ets::project_t> read(call_t* _call) {
    ets::reading_t how;
    if (!_call->options.password_file.isEmpty()) {
        const auto password =
            read_password_file(_call->options.password_file, project_password_error);
        if (!password.is_ok()) {
            return password;
        }
        _call->password = password.value;
    }
    how.password = _call->password;
    how.password_used = &_call->was_password_used;
    const QString& path = _call->options.project;
    const auto bytes = file_reader_t(path, how.limits.file_bytes).read();
    if (!bytes.is_ok()) {
        return bytes;
    }
    progress_line_t line;
    how.progress = [&line](const QString& _what, qint64 _bytes) {
        line.show_often(QStringLiteral("reading %1: %2 MiB")
                            .arg(database::shown(_what), QString::number(_bytes >> 20)));
    };
    return ets::read_source(bytes.value, path, how);
}

result_of_t<QString> user_password(const call_t& _call) {
    using database::installation::password_error;
    if (!_call.options.user_password_file.isEmpty()) {
        return read_password_file(_call.options.user_password_file, password_error);
    }
    if (!_call.password || _call.was_password_used) {
        return read_password(
            password_error,
            QStringLiteral("Password of the API user %1: ").arg(_call.options.user));
    }
    say(stderr, QStringLiteral("The project has no password: that of %1 becomes the user's.")
                    .arg(_call.options.password_file));
    const QString error = password_error(*_call.password);
    return error.isEmpty() ? result_of_t<QString>(*_call.password)
                           : result_of_t<QString>(
                                 result_t::failed(QStringLiteral("%1: The password %2.")
                                                      .arg(_call.options.password_file, error)));
}

result_of_t<QByteArray> installation(const call_t& _call, ets::project_t* _project) {
    std::optional<ets::owner_t> owner;
    if (!_call.options.user.isEmpty()) {
        const auto password = user_password(_call);
        if (!password.is_ok()) {
            return password;
        }
        owner = {_call.options.user, accounts::make_password_hash(password.value)};
    }
    return ets::house_document(_project, owner);
}

result_t write(const options_t& _options, const QByteArray& _bytes) {
    return _options.output.isEmpty() ? write_output(_bytes)
                                     : write_private_file(_options.output, _bytes);
}

}  // namespace

result_t convert(const options_t& _options) {
    using database::quoted;
    const QString error =
        _options.user.isEmpty() ? QString() : database::identifier_error(_options.user);
    if (!error.isEmpty()) {
        return result_t::failed(
            QStringLiteral("The user name %1 %2.").arg(quoted(_options.user), error));
    }
    call_t call{_options};
    auto project = read(&call);
    if (!project.is_ok()) {
        return project;
    }
    const auto text = _options.only_groups
                          ? result_of_t<QByteArray>(ets::groups_text(project.value))
                          : installation(call, &project.value);
    const result_t written = text.is_ok() ? write(_options, text.value) : result_t(text);
    for (const QString& note : written.is_ok() ? project.value.notes : QStringList()) {
        say(stderr, note);
    }
    return written;
}

}  // namespace torlan
