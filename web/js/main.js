// Puts the page together: sign in, then the views of a home.

import {Home} from './home.js';
import {texts} from './texts.js';
import {announcerNode} from './view/announcer.js';
import {Bar} from './view/bar.js';
import {make} from './view/dom.js';
import {HomeView} from './view/home_view.js';
import {PacketList} from './view/packet_list.js';
import {RequestForm} from './view/request_form.js';
import {signInView} from './view/sign_in.js';

let shown = null;  // of the one who is signed in

function start() {
    document.title = texts.title;
    document.documentElement.lang = texts.language;
    showSignIn();
}

function showSignIn(text = '') {
    const view = signInView((user, password) => open(user, password, view));
    document.body.replaceChildren(view.node, announcerNode());
    if (text !== '') {
        view.tell(text);
    }
    view.focus();
}

async function open(user, password, view) {
    let facts = null;
    try {
        facts = await (await fetch('/console.json', {cache: 'no-store'})).json();
    } catch {
        view.tell(texts.signIn.noBroker);
        return;
    }
    const packets = new PacketList();
    const home = new Home({user, password, facts, hostname: location.hostname}, {
        list: () => shown?.homeView.later(),
        value: (id, names) => shown?.homeView.showValues(id, names),
        asked: (id, name, asked) => shown?.homeView.tell(id, name, asked),
        packet: (packet) => packets.add(packet),
        connection: (connection) => {
            if (shown === null && connection.link === 'online') {
                show(home, packets);
            }
            shown?.bar.tell(connection);
        },
        unreachable: () => {
            home.end();
            view.tell(texts.signIn.noBroker);
        },
        signedOut: (reason) => {
            leave(home);
            if (reason === 'removed') {
                showSignIn(texts.signIn.removed);
            } else {
                view.tell(texts.signIn.refused);
            }
        },
    });
}

function show(home, packets) {
    const homeView = new HomeView(home);
    const developer = make('main', {id: 'developer', class: 'developer', tabindex: '-1',
        hidden: true}, packets.node, new RequestForm(home).node);
    const views = [{id: 'home', label: texts.bar.home, node: homeView.node},
        {id: 'developer', label: texts.bar.developer, node: developer}];
    const select = (id) => {
        views.forEach((each) => { each.node.hidden = each.id !== id; });
        bar.select(id);
        homeView.draw();
    };
    const bar = new Bar(home.user, views, {show: select, signOut: () => {
        leave(home);
        showSignIn();
    }});
    shown = {homeView, bar};
    document.body.replaceChildren(bar.node, homeView.node, developer, announcerNode());
    select('home');
    homeView.node.focus();
}

function leave(home) {
    home.end();
    shown?.homeView.end();
    shown = null;
}

start();
