#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

namespace database::persistent {

/// Announces changes of the persistent side, after the objects hold the new state. The packets
/// tell what changed to people; receivers go by signal and key only. The two bulk signals make
/// receivers read everything again.
class ps_notifier_t : public QObject {
    Q_OBJECT

 public:
    explicit ps_notifier_t(QObject* _parent = nullptr);
    ~ps_notifier_t() override;

 Q_SIGNALS:
    void onPersistentChangeDatabase(const QJsonObject& _packet);
    void onPersistentChangeElements(const QJsonObject& _packet);
    void onPersistentChangeElement(const QJsonObject& _packet, const QString& _key);
    void onPersistentChangeUsers(const QJsonObject& _packet);
    void onPersistentChangeUser(const QJsonObject& _packet, const QString& _key);
    void onPersistentStatusThermo(const QJsonObject& _packet, const QString& _key);
};

}  // namespace database::persistent
