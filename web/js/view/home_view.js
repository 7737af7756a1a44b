// The elements: grouped, searched, kept as they are.

import {kindOf, kindOrder} from '../logic/kinds.js';
import {roomsOf} from '../logic/rooms.js';
import {matches, wordsOf} from '../logic/search.js';
import {fill, texts} from '../texts.js';
import {Card} from './card.js';
import {make} from './dom.js';
import {writeOnlyForm} from './write_only_form.js';

const drawEvery = 5000;

export class HomeView {
    constructor(home) {
        this.home = home;
        this.cards = new Map();
        this.search = make('input', {type: 'search', placeholder: texts.home.searchHint,
            'aria-label': texts.home.search, oninput: () => this.later()});
        this.room = make('select', {'aria-label': texts.home.room, onchange: () => this.later()});
        this.group = make('select', {'aria-label': texts.home.group, onchange: () => this.later()},
            make('option', {value: 'kind'}, texts.home.byKind),
            make('option', {value: 'room'}, texts.home.byRoom));
        this.list = make('div', {class: 'groups'});
        this.note = make('p', {class: 'empty'});
        this.node = make('main', {id: 'home', tabindex: '-1'},
            make('div', {class: 'tools', role: 'search'}, this.search, this.room, this.group),
            this.note, this.list, writeOnlyForm(home));
        this.timer = setInterval(() => this.draw(), drawEvery);
        this.render();
    }

    /// Many changes become one rendering.
    later() {
        this.frame ??= requestAnimationFrame(() => {
            this.frame = null;
            this.render();
        });
    }

    render() {
        const all = [...this.home.elements.all.values()];
        const rooms = roomsOf(all.filter((each) => String(each.type) !== '8' && !each.isWriteOnly)
            .map((each) => each.name));
        this.offerRooms([...new Set(rooms.values())].sort());
        const words = wordsOf(this.search.value);
        const shown = all.filter((each) => {
            const room = rooms.get(each.name) ?? '';
            return (this.room.value === '' || room === this.room.value) &&
                matches(words, each.name, each.id, room);
        });
        this.say(all.length, shown.length);
        this.drop(all);
        const focused = document.activeElement;
        this.list.replaceChildren(...this.groupsOf(shown, rooms).map(
            ([title, members]) => this.section(title, members, rooms)));
        if (focused !== document.activeElement && this.list.contains(focused)) {
            focused.focus({preventScroll: true});
        }
    }

    offerRooms(rooms) {
        const value = this.room.value;
        this.room.replaceChildren(make('option', {value: ''}, texts.home.allRooms),
            ...rooms.map((room) => make('option', {value: room}, room)));
        this.room.value = rooms.includes(value) ? value : '';
    }

    say(count, shown) {
        this.note.hidden = shown > 0;
        if (count > 0) {
            this.note.textContent = fill(texts.home.nothingFound, this.search.value);
        } else {
            this.note.textContent = this.home.hasRead
                ? `${texts.home.empty} ${texts.home.emptyHint}` : texts.home.loading;
        }
    }

    drop(all) {
        const left = new Set(all.map((each) => each.id));
        for (const id of [...this.cards.keys()].filter((each) => !left.has(each))) {
            this.cards.delete(id);
        }
    }

    /// [[title, elements], ...] in the page's order.
    groupsOf(elements, rooms) {
        const byRoom = this.group.value === 'room';
        const keyOf = byRoom ? (each) => rooms.get(each.name) ?? '' : kindOf;
        const groups = new Map();
        for (const each of elements) {
            groups.set(keyOf(each), [...(groups.get(keyOf(each)) ?? []), each]);
        }
        const keys = byRoom ? [...groups.keys()].sort((a, b) => (a === '') - (b === '') ||
            a.localeCompare(b)) : kindOrder.filter((kind) => groups.has(kind));
        const rank = (each) => kindOrder.indexOf(kindOf(each));
        return keys.map((key) => [
            byRoom ? key || texts.home.otherRoom : texts.kinds[key],
            groups.get(key).sort((a, b) => rank(a) - rank(b) || a.name.localeCompare(b.name)),
        ]);
    }

    section(title, elements, rooms) {
        return make('section', {'aria-label': title},
            make('h2', {}, title, make('span', {class: 'count'}, String(elements.length))),
            make('div', {class: 'cards'},
                ...elements.map((each) => this.cardOf(each, rooms.get(each.name)).node)));
    }

    cardOf(element, room) {
        const known = this.cards.get(element.id);
        if (known && known.element === element &&
            known.look === Card.lookOf(element, this.home, room)) {
            return known;
        }
        const card = new Card(element, this.home, room);
        this.cards.set(element.id, card);
        return card;
    }

    showValues(id, names) {
        const card = this.cards.get(id);
        if (card && names.some((name) => !card.knows(name))) {
            this.later();
        }
        card?.showValues(names);
    }

    tell(id, name, asked) {
        this.cards.get(id)?.tell(name, asked);
    }

    /// Time goes on in plots without a new value; only where somebody looks.
    draw() {
        if (document.hidden || this.node.hidden) {
            return;
        }
        const height = window.innerHeight;
        for (const card of this.cards.values()) {
            const edge = card.node.getBoundingClientRect();
            if (edge.bottom > 0 && edge.top < height) {
                card.draw();
            }
        }
    }

    end() {
        clearInterval(this.timer);
    }
}
