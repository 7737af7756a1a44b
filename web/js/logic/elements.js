// The elements that the user may see, as far as messages have told.
//
// An answer may be overtaken by states that were sent after it. So what comes while a read of the list
// is open is newer than its answer: beginRead(), then mergeList() or endRead().

export class Elements {
    constructor() {
        this.all = new Map();
        this.reads = new Set();
    }

    get(id) {
        return this.all.get(id);
    }

    /// Puts what a message says about an element to what is known: a state holds what has changed
    /// only. Returns {isNew, changed}: the names of the functions that it is about.
    merge(id, data) {
        const known = this.all.get(id);
        const element = known ?? {id, name: id, type: 0, functions: new Map()};
        const isRenamed = known !== undefined && data.name !== undefined && data.name !== known.name;
        element.name = typeof data.name === 'string' ? data.name : element.name;
        element.type = data.type ?? element.type;
        const changed = [];
        for (const [name, answer] of Object.entries(data.functions ?? {})) {
            element.functions.set(name, textOf(answer?.value));
            changed.push(name);
        }
        this.all.set(id, element);
        this.reads.forEach((read) => {
            const told = read.get(id);
            read.set(id, new Set([...(told === undefined || told === gone ? [] : told), ...changed]));
        });
        return {isNew: known === undefined || isRenamed, changed};
    }

    beginRead() {
        const read = new Map();
        this.reads.add(read);
        return read;
    }

    endRead(read) {
        this.reads.delete(read);
    }

    /// Everything that the user may see, by the answer to a read of the list, and what has come since
    /// it was asked. Calls merge(id, data) with what is news.
    mergeList(read, list, merge) {
        this.endRead(read);
        const ids = new Set();
        for (const [id, data] of Object.entries(list)) {
            const told = read.get(id);
            if (told !== gone) {
                ids.add(id);
                merge(id, told === undefined ? data : without(data, told));
            }
        }
        const isLeft = ([id, element]) => !ids.has(id) && !element.isWriteOnly &&
            (read.get(id) ?? gone) === gone;
        [...this.all].filter(isLeft).forEach(([id]) => this.all.delete(id));
    }

    remove(id) {
        this.reads.forEach((read) => read.set(id, gone));
        return this.all.delete(id);
    }
}

const gone = 'gone';

const without = (data, names) => ({...data, functions: Object.fromEntries(
    Object.entries(data.functions ?? {}).filter(([name]) => !names.has(name)))});

const textOf = (value) => (value === undefined || value === null ? null : String(value));
