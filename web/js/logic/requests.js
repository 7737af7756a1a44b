// Requests and their answers, matched by uuid.

export class Requests {
    /// @param send (verb, element, payload object) publishes; false: it could not
    constructor(send, prefix) {
        this.send = send;
        this.prefix = prefix;
        this.count = 0;
        this.open = new Map();
    }

    /// The answer, as an object; fails with 'notConnected' or 'noAnswer'.
    ask(verb, element, payload, timeout) {
        const uuid = `${this.prefix}-${++this.count}`;
        if (!this.send(verb, element, {...payload, uuid})) {
            return Promise.reject(new Error('notConnected'));
        }
        return new Promise((resolve, reject) => {
            const timer = setTimeout(() => this.end(uuid, () => reject(new Error('noAnswer'))),
                timeout);
            this.open.set(uuid, {resolve, reject, timer});
        });
    }

    /// Takes an answer; false: nobody waits for it.
    take(answer) {
        const waiting = this.open.get(answer?.uuid);
        if (waiting === undefined) {
            return false;
        }
        this.end(answer.uuid, () => waiting.resolve(answer));
        return true;
    }

    /// Of a connection that has ended: no answer will come.
    fail() {
        for (const [uuid, waiting] of [...this.open]) {
            this.end(uuid, () => waiting.reject(new Error('noAnswer')));
        }
    }

    end(uuid, settle) {
        clearTimeout(this.open.get(uuid)?.timer);
        this.open.delete(uuid);
        settle();
    }
}
