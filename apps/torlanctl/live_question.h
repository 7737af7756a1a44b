#pragma once

#include <QJsonObject>
#include <QString>
#include <chrono>

#include "base/result_t.h"
#include "control/control_client_t.h"

/// Questions to the server that runs on a data folder, over its owner's socket.
namespace torlan {

/// Asks, and gives the first line of the answer. Waits at most so long.
base::result_of_t<QJsonObject> first_answer(
    control::control_client_t* _client, const QString& _data, const QJsonObject& _question,
    std::chrono::milliseconds _patience = std::chrono::seconds(5));

/// A clause about the server as a sentence.
base::result_t as_sentence(const base::result_t& _clause);

}  // namespace torlan
