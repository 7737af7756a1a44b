// What becomes of one press: asked, answered, and the value that comes back. Pure: each step makes a
// new state. Phases: asked, accepted; and at the end done, same, other, silent, handedOn, failed.

import {isSame} from './values.js';

/// How long the page waits, in ms: for the answer, and for the value behind it.
export const answerIn = 8000;
export const valueIn = 6000;

export function begin(value, before) {
    return {phase: 'asked', value: String(value), before, now: null};
}

export const isOver = (asked) => !['asked', 'accepted'].includes(asked.phase);

/// The answer's status for the function; a state may have come before it.
export function answered(asked, status, isWriteOnly) {
    if (isOver(asked)) {
        return asked;
    }
    if (status !== '202') {
        return {...asked, phase: 'failed', error: status};
    }
    if (isWriteOnly) {
        return {...asked, phase: 'handedOn'};
    }
    // What is so already does not change, and nothing comes.
    if (asked.before !== undefined && isSame(asked.before, asked.value)) {
        return {...asked, phase: 'same'};
    }
    return {...asked, phase: 'accepted'};
}

/// A value of this function has come.
export function came(asked, value) {
    if (isOver(asked) && asked.phase !== 'silent') {
        return asked;
    }
    return {...asked, phase: isSame(asked.value, value) ? 'done' : 'other', now: value};
}

/// Nothing has come in time.
export function late(asked) {
    if (isOver(asked)) {
        return asked;
    }
    return asked.phase === 'asked' ? {...asked, phase: 'failed', error: 'noAnswer'}
                                   : {...asked, phase: 'silent'};
}
