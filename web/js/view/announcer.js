// Says to screen readers what others see.

import {make} from './dom.js';

const region = make('div', {class: 'for-readers', role: 'status', 'aria-live': 'polite'});

export const announcerNode = () => region;

export function announce(text) {
    region.textContent = text;
}
