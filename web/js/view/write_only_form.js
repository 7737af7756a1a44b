// Adds what the user may write and not see.

import {isLevel} from '../logic/topics.js';
import {fill, texts} from '../texts.js';
import {field, make} from './dom.js';

export function writeOnlyForm(home) {
    const element = make('input', {type: 'text', autocomplete: 'off', spellcheck: 'false'});
    const name = make('input', {type: 'text', autocomplete: 'off', spellcheck: 'false',
        list: 'known-functions'});
    const note = make('p', {class: 'note bad', role: 'alert'});
    const add = async (event) => {
        event.preventDefault();
        const [id, function_] = [element.value.trim(), name.value.trim()];
        if (!isLevel(id) || function_ === '') {
            note.textContent = texts.writeOnly.incomplete;
            return;
        }
        const why = await home.addWriteOnly(id, function_);
        note.textContent = why === '' ? '' : sentence(why, id);
        if (why === '') {
            element.value = name.value = '';
        }
    };
    return make('details', {class: 'panel write-only'},
        make('summary', {}, texts.writeOnly.heading),
        make('p', {}, texts.writeOnly.lead),
        make('form', {class: 'line', onsubmit: add},
            field(texts.writeOnly.element, element), field(texts.writeOnly.function, name),
            make('datalist', {id: 'known-functions'},
                ...Object.keys(texts.functions).map((value) => make('option', {value}))),
            make('button', {type: 'submit', class: 'button'}, texts.writeOnly.add)),
        note);
}

function sentence(why, id) {
    const known = {
        unknown: texts.writeOnly.unknown, denied: texts.writeOnly.denied,
        visible: texts.writeOnly.visible, notConnected: texts.asked.notConnected,
    };
    return fill(known[why] ?? texts.developer.noAnswer, id);
}
