#pragma once

#include <QHash>
#include <QIODevice>
#include <QSet>

#include "base/result_t.h"
#include "ets/com_object_t.h"
#include "ets/limits_t.h"
#include "ets/progress_t.h"
#include "ets/project_t.h"
#include "ets/xml_walk_t.h"

namespace ets {

/// Reads the file of an installation in a project, 0.xml: its group addresses, what is linked to
/// them, and the functions and devices in the rooms.
class installation_reader_t {
 public:
    installation_reader_t(project_t* _project, links_t* _links, const limits_t& _limits);

    /// Once. Addresses that an earlier file had are left out and noted: it is another bus.
    base::result_t read(QIODevice* _file, const QString& _name, const progress_t& _progress = {});

 private:
    struct space_t {
        QString room;  ///< its own name or that of the room that it is in; empty: in none
        bool is_cabinet = false;
    };

    void on_start(const xml_walk_t& _walk);
    void on_end(QStringView _element);
    void on_device(const xml_walk_t& _walk);
    void on_object(const xml_walk_t& _walk);
    void link(const QString& _address_id);
    void on_space(const xml_walk_t& _walk);
    void on_device_in_space(const xml_walk_t& _walk);
    void on_function(const xml_walk_t& _walk);
    void on_role(const xml_walk_t& _walk);
    void on_address(const xml_walk_t& _walk);
    void finish();
    QString room_of(const QList<qsizetype>& _objects) const;

    project_t* const project;
    links_t* const links;
    const limits_t limits;

    // Group addresses come behind what refers to them.
    com_object_t device;
    com_object_t object;
    qsizetype object_place = -1;
    int kept = 0;                             ///< links, functions and the like
    QHash<QString, QList<qsizetype>> linked;  ///< "GA-1" -> places of objects
    QList<space_t> spaces;
    QHash<QString, QString> rooms;                    ///< "DI-4" -> room
    QList<function_t> functions;                      ///< their addresses still wait
    QList<QList<std::pair<QString, QString>>> roles;  ///< of each: role, "GA-1"
    bool in_function = false;
    QStringList ranges;
    QHash<QString, quint16> addresses;  ///< "GA-1" -> raw
};

}  // namespace ets
