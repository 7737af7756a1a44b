#pragma once

#include <QHash>
#include <QString>

namespace interfaces {

/// The source of an executed command: a value with named constants, compared by name.
///
/// Every construction but a copy consumes a sequence number. Assignment takes the name over and
/// keeps the target's own number.
class type_source_exec_cmd_t {
 public:
    static const type_source_exec_cmd_t user;
    static const type_source_exec_cmd_t system;
    static const type_source_exec_cmd_t scene;
    static const type_source_exec_cmd_t scheduler;
    static const type_source_exec_cmd_t rule;
    static const type_source_exec_cmd_t thermo;
    static const type_source_exec_cmd_t lockfunction;
    static const type_source_exec_cmd_t presencesimulation;
    static const type_source_exec_cmd_t unknown;

    /// Name -> latest constant registered under it.
    static QHash<QString, const type_source_exec_cmd_t*> map;
    /// Sequence number of the next construction.
    inline static int maxI = 0;

    /// A null name; not registered.
    type_source_exec_cmd_t();
    /// Registers itself under @p name.
    explicit type_source_exec_cmd_t(const QString& name);
    type_source_exec_cmd_t(const type_source_exec_cmd_t& other);
    type_source_exec_cmd_t& operator=(const type_source_exec_cmd_t& other);
    ~type_source_exec_cmd_t();

    /// A copy of the constant of this name, of `unknown` when there is none. Case-sensitive.
    static type_source_exec_cmd_t fromString(const QString& s);

    bool operator==(const type_source_exec_cmd_t& other) const;
    bool operator!=(const type_source_exec_cmd_t& other) const;
    QString ToString() const;
    /// Exact, case-sensitive.
    bool is(const QString& s) const;
    bool is(const type_source_exec_cmd_t& other) const;
    int number() const;

 private:
    int sequence;
    QString name;
};

}  // namespace interfaces
