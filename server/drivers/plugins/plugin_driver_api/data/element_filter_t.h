#pragma once

#include <QJsonObject>
#include <QSet>
#include <QString>

namespace interfaces {

/// What a read asks to be left of elements: {"types": [numbers], "functions": [texts]}. Made once a
/// request and asked for every element and function, so it searches no list. A value type.
class element_filter_t {
 public:
    /// Lets everything pass.
    element_filter_t();
    /// A key that is absent, empty or no array lets everything pass. Entries of other kinds are
    /// no element's and count all the same: a list of them lets nothing pass.
    explicit element_filter_t(const QJsonObject& _filter);

    bool passes_type(int _type) const;
    /// @param _function the whole name; its last "/"-separated segment is compared.
    bool passes_function(const QString& _function) const;

 private:
    bool filters_types = false;
    bool filters_functions = false;
    QSet<double> types;  ///< JSON numbers
    QSet<QString> functions;
};

}  // namespace interfaces
