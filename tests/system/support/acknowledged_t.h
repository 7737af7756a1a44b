#pragma once

#include <QMap>
#include <QSet>
#include <QString>
#include <QStringList>

namespace support {

/// What was asked of an installation, and what of it was acknowledged. A thing has the value that
/// was acknowledged last, or one that was asked for since and had no answer.
class acknowledged_t {
 public:
    /// The thing has had this value all along.
    void begin(const QString& _thing, const QString& _value) { allowed[_thing] = {_value}; }
    /// Somebody asked for the value; @p _is_stored: and it was acknowledged.
    void asked(const QString& _thing, const QString& _value, bool _is_stored) {
        if (_is_stored) {
            ++count;
            allowed[_thing] = {_value};
        } else {
            allowed[_thing].insert(_value);
        }
    }
    /// What is not as it was acknowledged, in words; @p _now: what is there, by thing.
    QStringList lost(const QMap<QString, QString>& _now) const {
        QStringList sentences;
        for (auto thing = allowed.cbegin(); thing != allowed.cend(); ++thing) {
            const QString now = _now.value(thing.key());
            if (!thing->contains(now)) {
                sentences += QStringLiteral("%1 is \"%2\" and was acknowledged as \"%3\"")
                                 .arg(thing.key(), now, thing->values().join("\" or \""));
            }
        }
        return sentences;
    }
    QStringList things() const { return allowed.keys(); }
    /// How many were acknowledged.
    int acknowledged() const { return count; }

 private:
    QMap<QString, QSet<QString>> allowed;
    int count = 0;
};

}  // namespace support
