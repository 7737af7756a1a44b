// Name and password. The password goes to the broker and is kept nowhere.

import {isLevel} from '../logic/topics.js';
import {texts} from '../texts.js';
import {field, make} from './dom.js';
import {logo} from './bar.js';

/// @param signIn (user, password) is called when both are there
export function signInView(signIn) {
    const user = make('input', {type: 'text', name: 'user', autocomplete: 'username',
        autocapitalize: 'none', spellcheck: 'false', required: true});
    const password = make('input', {type: 'password', name: 'password',
        autocomplete: 'current-password', required: true});
    const button = make('button', {type: 'submit', class: 'button primary'}, texts.signIn.button);
    const note = make('p', {class: 'note bad', role: 'alert'});
    const submit = (event) => {
        event.preventDefault();
        if (!isLevel(user.value)) {
            note.textContent = texts.signIn.badName;
            return;
        }
        note.textContent = '';
        button.disabled = true;
        button.textContent = texts.signIn.busy;
        signIn(user.value, password.value);
    };
    const node = make('main', {class: 'sign-in', id: 'sign-in'},
        make('form', {class: 'panel', onsubmit: submit},
            make('div', {class: 'brand'}, logo(), texts.title),
            make('h1', {}, texts.signIn.heading), make('p', {}, texts.signIn.lead),
            field(texts.signIn.user, user), field(texts.signIn.password, password), note, button));
    return {
        node,
        focus: () => (user.value === '' ? user : password).focus(),
        /// Ready for another try.
        tell: (text) => {
            note.textContent = text;
            button.disabled = false;
            button.textContent = texts.signIn.button;
            password.select();
        },
    };
}
