#include "matrix.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include "database/permission.h"
#include "matrix_text.h"
#include "opened_store.h"
#include "output_t.h"
#include "store/overview_t.h"

namespace torlan {

namespace {

using base::result_of_t;
using base::result_t;
using database::store::overview_t;
using database::store::sqlite_store_t;

constexpr int usual_width = 120;

int line_width() {
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                             : usual_width;
}

class matrix_t {
 public:
    matrix_t(sqlite_store_t* _store, const call_t& _call)
        : overview(_store->connection()), call(_call) {}

    result_t show() {
        if (const result_t read = read_users(); !read.is_ok()) {
            return read;
        }
        return call.has("json") ? show_json() : show_tables();
    }
    result_t finish() { return output.finish(); }

 private:
    result_t read_users() {
        for (QString after;;) {
            const auto page = overview.users(after);
            if (!page.is_ok() || page.value.isEmpty()) {
                return page.is_ok() ? check_wanted() : result_t(page);
            }
            for (const overview_t::user_row_t& row : page.value) {
                ids.insert(row.username, row.id);
                names.append(row.username);
            }
            after = page.value.constLast().username;
        }
    }

    result_t check_wanted() {
        const QStringList wanted = call.all("USER");
        for (const QString& name : wanted) {
            if (!ids.contains(name)) {
                return result_t::failed(QStringLiteral("There is no user %1.").arg(name));
            }
        }
        names = wanted.isEmpty() ? names : wanted;
        return {};
    }

    /// Calls @p _show for each element with its grants to these users.
    template <typename show_t>
    result_t each(const QStringList& _names, show_t _show) {
        QStringList wanted;
        for (const QString& name : _names) {
            wanted.append(ids.value(name));
        }
        for (QString after;;) {
            const auto page = overview.grants(after, wanted);
            if (!page.is_ok() || page.value.isEmpty() || !output.is_read()) {
                return page;
            }
            for (const overview_t::element_row_t& row : page.value) {
                _show(row);
            }
            after = page.value.constLast().id;
        }
    }

    result_t show_json() {
        return each(names, [this](const overview_t::element_row_t& _row) {
            QJsonObject grants;
            for (const QString& name : names) {
                if (const int bits = _row.bits.value(ids.value(name)); bits != 0) {
                    grants.insert(name, database::permission::word(bits));
                }
            }
            output.line(QJsonObject{{QStringLiteral("element"), _row.id},
                                    {QStringLiteral("grants"), grants}});
        });
    }

    result_t show_tables() {
        const auto longest = overview.longest_element();
        result_t result(longest);
        const auto tables = columns_of(names, longest.value, line_width());
        for (qsizetype i = 0; i < tables.size() && result.is_ok(); ++i) {
            output.add(i > 0 ? "\n" : "");
            result = show_table(tables[i], longest.value);
        }
        return result;
    }

    result_t show_table(const QStringList& _names, int _width) {
        output.line(matrix_line({}, _width, _names, _names));
        return each(_names, [&](const overview_t::element_row_t& _row) {
            QStringList words;
            for (const QString& name : _names) {
                words.append(letters_of(_row.bits.value(ids.value(name))));
            }
            output.line(matrix_line(_row.id, _width, _names, words));
        });
    }

    overview_t overview;
    const call_t& call;
    output_t output;
    QHash<QString, QString> ids;  ///< by user name
    QStringList names;            ///< those that are shown
};

}  // namespace

outcome_t show_matrix(const call_t& _call) {
    sqlite_store_t store;
    const result_t opened = open_store(&store, _call);
    if (!opened.is_ok()) {
        return opened;
    }
    matrix_t matrix(&store, _call);
    const result_t shown = matrix.show();
    const result_t written = matrix.finish();
    return shown.is_ok() ? written : shown;
}

}  // namespace torlan
