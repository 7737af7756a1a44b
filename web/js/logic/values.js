// Values are texts; what they mean is the function's business.

import {texts} from '../texts.js';

/// A number, or null: the text is none.
export function numberOf(text) {
    if (typeof text !== 'string' || !/^\s*[-+]?(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?\s*$/.test(text)) {
        return null;
    }
    const number = Number(text);
    return Number.isFinite(number) ? number : null;
}

/// What goes into a request: whole numbers as text, because numbers lose what is beyond six digits; others
/// as numbers, because the API takes no such text; null: words cannot be written at all.
export function toWrite(text) {
    return /^\d+$/.test(text) ? text : numberOf(text);
}

const asNumber = (text) => ({true: '1', false: '0'})[text] ?? text;

/// "1", "1.0" and "true" are the same, "eco" and "ECO" are not.
export function isSame(one, other) {
    const [a, b] = [numberOf(asNumber(one)), numberOf(asNumber(other))];
    return a !== null && b !== null ? a === b : one === other;
}

/// On for whatever is no zero.
export function isOn(text) {
    const number = numberOf(text);
    return number === null ? text === 'true' : number !== 0;
}

const decimals = new Intl.NumberFormat(texts.language, {maximumFractionDigits: 2});

/// A number as people read it, with its unit; a text that is none as it is.
export function withUnit(text, unit) {
    const number = numberOf(text);
    const shown = number === null ? text : decimals.format(number);
    return unit === '' || number === null ? shown : `${shown} ${unit}`;
}
