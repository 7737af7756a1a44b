// The bar on top: views, how the connection and the bus are, sign out.

import {texts} from '../texts.js';
import {make} from './dom.js';

export const logo = () => make('img', {src: '/icons/torlan.svg', alt: '', width: '28',
    height: '28'});

const words = {
    connecting: texts.bar.connecting, waiting: texts.bar.interrupted, online: texts.bar.connected,
};

export class Bar {
    constructor(user, views, {show, signOut}) {
        this.link = make('span', {class: 'state', id: 'connection', role: 'status'});
        this.bus = make('span', {class: 'state', id: 'bus', role: 'status', hidden: true});
        this.tabs = views.map(({id, label}) => make('button', {type: 'button', class: 'tab',
            'data-view': id, onclick: () => show(id)}, label));
        this.node = make('header', {class: 'bar'},
            make('div', {class: 'brand'}, logo(), make('span', {}, texts.title)),
            make('nav', {'aria-label': texts.bar.views}, ...this.tabs),
            make('div', {class: 'states'}, this.link, this.bus),
            make('div', {class: 'who'}, make('span', {class: 'user'}, user),
                make('button', {type: 'button', class: 'button quiet', id: 'sign-out',
                    onclick: signOut}, texts.bar.signOut)));
    }

    select(id) {
        for (const tab of this.tabs) {
            tab.toggleAttribute('aria-current', tab.dataset.view === id);
            if (tab.dataset.view === id) {
                tab.setAttribute('aria-current', 'page');
            }
        }
    }

    /// As Home tells it.
    tell({link, server, bus}) {
        const isServing = link === 'online' && server !== 'offline';
        this.link.textContent = link === 'online' && server === 'offline'
            ? texts.bar.serverOffline : words[link];
        this.link.dataset.state = isServing ? 'good' : 'bad';
        this.bus.hidden = bus === null;
        this.bus.textContent = bus === 'online' ? texts.bar.busOnline : texts.bar.busOffline;
        this.bus.dataset.state = bus === 'online' ? 'good' : 'bad';
    }
}
