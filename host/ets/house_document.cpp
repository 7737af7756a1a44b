#include "ets/house_document.h"

#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>

#include "database/name_rules.h"
#include "ets/function_maker.h"
#include "ets/identifiers_t.h"
#include "ets/rest_maker_t.h"

namespace ets {

namespace {

QString text(const char* _word) {
    return QString::fromLatin1(_word);
}

/// In order: a JSON object that grows elsewhere than at its end is slow.
using section_t = QMap<QString, QJsonObject>;

QJsonObject object_of(const section_t& _section) {
    QJsonObject object;
    for (auto it = _section.cbegin(); it != _section.cend(); ++it) {
        object.insert(it.key(), it.value());
    }
    return object;
}

/// Builds the sections of a document out of drafts.
class writer_t {
 public:
    writer_t(const project_t& _project, const std::optional<owner_t>& _owner)
        : project(_project), owner(_owner) {}

    QByteArray write(const QList<draft_t>& _drafts) {
        for (const draft_t& draft : _drafts) {
            add(draft);
        }
        QJsonObject document{{text("topic"), topic()},
                             {text("items"), object_of(items)},
                             {text("scenarios"), object_of(scenarios)},
                             {text("thermostats"), object_of(thermostats)},
                             {text("elements"), object_of(elements)}};
        if (owner) {
            add_owner(&document);
        }
        return QJsonDocument(document).toJson(QJsonDocument::Indented);
    }

 private:
    QString topic() const {
        const QString own = text("installation/") + project.id;
        return database::topic_error(own).isEmpty() ? own : text("installation/ets");
    }

    void add(const draft_t& _draft) {
        const QString id = ids.take(text("e"), _draft.primary(), _draft.origin);
        QJsonObject element{
            {text("name"), _draft.name}, {text("type"), _draft.type}, {text("flags"), 0}};
        if (_draft.type == kind::scene) {
            element.insert(text("scenario"), scenario(_draft));
        } else if (_draft.type == kind::thermostat) {
            element.insert(text("thermostat"), thermostat(_draft));
        } else {
            element.insert(text("functions"), connections(_draft, {}));
        }
        elements.insert(id, element);
    }

    QJsonObject connections(const draft_t& _draft, const QStringList& _but) {
        QJsonObject made;
        for (auto it = _draft.points.cbegin(); it != _draft.points.cend(); ++it) {
            if (!_but.contains(it.key())) {
                made.insert(it.key(), item(it.value()));
            }
        }
        for (const QString& key : _draft.empty_points) {
            made.insert(key, QJsonValue());
        }
        return made;
    }

    /// The item of a point; elements that have the same one share it.
    QString item(const point_t& _point) {
        for (const QString& id : items_at.value(_point.primary())) {
            if (points.value(id) == _point) {
                return id;
            }
        }
        const QString state =
            _point.status.isEmpty() ? QString() : identifiers_t::of_address(_point.status[0]);
        const QString id = ids.take(text("i"), _point.primary(), state);
        items_at[_point.primary()].append(id);
        points.insert(id, _point);
        items.insert(id, item_object(_point));
        return id;
    }

    QJsonObject item_object(const point_t& _point) const {
        QJsonObject knx{{text("dpt"), _point.dpt}};
        if (_point.write) {
            knx.insert(text("write"), project.address(*_point.write));
        }
        if (!_point.status.isEmpty()) {
            QJsonArray status;
            for (const quint16 raw : _point.status) {
                status.append(project.address(raw));
            }
            knx.insert(text("status"), status);
            knx.insert(text("read"), true);
        }
        // Empty: nobody knows it before the bus has told it.
        QJsonObject object{{text("value"), QString()}, {text("knx"), knx}};
        if (!_point.write) {
            object.insert(text("writable"), false);
        }
        return object;
    }

    QString scenario(const draft_t& _draft) {
        const point_t point = _draft.points.first();
        const QString id = ids.take(text("s"), _draft.primary(), QString::number(_draft.scene));
        QJsonObject knx{{text("write"), project.address(_draft.primary())},
                        {text("scene"), _draft.scene}};
        if (point.dpt != QLatin1String("17.001")) {
            knx.insert(text("dpt"), point.dpt);
        }
        scenarios.insert(id, QJsonObject{{text("execution"), false}, {text("knx"), knx}});
        return id;
    }

    QString thermostat(const draft_t& _draft) {
        const QString actual = text("actual");
        const QString window = text("window");
        const QString id = ids.take(text("t"), _draft.primary(), _draft.origin);
        QJsonObject object{{text("ids"), connections(_draft, {actual, window})}};
        if (_draft.points.contains(actual)) {
            object.insert(text("id_actual"), item(_draft.points[actual]));
        }
        if (_draft.points.contains(window)) {
            object.insert(text("id_windows_contact"), item(_draft.points[window]));
        }
        thermostats.insert(id, object);
        return id;
    }

    void add_owner(QJsonObject* _document) const {
        const QString prefixed = text("u-") + owner->name;
        const QString id = database::identifier_error(prefixed).isEmpty() ? prefixed : owner->name;
        QJsonObject grants;
        for (auto it = elements.cbegin(); it != elements.cend(); ++it) {
            grants.insert(it.key(), text("readwrite"));
        }
        _document->insert(
            text("users"),
            QJsonObject{{id, QJsonObject{{text("username"), owner->name},
                                         {text("password_hash"), owner->password_hash}}}});
        _document->insert(text("permissions"), QJsonObject{{id, grants}});
    }

    const project_t& project;
    const std::optional<owner_t>& owner;
    identifiers_t ids;
    QHash<quint16, QStringList> items_at;  ///< by primary address
    QHash<QString, point_t> points;
    section_t items;
    section_t scenarios;
    section_t thermostats;
    section_t elements;
};

}  // namespace

QByteArray house_document(project_t* _project, const std::optional<owner_t>& _owner) {
    QSet<quint16> covered;
    QList<draft_t> drafts = drafts_of_functions(*_project, &covered);
    drafts += rest_maker_t(_project, covered).make();
    // The first of two who want one identifier is the same at each import.
    std::stable_sort(drafts.begin(), drafts.end(), [](const draft_t& _one, const draft_t& _other) {
        return std::pair(_one.primary(), _one.origin) < std::pair(_other.primary(), _other.origin);
    });
    return writer_t(*_project, _owner).write(drafts);
}

}  // namespace ets
