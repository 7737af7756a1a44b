// What became of a press, in plain words.

import {fill, texts} from '../texts.js';

/// {text, tone}: 'busy', 'good', 'bad'. @param wordsOf a value in plain words
export function noteOf(asked, label, wordsOf) {
    const value = wordsOf(asked.value);
    switch (asked.phase) {
        case 'asked':
        case 'accepted':
            return {text: fill(texts.asked.asked, value), tone: 'busy'};
        case 'same':
            return {text: fill(texts.asked.same, value), tone: 'good'};
        case 'done':
            return {text: fill(texts.asked.done, label, wordsOf(asked.now)), tone: 'good'};
        case 'other':
            return {text: fill(texts.asked.other, value, wordsOf(asked.now)), tone: 'bad'};
        case 'silent':
            return {text: fill(texts.asked.silent, value), tone: 'bad'};
        case 'handedOn':
            return {text: texts.asked.handedOn, tone: 'good'};
        default:
            return {text: errorText(asked.error, value), tone: 'bad'};
    }
}

function errorText(error, value) {
    if (error === 'noAnswer') {
        return fill(texts.asked.noAnswer, value);
    }
    if (error === 'notConnected') {
        return texts.asked.notConnected;
    }
    return fill(texts.asked.refused, texts.errors[error] ?? fill(texts.errors.unknown, error));
}
