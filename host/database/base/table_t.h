#pragma once

#include <QMap>
#include <QString>
#include <memory>
#include <utility>

namespace database::base {

/// The objects of one kind, by id. Owns them. Host thread only.
template <class object_t>
class table_t {
 public:
    table_t() = default;
    ~table_t() { clear(); }
    Q_DISABLE_COPY_MOVE(table_t)

    /// All objects by id: an implicitly shared copy, no query. The pointers hold until the host
    /// changes the table, that is until control returns to the event loop.
    QMap<QString, object_t*> getObjects() const { return objects; }

    /// The object of @p _id; to be called only for an id that getObjects() contains, else null.
    object_t* list(const QString& _id) const { return objects.value(_id, nullptr); }

    /// Inserts or replaces (host only).
    void put(const QString& _id, std::unique_ptr<object_t> _object) {
        std::unique_ptr<object_t> old(objects.value(_id, nullptr));
        objects.insert(_id, _object.release());
    }

    /// Takes one out; an unknown id is ignored (host only).
    void remove(const QString& _id) { std::unique_ptr<object_t> old(objects.take(_id)); }

    /// Takes all out (host only).
    void clear() {
        const QMap<QString, object_t*> old = std::exchange(objects, {});
        qDeleteAll(old);
    }

 private:
    QMap<QString, object_t*> objects;
};

}  // namespace database::base
