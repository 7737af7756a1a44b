// What the user sees of the home: elements, rights, what was asked for. Knows no page; tells through
// handlers:
//   list()                 which elements there are, what they are called or may do has changed
//   value(id, names)       functions have new values
//   asked(id, name, asked) a press is one step on
//   connection(facts)      {link, server, bus}: words, or null while unknown
//   packet(entry)          for the developer's pane
//   signedOut(reason)      'refused', 'removed'; unreachable()

import * as askedSteps from './logic/asked.js';
import {Elements} from './logic/elements.js';
import {History} from './logic/history.js';
import {Requests} from './logic/requests.js';
import {lastSegment, shapeOf} from './logic/kinds.js';
import {numberOf, toWrite} from './logic/values.js';
import {questions, statusOf, verdicts} from './logic/rights.js';
import {elementOf, isAnswer, requestTopic} from './logic/topics.js';
import {keepWriteOnly, keptWriteOnly} from './kept.js';
import {Session} from './session.js';

const readIn = 20000;
const learnAfter = 200;

export class Home {
    constructor({user, password, hostname, facts}, handlers) {
        this.user = user;
        this.facts = facts;
        this.handlers = handlers;
        this.client = `console-${crypto.getRandomValues(new Uint32Array(1))[0].toString(36)}`;
        this.elements = new Elements();
        this.history = new History();
        this.rights = new Map();
        this.pressed = new Map();
        this.connection = {link: 'connecting', server: null, bus: null};
        this.hasRead = false;
        this.toLearn = new Set();
        this.learning = null;
        this.requests = new Requests(
            (verb, element, payload) => this.session.publish(
                requestTopic(user, this.client, verb, element), JSON.stringify(payload)),
            this.client);
        this.loadWriteOnly();
        this.session = new Session(
            {hostname, port: facts.ws_port, user, password, client: this.client,
                connectionTopic: facts.connection},
            {
                state: (name) => this.onState(name),
                packet: (...packet) => this.onPacket(...packet),
                refused: (wasOnline) => handlers.signedOut(wasOnline ? 'removed' : 'refused'),
                unreachable: () => handlers.unreachable(),
            });
    }

    // --- what comes ----------------------------------------------------------------------------

    onState(link) {
        this.connection = {...this.connection, link};
        if (link !== 'online') {
            this.connection.server = this.connection.bus = null;
            this.requests.fail();
        }
        this.handlers.connection(this.connection);
        if (link === 'online') {
            this.readAll();
        }
    }

    onPacket(direction, topic, text, isRetained) {
        this.handlers.packet({direction, topic, text, isRetained, time: Date.now()});
        if (direction === 'sent') {
            return;
        }
        if (topic === this.facts.connection) {
            this.onConnection(parsed(text));
            return;
        }
        const id = elementOf(this.user, topic);
        if (id !== null) {
            this.onElement(id, text);
        } else if (isAnswer(this.user, this.client, topic)) {
            this.requests.take(parsed(text));
        }
    }

    onConnection(told) {
        const was = this.connection.server;
        this.connection = {...this.connection, server: told?.state ?? null, bus: told?.bus ?? null};
        this.handlers.connection(this.connection);
        if (was === 'offline' && told?.state === 'online') {
            this.readAll();
        }
    }

    onElement(id, text) {
        if (text === '') {
            this.forget(id);
            return;
        }
        const data = parsed(text)?.data;
        if (data) {
            const isNew = this.merge(id, data);
            if (isNew) {
                this.handlers.list();
                this.learnLater(id);
            }
        }
    }

    merge(id, data) {
        const {isNew, changed} = this.elements.merge(id, data);
        const element = this.elements.get(id);
        element.isWriteOnly = false;
        for (const name of changed) {
            const value = element.functions.get(name);
            this.remember(element, name, value);
            this.step(id, name, (asked) => askedSteps.came(asked, value));
        }
        this.handlers.value(id, changed);
        return isNew;
    }

    remember(element, name, value) {
        const number = numberOf(value);
        if (number !== null && shapeOf(element, name).control === 'measured') {
            const points = this.history.of(element.id, name);
            // A read repeats what is known.
            if (points.length === 0 || points[points.length - 1].value !== number) {
                this.history.add(element.id, name, number, Date.now());
            }
        }
    }

    forget(id) {
        if (this.elements.get(id)?.isWriteOnly !== true && this.elements.remove(id)) {
            this.rights.delete(id);
            this.history.remove(id);
            this.loadWriteOnly();
            this.handlers.list();
        }
    }

    // --- what is asked -------------------------------------------------------------------------

    /// Everything, as it is now: states hold what has changed only, and a gap hides what has gone.
    async readAll() {
        const read = this.elements.beginRead();
        const answer = await this.requests.ask('get', '', {}, readIn).catch(() => null);
        if (answer === null || answer.error !== undefined) {
            this.elements.endRead(read);
            return;
        }
        this.elements.mergeList(read, answer.data ?? {}, (id, element) => this.merge(id, element));
        this.loadWriteOnly();
        this.hasRead = true;
        this.handlers.list();
        this.learnRights([...this.elements.all.keys()]);
    }

    /// Of what has come since the list was read; many at once are one question.
    learnLater(id) {
        this.toLearn.add(id);
        this.learning ??= setTimeout(() => {
            this.learning = null;
            const ids = [...this.toLearn];
            this.toLearn.clear();
            if (this.hasRead) {
                this.learnRights(ids);
            }
        }, learnAfter);
    }

    async learnRights(ids) {
        let isOther = false;
        for (const question of questions(ids)) {
            const answer = await this.requests.ask('set', '', question, readIn).catch(() => null);
            for (const [id, verdict] of verdicts(answer)) {
                isOther = isOther || this.rights.get(id) !== verdict;
                this.rights.set(id, verdict);
            }
        }
        if (isOther) {
            this.handlers.list();
        }
    }

    mayWrite(id) {
        return this.elements.get(id)?.isWriteOnly === true || this.rights.get(id) === 'yes';
    }

    async write(id, name, value) {
        const element = this.elements.get(id);
        const asked = askedSteps.begin(value, element?.functions.get(name) ?? undefined);
        const wire = toWrite(String(value));
        if (wire === null) {
            this.press(id, name, askedSteps.answered(asked, 'word', false));
            return;
        }
        this.press(id, name, asked);
        let status = 'noAnswer';
        try {
            const answer = await this.requests.ask('set', id,
                {data: {functions: {[name]: wire}}}, askedSteps.answerIn);
            status = answer.error === undefined ? statusOf(answer.data, name)
                                                : statusOf(answer, name);
        } catch (error) {
            status = error.message;
        }
        this.step(id, name, (now) => askedSteps.answered(now, status,
            element?.isWriteOnly === true), asked);
        if (status === '401') {
            this.learnLater(id);
        }
    }

    press(id, name, asked) {
        this.pressed.set(`${id}\n${name}`, asked);
        this.handlers.asked(id, name, asked);
    }

    askedFor(id, name) {
        return this.pressed.get(`${id}\n${name}`);
    }

    /// Takes a press one step on; not one that a later press has replaced.
    step(id, name, next, only) {
        const key = `${id}\n${name}`;
        const now = this.pressed.get(key);
        if (now === undefined || (only !== undefined && now !== only && now.phase === 'asked')) {
            return;
        }
        const later = next(now);
        if (later === now) {
            return;
        }
        this.press(id, name, later);
        if (later.phase === 'accepted') {
            setTimeout(() => {
                if (this.pressed.get(key) === later) {
                    this.step(id, name, askedSteps.late);
                }
            }, askedSteps.valueIn);
        }
    }

    // --- what the user may write and not see ---------------------------------------------------

    loadWriteOnly() {
        for (const {id, functions} of keptWriteOnly(this.user)) {
            if (!this.elements.get(id)) {
                this.elements.merge(id, {name: id});
                const element = this.elements.get(id);
                element.isWriteOnly = true;
                functions.forEach((name) => element.functions.set(name, null));
            }
        }
    }

    /// '' or why not: 'unknown', 'denied', 'visible', 'noAnswer', 'notConnected'.
    async addWriteOnly(id, name) {
        const known = this.elements.get(id);
        if (known && !known.isWriteOnly) {
            return 'visible';
        }
        try {
            const [question] = questions([id]);
            const answer = await this.requests.ask('set', '', question, readIn);
            const verdict = verdicts(answer).get(id) ?? 'unknown';
            if (verdict !== 'yes') {
                return verdict === 'no' ? 'denied' : 'unknown';
            }
        } catch (error) {
            return error.message;
        }
        const kept = keptWriteOnly(this.user).filter((each) => each.id !== id);
        const functions = new Set([...(known?.functions.keys() ?? []), name]);
        keepWriteOnly(this.user, [...kept, {id, functions: [...functions]}]);
        this.elements.remove(id);
        this.loadWriteOnly();
        this.handlers.list();
        return '';
    }

    removeWriteOnly(id) {
        keepWriteOnly(this.user, keptWriteOnly(this.user).filter((each) => each.id !== id));
        this.elements.remove(id);
        this.handlers.list();
    }

    end() {
        this.session.end();
        this.requests.fail();
    }
}

function parsed(text) {
    try {
        return JSON.parse(text);
    } catch {
        return null;
    }
}

/// A function's place in lists: what one switches first.
export const functionOrder = (name) => {
    const order = ['execute', 'level', 'position', 'slat', 'setpoint', 'mode', 'temperature'];
    const index = order.indexOf(lastSegment(name));
    return index < 0 ? order.length : index;
};
