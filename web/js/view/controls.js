// What a function is changed with. Each control is {node, show(text), enable(boolean)}; it calls
// press(value) when somebody wants another value.

import {isOn, numberOf} from '../logic/values.js';
import {texts} from '../texts.js';
import {make} from './dom.js';

function switchControl(label, press) {
    const node = make('button', {type: 'button', class: 'switch', role: 'switch',
        'aria-checked': 'false', 'aria-label': label,
        onclick: () => press(node.getAttribute('aria-checked') === 'true' ? '0' : '1')});
    return {
        node,
        show: (text) => node.setAttribute('aria-checked', String(isOn(text))),
        enable: (may) => { node.disabled = !may; },
    };
}

/// For what is written without being seen: a button for each value.
function pairControl(label, press) {
    const button = (text, value) => make('button', {type: 'button', class: 'button',
        'aria-label': `${label}: ${text}`, onclick: () => press(value)}, text);
    const node = make('div', {class: 'pair', role: 'group', 'aria-label': label},
        button(texts.card.on, '1'), button(texts.card.off, '0'));
    return {node, show: () => {}, enable: () => {}};
}

function startControl(label, press) {
    const node = make('button', {type: 'button', class: 'button primary', 'aria-label':
        `${texts.card.start}: ${label}`, onclick: () => press('1')}, texts.card.start);
    return {node, show: () => {}, enable: (may) => { node.disabled = !may; }};
}

/// Asks when it is let go, not on the way; shows what comes back unless it is held.
function sliderControl(label, press, shape, wordsOf) {
    const node = make('input', {type: 'range', class: 'slider', 'aria-label': label,
        min: shape.min, max: shape.max, step: shape.step});
    let held = false;
    const tell = () => {
        const share = (node.value - shape.min) / (shape.max - shape.min);
        node.style.setProperty('--share', `${share * 100}%`);
        node.setAttribute('aria-valuetext', wordsOf(node.value));
    };
    node.addEventListener('input', () => {
        held = true;
        tell();
        node.dispatchEvent(new CustomEvent('moved', {bubbles: true, detail: node.value}));
    });
    node.addEventListener('change', () => {
        held = false;
        press(node.value);
    });
    return {
        node,
        show: (text) => {
            if (!held && numberOf(text) !== null) {
                node.value = text;
                tell();
            }
        },
        enable: (may) => { node.disabled = !may; },
    };
}

function textControl(label, press) {
    const input = make('input', {type: 'text', 'aria-label': `${label}: ${texts.card.newValue}`,
        placeholder: texts.card.newValue, inputmode: 'decimal', autocomplete: 'off'});
    const button = make('button', {type: 'submit', class: 'button'}, texts.card.set);
    const node = make('form', {class: 'set', onsubmit: (event) => {
        event.preventDefault();
        press(input.value);
    }}, input, button);
    return {
        node,
        show: () => {},
        enable: (may) => { input.disabled = button.disabled = !may; },
    };
}

/// Null: nothing changes this function.
/// @param wordsOf a value in plain words
export function controlOf(shape, label, press, {isWriteOnly, wordsOf}) {
    const makers = {
        switch: isWriteOnly ? pairControl : switchControl, start: startControl,
        slider: sliderControl, text: textControl,
    };
    return makers[shape.control]?.(label, press, shape, wordsOf) ?? null;
}
