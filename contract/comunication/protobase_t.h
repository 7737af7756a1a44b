#pragma once

#include <QJsonValue>
#include <QObject>
#include <QString>

#include "comunication/qos_t.h"

namespace comunication {

/// What every protocol endpoint can do: publish and take back.
///
/// Both operations are called on the endpoint's own thread only and never block.
class protobase_t : public QObject {
    Q_OBJECT

 public:
    explicit protobase_t(QObject* _parent = nullptr);
    ~protobase_t() override;

    /// Publishes @p _payload as compact JSON text.
    /// The last argument is reserved; drivers pass false.
    virtual void publish(const QString& _topic, const QJsonValue& _payload, utility::qos_t _qos,
                         bool _retain, bool _reserved) = 0;

    /// Removes the retained message of @p _topic: an empty payload. @p _retain false sends the
    /// empty message without the flag, which removes nothing.
    virtual void publish_delete(const QString& _topic, utility::qos_t _qos, bool _retain) = 0;
};

}  // namespace comunication
