#pragma once

#include <QFile>

#include "kit/sample_installation.h"

namespace sample {

/// Makes a database as the programs of a former layout made it, with what installation() holds.
class former_layout_t {
 public:
    /// @param _more statements on top, as an SQL shell can write them
    explicit former_layout_t(const QString& _path, const QStringList& _more = {}, int _layout = 1) {
        using access_t = database::store::connection_t::access_t;
        error = connection.open(_path, access_t::read_write, 1000).error;
        run(QStringLiteral("PRAGMA journal_mode = WAL"));
        run(QStringLiteral("BEGIN"));
        make_tables(_layout);
        fill(installation());
        if (_layout > 1) {
            run("INSERT INTO meta VALUES ('imported', '2026-11-01T12:00:00Z')");
        }
        run(QStringLiteral("COMMIT"));
        for (const QString& sql : _more) {
            run(sql);
        }
        connection.close();
    }

    QString error;  ///< empty: made

 private:
    void run(const QString& _sql, const QVariantList& _values = {}) {
        error = error.isEmpty() ? connection.run(_sql, _values).error : error;
    }

    void make_tables(int _layout) {
        QFile schema(QStringLiteral(TEST_DATA "/layout_%1.sql").arg(_layout));
        if (!schema.open(QIODevice::ReadOnly)) {
            error = schema.errorString();
        }
        QStringList statements = QString::fromUtf8(schema.readAll()).split(QStringLiteral("\n\n"));
        statements.removeFirst();  // the comment
        statements += {QStringLiteral("PRAGMA application_id = 1953460836"),
                       QStringLiteral("PRAGMA user_version = %1").arg(_layout)};
        for (const QString& sql : statements) {
            run(sql);
        }
    }

    static QVariant reference(const QString& _id) { return _id.isEmpty() ? QVariant() : _id; }

    void fill(const database::installation::installation_t& _whole) {
        run("INSERT INTO meta VALUES ('topic', ?)", {_whole.topic});
        for (auto i = _whole.items.begin(); i != _whole.items.end(); ++i) {
            run("INSERT INTO items (id, value) VALUES (?, ?)", {i.key(), i->value});
        }
        for (auto i = _whole.scenarios.begin(); i != _whole.scenarios.end(); ++i) {
            run("INSERT INTO scenarios (id, execution) VALUES (?, ?)", {i.key(), int(*i)});
        }
        for (auto i = _whole.thermostats.begin(); i != _whole.thermostats.end(); ++i) {
            run("INSERT INTO thermostats VALUES (?, ?, ?)",
                {i.key(), reference(i->id_actual), reference(i->id_windows_contact)});
            for (auto id = i->ids.begin(); id != i->ids.end(); ++id) {
                run("INSERT INTO thermostat_ids VALUES (?, ?, ?)",
                    {i.key(), id.key(), reference(*id)});
            }
        }
        for (auto i = _whole.elements.begin(); i != _whole.elements.end(); ++i) {
            run("INSERT INTO elements VALUES (?, ?, ?, ?, ?, ?)",
                {i.key(), i->name, i->type, i->flags, reference(i->scenario),
                 reference(i->thermostat)});
            for (auto f = i->functions.begin(); f != i->functions.end(); ++f) {
                run("INSERT INTO functions VALUES (?, ?, ?)", {i.key(), f.key(), reference(*f)});
            }
        }
        for (auto i = _whole.users.begin(); i != _whole.users.end(); ++i) {
            run("INSERT INTO users VALUES (?, ?, ?)", {i.key(), i->username, i->password_hash});
        }
        for (auto user = _whole.permissions.begin(); user != _whole.permissions.end(); ++user) {
            for (auto i = user->begin(); i != user->end(); ++i) {
                run("INSERT INTO permissions VALUES (?, ?, ?)", {user.key(), i.key(), *i});
            }
        }
    }

    database::store::connection_t connection;
};

}  // namespace sample
