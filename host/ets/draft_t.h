#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <optional>

namespace ets {

/// What an element of an installation is made of: types and functions as in examples/README.md.
namespace kind {
inline constexpr int lamp = 1;
inline constexpr int dimmer = 2;
inline constexpr int blind = 3;
inline constexpr int socket = 4;
inline constexpr int temperature = 5;
inline constexpr int humidity = 6;
inline constexpr int contact = 7;
inline constexpr int scene = 8;
inline constexpr int thermostat = 17;
}  // namespace kind

/// One function of an element: the addresses behind its item.
struct point_t {
    std::optional<quint16> write{};  ///< nothing: the item can only be read
    QList<quint16> status{};         ///< empty: the address of @ref write tells the state, too
    QString dpt{};

    bool is_empty() const { return !write && status.isEmpty(); }
    quint16 primary() const { return write ? *write : status.value(0); }
    bool operator==(const point_t&) const = default;
};

/// An element that will be made, without identifiers.
struct draft_t {
    int type = 0;
    QString name;
    QString origin;                 ///< the function of the project that it is; empty: paired
    QMap<QString, point_t> points;  ///< by function, or by key of a thermostat
    QStringList empty_points;       ///< functions of the type that nothing is there for
    int scene = 0;                  ///< of a scene's element: its number, from 1

    /// The address that identifies it.
    quint16 primary() const;
};

/// "Kitchen: ceiling": the room in front of the name, where it is not in there already.
QString name_with_room(const QString& _name, const QString& _room);

}  // namespace ets
