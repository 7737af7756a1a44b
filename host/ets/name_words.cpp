#include "ets/name_words.h"

#include <QRegularExpression>
#include <QStringList>
#include <algorithm>

namespace ets {

namespace {

struct stems_t {
    hint_t hint;
    const char* stems;  ///< words; "*" at the end: and all that begin so
};

// English, German, French, Italian, Spanish and Dutch, as people type them.
constexpr stems_t table[] = {
    {hint_t::status,
     "status* state feedback fb rm rückmeld* rueckmeld* zustand* meldung état etat états retour ri "
     "stato stati estado* toestand terugmelding info"},
    {hint_t::switching,
     "switch* switching on off onoff schalt* ein aus einaus an commut* accen* spegn* encend* "
     "apag* aan uit schakel* allum* comando commande"},
    {hint_t::dimming, "dim dimm* dimmer brighter darker heller dunkler variat* regul* gradat*"},
    {hint_t::value,
     "value* wert* dimmwert* level percent* % prozent* helligkeit* brightness valeur* valor* "
     "valore* "
     "waarde* absolut* point punkt"},
    {hint_t::moving,
     "move* movement up down updown auf ab zu fahren langzeit lang long hoch runter "
     "montee descente montée su giù giu salita discesa subir bajar op neer bewegen"},
    {hint_t::stopping, "stop* step* kurzzeit kurz short schritt* arrêt arret parada passo"},
    {hint_t::position, "position* pos posizion* posici* höhe hoehe height behanghöhe positie*"},
    {hint_t::slat, "slat* lamell* lamelle* winkel angle tilt lama lame* lamas"},
    {hint_t::setpoint,
     "setpoint* set sp target soll* sollwert* solltemperatur* basissollwert* consigne* "
     "consigna* setpunt nominal"},
    {hint_t::actual,
     "actual ist istwert* isttemperatur* measured current raumtemperatur* gemessen"},
    {hint_t::temperature, "temp temperatur* température* temperature* °c"},
    {hint_t::humidity, "humid* feucht* luftfeucht* humidité umidità humedad vocht*"},
    {hint_t::valve,
     "valve* ventil* stellgröße* stellgroesse* stellwert* stellgr* vanne* valvola* válvula* "
     "heating "
     "heizung*"},
    {hint_t::mode, "mode* modus betriebsart* betriebsmodus* hvac régime modo modalità"},
    {hint_t::power, "power leistung* puissance* potenza* potencia* wirkleistung* vermogen watt w"},
    {hint_t::socket,
     "socket* outlet* steckdose* prise* presa prese enchufe* stopcontact* stkd sd plug*"},
    {hint_t::scene, "scene* szene* scène* scena* scenario* escena* lichtszene*"},
};

bool is_stem_of(const QString& _stem, const QString& _word) {
    return _stem.endsWith(u'*') ? _word.startsWith(QStringView(_stem).chopped(1)) : _word == _stem;
}

struct known_t {
    hint_t hint;
    QStringList stems;
};

const QList<known_t>& known() {
    static const QList<known_t> all = [] {
        QList<known_t> made;
        for (const stems_t& row : table) {
            made.append({row.hint, QString::fromUtf8(row.stems).split(u' ', Qt::SkipEmptyParts)});
        }
        return made;
    }();
    return all;
}

QStringList words_of(const QString& _name) {
    static const QRegularExpression gap(QStringLiteral("[^\\p{L}\\p{N}%°]+"));
    return _name.toLower().split(gap, Qt::SkipEmptyParts);
}

bool is_said(const QString& _word, const known_t& _known) {
    return std::any_of(_known.stems.begin(), _known.stems.end(),
                       [&](const QString& _stem) { return is_stem_of(_stem, _word); });
}

}  // namespace

bool says(const QString& _name, hint_t _hint) {
    const QStringList words = words_of(_name);
    return std::any_of(known().begin(), known().end(), [&](const known_t& _known) {
        return _known.hint == _hint &&
               std::any_of(words.begin(), words.end(),
                           [&](const QString& _word) { return is_said(_word, _known); });
    });
}

QString base_name(const QString& _name) {
    QStringList left;
    for (const QString& word : words_of(_name)) {
        const bool is_known =
            std::any_of(known().begin(), known().end(), [&](const known_t& _known) {
                return _known.hint != hint_t::socket && is_said(word, _known);
            });
        if (!is_known) {
            left.append(word);
        }
    }
    return left.join(u' ');
}

int scene_number(const QString& _name) {
    const QStringList words = words_of(_name);
    for (qsizetype place = 0; place + 1 < words.size(); ++place) {
        const int number = words[place + 1].toInt();
        if (says(words[place], hint_t::scene) && number >= 1 && number <= 64) {
            return number;
        }
    }
    return 0;
}

}  // namespace ets
