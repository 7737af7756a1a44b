#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>
#include <algorithm>
#include <utility>

namespace base {

/// Values by text, for up to some hundred: one piece of memory, where a QHash takes two kilobytes
/// for the first. Copies share it until one of them changes. Not ordered.
template <class value_t>
class small_table_t {
 public:
    struct row_t {
        std::size_t hash;
        QString key;
        value_t value;
        bool operator==(const row_t& _other) const {
            return hash == _other.hash && key == _other.key && value == _other.value;
        }
    };

    bool contains(const QString& _key) const { return find(_key) != nullptr; }
    /// Null: there is none. Until the table changes.
    const value_t* find(const QString& _key) const {
        const row_t* const row = find_row(_key);
        return row != nullptr ? &row->value : nullptr;
    }
    value_t value(const QString& _key) const {
        const value_t* const found = find(_key);
        return found != nullptr ? *found : value_t();
    }

    /// Also in the place of the one that is there; an equal one leaves the table shared.
    void insert(const QString& _key, const value_t& _value) {
        const row_t* const row = find_row(_key);
        if (row == nullptr) {
            const std::size_t hash = qHash(_key);
            rows.insert(place_of(hash) - rows.cbegin(), row_t{hash, _key, _value});
            seen |= bit_of(hash);
        } else if (!(row->value == _value)) {
            rows[row - rows.constData()].value = _value;
        }
    }
    /// False: there is none.
    bool remove(const QString& _key) {
        const row_t* const row = find_row(_key);
        if (row != nullptr) {
            rows.removeAt(row - rows.constData());
        }
        return row != nullptr;
    }
    void clear() {
        rows = {};
        seen = 0;
    }

    qsizetype size() const { return rows.size(); }
    bool isEmpty() const { return rows.isEmpty(); }
    typename QList<row_t>::const_iterator begin() const { return rows.cbegin(); }
    typename QList<row_t>::const_iterator end() const { return rows.cend(); }

    QStringList keys() const {
        QStringList keys;
        keys.reserve(rows.size());
        for (const row_t& row : rows) {
            keys.append(row.key);
        }
        return keys;
    }
    QHash<QString, value_t> to_hash() const {
        QHash<QString, value_t> hash;
        hash.reserve(rows.size());
        for (const row_t& row : rows) {
            hash.insert(row.key, row.value);
        }
        return hash;
    }

    bool operator==(const small_table_t& _other) const { return rows == _other.rows; }
    /// Keeps one copy of both when they are equal.
    void share(const small_table_t& _other) {
        if (rows == _other.rows) {
            rows = _other.rows;
        }
    }
    bool is_shared_with(const small_table_t& _other) const {
        return rows.constData() == _other.rows.constData();
    }

 private:
    static quint64 bit_of(std::size_t _hash) { return quint64(1) << (_hash % 64); }
    auto place_of(std::size_t _hash) const {
        return std::lower_bound(
            rows.cbegin(), rows.cend(), _hash,
            [](const row_t& _row, std::size_t _wanted) { return _row.hash < _wanted; });
    }
    const row_t* find_row(const QString& _key) const {
        const std::size_t hash = qHash(_key);
        if ((seen & bit_of(hash)) == 0) {
            return nullptr;
        }
        for (auto row = place_of(hash); row != rows.cend() && row->hash == hash; ++row) {
            if (row->key == _key) {
                return &*row;
            }
        }
        return nullptr;
    }

    QList<row_t> rows;  ///< by their hashes
    /// Of the hashes that were inserted: most of those who ask in vain need no look at the rows,
    /// which are somewhere else in memory.
    quint64 seen = 0;
};

}  // namespace base
