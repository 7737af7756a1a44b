// The connection to the broker: MQTT 5 over WebSockets, brought back when it breaks, with growing
// pauses. Says what becomes of it through the handlers that it was given:
//   state(name): 'connecting', 'online', 'waiting'
//   packet(direction, topic, text, isRetained)
//   refused(wasOnline): the broker knows no such user, or another password
//   unreachable(): the first tries have found no broker

import {connect} from '/mqtt.js';
import {filters} from './logic/topics.js';

const refusals = new Set([4, 5, 0x86, 0x87]);
const pauses = [500, 1000, 2000, 4000, 8000];
const decoder = new TextDecoder();

export class Session {
    constructor(settings, handlers) {
        this.settings = settings;
        this.handlers = handlers;
        this.tries = 0;
        this.wasOnline = false;
        this.isOver = false;
        this.open();
    }

    get isOnline() {
        return !this.isOver && this.client?.connected === true;
    }

    open() {
        const {hostname, port, user, password, client} = this.settings;
        this.handlers.state('connecting');
        let isRefused = false;
        const connection = connect({
            protocol: 'ws', hostname, port, path: '/', protocolVersion: 5, clean: true,
            clientId: client, username: user, password, keepalive: 15, connectTimeout: 10000,
            reconnectPeriod: 0, resubscribe: false,
            // Beyond this size mqtt.js 4 sends a packet twice.
            browserBufferSize: Number.MAX_SAFE_INTEGER,
            properties: {receiveMaximum: 65535},
        });
        this.client = connection;
        connection.on('connect', () => this.subscribe(connection));
        connection.on('message', (topic, payload, packet) =>
            this.handlers.packet('received', topic, decoder.decode(payload), packet.retain));
        connection.on('error', (error) => {
            isRefused = isRefused || refusals.has(error.code);
        });
        connection.on('close', () => this.onClosed(connection, isRefused));
    }

    subscribe(connection) {
        const {user, client, connectionTopic} = this.settings;
        const topics = [...filters(user, client), ...(connectionTopic ? [connectionTopic] : [])];
        connection.subscribe(topics, {qos: 1}, (error) => {
            if (!error && connection === this.client && !this.isOver) {
                this.tries = 0;
                this.wasOnline = true;
                this.handlers.state('online');
            }
        });
    }

    onClosed(connection, isRefused) {
        if (connection !== this.client || this.isOver) {
            return;
        }
        connection.end(true);
        this.client = null;
        if (isRefused) {
            this.end();
            this.handlers.refused(this.wasOnline);
            return;
        }
        this.handlers.state('waiting');
        if (!this.wasOnline && this.tries === 3) {
            this.handlers.unreachable();
        }
        const pause = pauses[Math.min(this.tries++, pauses.length - 1)];
        this.timer = setTimeout(() => this.open(), pause);
    }

    /// False: there is no connection.
    publish(topic, text) {
        if (!this.isOnline) {
            return false;
        }
        this.client.publish(topic, text, {qos: 2});
        this.handlers.packet('sent', topic, text, false);
        return true;
    }

    end() {
        this.isOver = true;
        clearTimeout(this.timer);
        this.client?.end(true);
        this.client = null;
    }
}
