#include "explain.h"

#include "explanation.h"
#include "opened_store.h"
#include "output_t.h"

namespace torlan {

outcome_t explain(const call_t& _call) {
    database::store::sqlite_store_t store;
    const base::result_t opened = open_store(&store, _call);
    if (!opened.is_ok()) {
        return opened;
    }
    const auto access =
        database::store::overview_t(store.connection()).access(_call["USER"], _call["ELEMENT"]);
    if (!access.is_ok()) {
        return access;
    }
    output_t output;
    const QJsonObject told = explanation(access.value);
    if (_call.has("json")) {
        output.line(told);
    } else {
        output.add(explanation_text(told).toUtf8());
    }
    return output.finish();
}

}  // namespace torlan
