#include "api/refusals.h"

#include <QJsonDocument>
#include <QTest>

using namespace torlan;

class tst_refusals : public QObject {
    Q_OBJECT

 private Q_SLOTS:
    void refusals_are_found_data() {
        QTest::addColumn<bool>("is_list");
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<QStringList>("found");
        const auto row = [](const char* _name, bool _is_list, const char* _answer,
                            const QStringList& _found) {
            QTest::newRow(_name) << _is_list << QByteArray(_answer).replace('\'', '"') << _found;
        };
        row("error", false, "{'error':404,'message':'Not found element e-x','uuid':'u'}",
            {"404 Not found element e-x"});
        row("error of a list", true, "{'error':413,'message':'Too large answer'}",
            {"413 Too large answer"});
        row("steers no terminal", false, "{'error':400,'message':'\\u001b[2J'}", {"400 ?[2J"});
        row("inside data", false, "{'data':{'error':401,'message':'Configure user'}}",
            {"401 Configure user"});
        row("passed on", false, "{'data':{'functions':{'execute':'202'}}}", {});
        row("one of two", false, "{'data':{'functions':{'execute':'202','level':'404'}}}",
            {"level: 404"});
        row("read", false, "{'data':{'name':'n','type':1,'functions':{'f':{'value':'404'}}}}", {});
        row("list of writes", true,
            "{'data':{'e-a':{'functions':{'f':'404','g':'202'}},'e-b':{'error':404,'message':'Non'}"
            "}}",
            {"e-a: f: 404", "e-b: 404 Non"});
        row("list of reads", true,
            "{'data':{'e-a':{'name':'n','type':1,'functions':{'f':{'value':'1'}}}}}", {});
        row("element that is called as the key", true,
            "{'data':{'functions':{'name':'n','type':1,'functions':{'f':{'value':'1'}}}}}", {});
    }
    void refusals_are_found() {
        QFETCH(bool, is_list);
        QFETCH(QByteArray, answer);
        QTEST(refusals(QJsonDocument::fromJson(answer).object(),
                       is_list ? about_t::list : about_t::one_element),
              "found");
    }
};

QTEST_GUILESS_MAIN(tst_refusals)
#include "tst_refusals.moc"
