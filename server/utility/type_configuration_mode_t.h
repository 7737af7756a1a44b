#pragma once

#include <QHash>
#include <QString>

namespace utility {

/// How configuration is obtained: a value with named constants, compared by name.
///
/// Every construction but a copy consumes a sequence number. Assignment takes the name over and
/// keeps the target's own number.
class type_configuration_mode_t {
 public:
    static const type_configuration_mode_t http;
    static const type_configuration_mode_t file;

    /// Name -> latest constant registered under it.
    static QHash<QString, const type_configuration_mode_t*> map;
    /// Sequence number of the next construction.
    inline static int maxI = 0;

    /// A null name; not registered.
    type_configuration_mode_t();
    /// Registers itself under @p name.
    explicit type_configuration_mode_t(const QString& name);
    type_configuration_mode_t(const type_configuration_mode_t& other);
    type_configuration_mode_t& operator=(const type_configuration_mode_t& other);
    ~type_configuration_mode_t();

    bool operator==(const type_configuration_mode_t& other) const;
    bool operator!=(const type_configuration_mode_t& other) const;
    QString ToString() const;
    /// Exact, case-sensitive.
    bool is(const QString& s) const;
    bool is(const type_configuration_mode_t& other) const;
    int number() const;

 private:
    int sequence;
    QString name;
};

}  // namespace utility
