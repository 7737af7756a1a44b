// Packets as they pass, the newest on top; the oldest go.

import {clock} from '../logic/scale.js';
import {fill, texts} from '../texts.js';
import {make} from './dom.js';

export const shownPackets = 300;
const perFrame = 100;

export class PacketList {
    constructor() {
        this.waiting = [];
        this.left = 0;
        this.isPaused = false;
        this.filter = make('input', {type: 'search', 'aria-label': texts.developer.filter,
            placeholder: texts.developer.filter, oninput: () => this.sift()});
        this.pause = make('button', {type: 'button', class: 'button', onclick: () => this.toggle()},
            texts.developer.pause);
        this.list = make('ol', {class: 'packets', reversed: true});
        this.rest = make('p', {class: 'rest', hidden: true});
        this.node = make('section', {class: 'panel', 'aria-label': texts.developer.packets},
            make('h2', {}, texts.developer.packets), make('p', {}, texts.developer.lead),
            make('div', {class: 'tools'}, this.filter, this.pause,
                make('button', {type: 'button', class: 'button', onclick: () => this.clear()},
                    texts.developer.clear)),
            this.list, this.rest);
    }

    add(packet) {
        if (this.isPaused) {
            return;
        }
        this.waiting.push(packet);
        if (this.waiting.length > shownPackets) {
            this.waiting.shift();
            ++this.left;
        }
        this.frame ??= requestAnimationFrame(() => this.flush());
    }

    flush() {
        this.frame = null;
        this.list.prepend(...this.waiting.splice(0, perFrame).map((each) => this.line(each))
            .reverse());
        while (this.list.children.length > shownPackets) {
            this.list.lastChild.remove();
            ++this.left;
        }
        this.rest.hidden = this.left === 0;
        this.rest.textContent = fill(texts.developer.left, this.left);
        if (this.waiting.length > 0) {
            this.frame = requestAnimationFrame(() => this.flush());
        }
    }

    line({direction, topic, text, isRetained, time}) {
        const isShown = this.isShown(topic);
        return make('li', {class: direction, hidden: !isShown, 'data-topic': topic},
            make('details', {},
                make('summary', {}, make('time', {}, clock(time, true)),
                    make('span', {class: 'direction'}, texts.developer[direction]),
                    make('code', {class: 'topic'}, topic),
                    isRetained ? make('span', {class: 'chip'}, texts.developer.retained) : null,
                    make('code', {class: 'start'}, text.slice(0, 200))),
                make('pre', {}, pretty(text))));
    }

    isShown(topic) {
        return topic.includes(this.filter.value.trim());
    }

    sift() {
        for (const line of this.list.children) {
            line.hidden = !this.isShown(line.dataset.topic);
        }
    }

    toggle() {
        this.isPaused = !this.isPaused;
        this.pause.textContent = this.isPaused ? texts.developer.resume : texts.developer.pause;
    }

    clear() {
        this.waiting = [];
        this.left = 0;
        this.rest.hidden = true;
        this.list.replaceChildren();
    }
}

export function pretty(text) {
    try {
        return JSON.stringify(JSON.parse(text), null, 2);
    } catch {
        return text;
    }
}
