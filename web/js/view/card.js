// One element.

import {functionOrder} from '../home.js';
import {kindOf, shapeOf} from '../logic/kinds.js';
import {shortName} from '../logic/rooms.js';
import {isOn} from '../logic/values.js';
import {texts} from '../texts.js';
import {freshId, make} from './dom.js';
import {icon} from './icons.js';
import {Row} from './row.js';

export class Card {
    constructor(element, home, room) {
        Object.assign(this, {element, home});
        this.look = Card.lookOf(element, home, room);
        const id = freshId();
        const may = home.mayWrite(element.id);
        this.rows = new Map([...element.functions.keys()]
            .filter((name) => shapeOf(element, name).control !== 'hidden')
            .sort((a, b) => functionOrder(a) - functionOrder(b))
            .map((name) => [name, new Row(element, name, home, may)]));
        this.node = make('article', {class: 'card', 'aria-labelledby': id, 'data-id': element.id,
            'data-kind': kindOf(element)},
            make('header', {},
                make('span', {class: 'badge'}, icon(kindOf(element))),
                make('div', {class: 'names'},
                    make('h3', {id, title: element.name}, shortName(element.name, room),
                        room ? make('span', {class: 'for-readers'}, `, ${room}`) : null),
                    make('p', {'aria-hidden': 'true'}, room ?? element.id)),
                this.chip(), ...this.lead()),
            ...[...this.rows.values()].map((row) => row.node));
        this.showState();
    }

    /// What a card is built by; another look needs another card.
    static lookOf(element, home, room) {
        return [element.name, element.type, room, home.mayWrite(element.id),
            home.rights.get(element.id), element.isWriteOnly === true,
            ...element.functions.keys()].join('\n');
    }

    /// The switch or the button of the head; for those who may not press it, how it is.
    lead() {
        const row = this.rows.get('execute');
        return row?.isLead() ? [row.control?.node ?? row.value] : [];
    }

    chip() {
        if (this.element.isWriteOnly) {
            return make('button', {type: 'button', class: 'chip', title: texts.card.remove,
                'aria-label': `${texts.card.remove}: ${this.element.id}`,
                onclick: () => this.home.removeWriteOnly(this.element.id)},
                `${texts.card.writeOnly} ✕`);
        }
        return this.home.rights.get(this.element.id) === 'no'
            ? make('span', {class: 'chip'}, texts.card.readOnly) : null;
    }

    /// Whether a function has its place here; another one needs another card.
    knows(name) {
        return this.rows.has(name) || shapeOf(this.element, name).control === 'hidden';
    }

    showValues(names) {
        names.forEach((name) => this.rows.get(name)?.show());
        this.showState();
    }

    /// Whether it is on, for the eye.
    showState() {
        const value = this.element.functions.get('execute') ?? this.element.functions.get('open');
        this.node.classList.toggle('is-on', isOn(value));
    }

    tell(name, asked) {
        this.rows.get(name)?.tell(asked);
    }

    draw() {
        this.rows.forEach((row) => row.draw());
    }
}
