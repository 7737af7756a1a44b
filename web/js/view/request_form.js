// The request builder.

import {asJavaScript, asShell} from '../logic/copies.js';
import {build} from '../logic/request_builder.js';
import {fill, texts} from '../texts.js';
import {announce} from './announcer.js';
import {field, make} from './dom.js';
import {pretty} from './packet_list.js';

const words = texts.developer;
const answerIn = 10000;

export class RequestForm {
    constructor(home) {
        this.home = home;
        this.what = make('select', {onchange: () => this.show()},
            ...['readAll', 'readOne', 'writeOne', 'writeAll'].map(
                (value) => make('option', {value}, words[value])));
        const text = (value = '') => make('input', {type: 'text', autocomplete: 'off',
            spellcheck: 'false', value, oninput: () => this.show()});
        this.element = text('e-kitchen-ceiling');
        this.types = text();
        this.functions = text();
        this.values = make('textarea', {rows: '3', spellcheck: 'false',
            oninput: () => this.show()});
        this.values.value = '{"execute": "1"}';
        this.topic = make('code', {class: 'built'});
        this.payload = make('code', {class: 'built'});
        this.note = make('p', {class: 'note bad', role: 'alert'});
        this.answer = make('pre', {class: 'answer', tabindex: '0', 'aria-label': words.answer});
        this.node = this.build();
        this.show();
    }

    build() {
        this.fields = {
            element: field(words.element, this.element), types: field(words.types, this.types),
            functions: field(words.functions, this.functions),
            values: field(words.values, this.values),
        };
        const button = (text, onclick) => make('button', {type: 'button', class: 'button', onclick},
            text);
        return make('section', {class: 'panel', 'aria-label': words.request},
            make('h2', {}, words.request),
            make('form', {onsubmit: (event) => { event.preventDefault(); this.send(); }},
                field(words.what, this.what), ...Object.values(this.fields),
                make('dl', {}, make('dt', {}, words.topic), make('dd', {}, this.topic),
                    make('dt', {}, words.payload), make('dd', {}, this.payload)),
                this.note,
                make('div', {class: 'line'},
                    make('button', {type: 'submit', class: 'button primary'}, words.send),
                    button(words.copyShell, () => this.copy(asShell)),
                    button(words.copyJavaScript, () => this.copy(asJavaScript)))),
            make('h3', {}, words.answer), this.answer);
    }

    /// What the fields say; null, and a sentence, when they say nothing whole.
    request() {
        this.note.textContent = '';
        try {
            return build({
                what: this.what.value, element: this.element.value, types: this.types.value,
                functions: this.functions.value, values: this.values.value,
            }, this.home.user, this.home.client);
        } catch (error) {
            this.note.textContent = fill(words.malformed, error.message);
            return null;
        }
    }

    show() {
        const what = this.what.value;
        this.fields.element.hidden = !what.endsWith('One');
        this.fields.types.hidden = this.fields.functions.hidden = !what.startsWith('read');
        this.fields.values.hidden = !what.startsWith('write');
        this.fields.values.querySelector('label').textContent =
            what === 'writeAll' ? words.valuesOfMany : words.values;
        const request = this.request();
        this.topic.textContent = request?.topic ?? '';
        this.payload.textContent = request === null ? '' : payloadText(request);
    }

    async send() {
        const request = this.request();
        if (request === null) {
            return;
        }
        this.answer.textContent = words.waiting;
        try {
            const answer = await this.home.requests.ask(request.verb, request.element,
                request.payload ?? {}, answerIn);
            this.answer.textContent = pretty(JSON.stringify(answer));
        } catch (error) {
            this.answer.textContent = error.message === 'notConnected' ? texts.asked.notConnected
                                                                        : words.noAnswer;
        }
    }

    async copy(form) {
        const request = this.request();
        if (request === null) {
            return;
        }
        const text = form({
            host: '127.0.0.1', port: this.home.facts.port ?? 1883,
            wsPort: this.home.facts.ws_port, user: this.home.user, topic: request.topic,
            payload: payloadText(request),
        });
        this.answer.textContent = text;
        try {
            await navigator.clipboard.writeText(text);
            announce(words.copied);
        } catch {
            this.note.textContent = words.notCopied;
        }
    }
}

const payloadText = ({payload}) => (payload === null ? '' : JSON.stringify(payload));
