#pragma once

#include <QList>
#include <QMap>
#include <QSet>
#include <utility>

#include "ets/draft_t.h"
#include "ets/part_t.h"
#include "ets/project_t.h"

namespace ets {

/// Makes elements of the addresses that no function covers: they are paired by their data point
/// types and names. Addresses that none is made of are noted in the project.
class rest_maker_t {
 public:
    rest_maker_t(project_t* _project, const QSet<quint16>& _covered);

    QList<draft_t> make();

 private:
    /// Addresses that make one element: at most one for each part and way.
    struct set_t {
        QMap<part_t, quint16> commands;
        QMap<part_t, quint16> states;
        quint16 first = 0;
    };
    /// What is paired at all: the family of parts, and the name that they have in common.
    using key_t = std::pair<int, QString>;

    void sort_in(const group_t& _group);
    static set_t& nearest(QList<set_t>* _sets, part_t _part, bool _is_state, quint16 _raw);
    void make_of(int _family, const set_t& _set);
    void make_light(const set_t& _set);
    void make_blind(const set_t& _set);
    void make_climate(const set_t& _set);
    void make_scene(const group_t& _group);
    void make_single(const set_t& _set, part_t _part, int _type, const QString& _point);

    point_t point(const set_t& _set, part_t _part) const;
    draft_t draft(int _type, const set_t& _set, std::initializer_list<part_t> _order) const;
    void add(draft_t* _draft, const QString& _key, const point_t& _point, bool _always);
    void note_left(const group_t& _group);

    project_t* const project;
    QList<group_t> rest;
    QMap<key_t, QList<set_t>> sets;
    QSet<quint16> used;
    QList<draft_t> drafts;
};

}  // namespace ets
