// torlan-bench-report RESULTS [TEMPLATE DOCUMENT PLOTS]: tables of RESULTS on standard output; with
// the other three, DOCUMENT is made of TEMPLATE, its @words@ replaced by tables, and the plots are
// drawn into the folder PLOTS, if the results are complete.
#include <QCoreApplication>
#include <QFile>
#include <QJsonDocument>
#include <QSaveFile>

#include "bench/report/document.h"
#include "bench/report/plots.h"
#include "bench/report/results_check.h"
#include "program/begin_program.h"
#include "program/exit_status_t.h"
#include "program/say.h"
#include "program/standard_streams.h"

namespace {

using namespace bench;
using base::result_t;

base::result_of_t<QByteArray> read(const QString& _path) {
    QFile file(_path);
    if (!file.open(QIODevice::ReadOnly)) {
        return result_t::failed(
            QStringLiteral("%1 cannot be read: %2.").arg(_path, file.errorString()));
    }
    return file.readAll();
}

result_t write(const QString& _path, const QString& _text) {
    QSaveFile file(_path);
    return file.open(QIODevice::WriteOnly) && file.write(_text.toUtf8()) >= 0 && file.commit()
               ? result_t()
               : result_t::failed(
                     QStringLiteral("%1 cannot be written: %2.").arg(_path, file.errorString()));
}

result_t make_document(const QJsonObject& _results, const QStringList& _arguments) {
    result_t checked = check_results(_results);
    const auto form = read(_arguments[2]);
    if (!checked.is_ok() || !form.is_ok()) {
        return checked.is_ok() ? result_t(form) : checked;
    }
    const auto text = fill_in(QString::fromUtf8(form.value), tables_of(_results));
    const result_t drawn = text.is_ok() ? draw(plots_of(_results), _arguments[4]) : result_t(text);
    return drawn.is_ok() ? write(_arguments[3], text.value) : drawn;
}

result_t report(const QStringList& _arguments) {
    const auto text = read(_arguments[1]);
    if (!text.is_ok()) {
        return text;
    }
    const QJsonObject results = QJsonDocument::fromJson(text.value).object();
    if (_arguments.size() > 2) {
        return make_document(results, _arguments);
    }
    torlan::write_text(stdout, all_tables(results));
    return {};
}

}  // namespace

int main(int _argc, char* _argv[]) {
    torlan::begin_program("torlan-bench-report");
    const QCoreApplication application(_argc, _argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 2 && arguments.size() != 5) {
        torlan::say(stderr, "it takes RESULTS, or RESULTS TEMPLATE DOCUMENT PLOTS.");
        return torlan::status_usage;
    }
    const result_t reported = report(arguments);
    if (!reported.is_ok()) {
        torlan::say(stderr, reported.error);
        return torlan::status_failed;
    }
    return torlan::status_done;
}
