// The elements that the user may see, as far as messages have told.

export class Elements {
    constructor() {
        this.all = new Map();
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
        return {isNew: known === undefined || isRenamed, changed};
    }

    /// Everything that the user may see, by the answer to a read of the list. Returns the ids that
    /// were known and are not in it.
    keepOnly(ids) {
        const gone = [...this.all.keys()].filter((id) => !ids.has(id));
        gone.forEach((id) => this.all.delete(id));
        return gone;
    }

    remove(id) {
        return this.all.delete(id);
    }
}

const textOf = (value) => (value === undefined || value === null ? null : String(value));
