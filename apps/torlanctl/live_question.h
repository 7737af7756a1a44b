#pragma once

#include <QJsonObject>
#include <QString>

#include "base/result_t.h"
#include "control/control_client_t.h"

/// Questions to the server that runs on a data folder, over its owner's socket.
namespace torlan {

/// Asks, and gives the first line of the answer. Waits 5 s at most.
base::result_of_t<QJsonObject> first_answer(control::control_client_t* _client,
                                            const QString& _data, const QJsonObject& _question);

/// A clause about the server as a sentence.
base::result_t as_sentence(const base::result_t& _clause);

}  // namespace torlan
