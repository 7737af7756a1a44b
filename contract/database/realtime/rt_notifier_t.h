#pragma once

#include <QJsonObject>
#include <QObject>
#include <QString>

namespace database::realtime {

/// Announces changes of the realtime side, after the objects hold the new state.
/// onRealtimeChangeItems means a bulk change (receivers load again), not one item.
class rt_notifier_t : public QObject {
    Q_OBJECT

 public:
    explicit rt_notifier_t(QObject* _parent = nullptr);
    ~rt_notifier_t() override;

 Q_SIGNALS:
    void onRealtimeChangeDatabase(const QJsonObject& _packet);
    void onRealtimeChangeItems(const QJsonObject& _packet);
    void onRealtimeChangeItem(const QJsonObject& _packet, const QString& _key);
    void onRealtimeChangeScenaryObjects(const QJsonObject& _packet, const QString& _key);
};

}  // namespace database::realtime
