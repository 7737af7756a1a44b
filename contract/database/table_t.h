#pragma once

#include <QMap>
#include <QString>
#include <memory>
#include <utility>

namespace database::live {
class table_writer_t;
}

namespace database {

/// The objects of one kind, by id, as drivers read them. Owns them; the host alone changes them,
/// through its table_writer_t. Host thread only.
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

 private:
    friend class live::table_writer_t;

    void put(const QString& _id, std::unique_ptr<object_t> _object) {
        std::unique_ptr<object_t> old(objects.value(_id, nullptr));
        objects.insert(_id, _object.release());
    }

    void remove(const QString& _id) { std::unique_ptr<object_t> old(objects.take(_id)); }

    void clear() {
        const QMap<QString, object_t*> old = std::exchange(objects, {});
        qDeleteAll(old);
    }

    QMap<QString, object_t*> objects;
};

}  // namespace database
