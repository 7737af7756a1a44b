// One function of an element: its value, its control, what became of the last press.

import {functionLabel, shapeOf, valueText} from '../logic/kinds.js';
import {isOver} from '../logic/asked.js';
import {announce} from './announcer.js';
import {controlOf} from './controls.js';
import {make} from './dom.js';
import {noteOf} from './note.js';
import {Plot} from './plot.js';

const goodNoteFor = 4000;
/// Of less there would be no full second to write at the axis.
const shortestPlot = 10000;

export class Row {
    /// @param may whether the user may write the element
    constructor(element, name, home, may) {
        Object.assign(this, {element, name, home});
        this.shape = shapeOf(element, name);
        this.label = functionLabel(name, this.shape);
        const spoken = `${element.name}: ${this.label}`;
        this.wordsOf = (text) => valueText(this.shape, name, text);
        this.control = may ? controlOf(this.shape, spoken,
            (value) => home.write(element.id, name, value),
            {isWriteOnly: element.isWriteOnly, wordsOf: this.wordsOf}) : null;
        this.value = make('span', {class: 'value'});
        this.note = make('p', {class: 'note', hidden: true});
        this.plot = this.shape.control === 'measured' ? new Plot(spoken, this.shape.unit) : null;
        this.node = this.build();
        this.show();
        const asked = home.askedFor(element.id, name);
        if (asked && !isOver(asked)) {
            this.tell(asked);
        }
    }

    build() {
        const isLine = ['slider', 'text'].includes(this.shape.control) && this.control !== null;
        const isLead = this.isLead();
        const head = isLead ? null : make('div', {class: 'row-head'},
            make('span', {class: 'label'}, this.label),
            this.element.isWriteOnly ? null : this.value, isLine ? null : this.control?.node);
        const node = make('div', {class: `row for-${this.shape.control}`,
            'data-function': this.name}, head, isLine ? this.control.node : null, this.plot?.node,
            this.note);
        node.addEventListener('moved', (event) => {
            this.value.textContent = this.wordsOf(event.detail);
        });
        return node;
    }

    /// What one presses without reading: it stands in the card's head.
    isLead() {
        return this.name === 'execute' && ['switch', 'start'].includes(this.shape.control) &&
            !this.element.isWriteOnly;
    }

    show() {
        const text = this.element.functions.get(this.name) ?? null;
        this.value.textContent = this.wordsOf(text);
        this.control?.show(text);
        this.node.dataset.value = text ?? '';
        this.draw();
    }

    draw() {
        const points = this.home.history.of(this.element.id, this.name);
        const now = Date.now();
        this.plot?.draw(points, Math.min(points[0]?.time ?? now, now - shortestPlot), now);
    }

    tell(asked) {
        const note = noteOf(asked, this.label, this.wordsOf);
        clearTimeout(this.timer);
        this.note.hidden = false;
        this.note.className = `note ${note.tone}`;
        this.note.textContent = note.text;
        this.node.dataset.phase = asked.phase;
        announce(`${this.element.name}: ${note.text}`);
        if (isOver(asked)) {
            this.show();
        }
        if (note.tone === 'good') {
            this.timer = setTimeout(() => { this.note.hidden = true; }, goodNoteFor);
        }
    }
}
