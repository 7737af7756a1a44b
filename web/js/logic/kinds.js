// What the types of elements are, and how their functions are shown.

import {texts} from '../texts.js';
import {isOn, withUnit} from './values.js';

/// In the order in which the page shows them.
export const kindOrder = ['writeOnly', '1', '2', '3', '4', '17', '8', '5', '6', '7', 'other'];

const known = new Set(kindOrder);

export function kindOf(element) {
    if (element.isWriteOnly) {
        return 'writeOnly';
    }
    return known.has(String(element.type)) ? String(element.type) : 'other';
}

const percent = {control: 'slider', unit: '%', min: 0, max: 100, step: 1};
const measured = (unit) => ({control: 'measured', unit});

// By the last segment of a function's name, as filters compare it.
const functions = {
    execute: {control: 'switch', unit: ''},
    siren: {control: 'switch', unit: ''},
    level: percent,
    position: percent,
    slat: percent,
    setpoint: {control: 'slider', unit: '°C', min: 5, max: 35, step: 0.5},
    // Words can be read and not written.
    mode: {control: 'word', unit: ''},
    temperature: measured('°C'),
    humidity: measured('%'),
    power: measured('W'),
    valve: measured('%'),
    open: {control: 'state', unit: ''},
    id_actual: {control: 'hidden', unit: ''},
    id_win: {control: 'hidden', unit: ''},
};

export const lastSegment = (name) => name.slice(name.lastIndexOf('/') + 1);

/// How a function of an element is shown: {control, unit, ...}.
export function shapeOf(element, name) {
    const segment = lastSegment(name);
    if (segment === 'execute' && String(element.type) === '8') {
        return {control: 'start', unit: ''};
    }
    // An element without a type is what the user has added: any function may be written.
    const shape = functions[segment] ?? {control: 'text', unit: ''};
    return element.isWriteOnly && ['measured', 'state', 'word', 'hidden'].includes(shape.control)
        ? {control: 'text', unit: shape.unit}
        : shape;
}

export function functionLabel(name, shape) {
    const segment = shape.control === 'start' ? 'start' : lastSegment(name);
    return texts.functions[segment] ?? segment;
}

/// A value in plain words.
export function valueText(shape, name, text) {
    if (text === null || text === undefined || text === '') {
        return texts.card.noValue;
    }
    if (shape.control === 'switch') {
        return isOn(text) ? texts.card.on : texts.card.off;
    }
    if (shape.control === 'start') {
        return isOn(text) ? texts.card.started : texts.card.noValue;
    }
    if (shape.control === 'state') {
        return isOn(text) ? texts.card.open : texts.card.closed;
    }
    if (shape.control === 'word') {
        return texts.modes[text] ?? text;
    }
    return withUnit(text, shape.unit);
}
