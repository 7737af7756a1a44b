// Measured values since the page was opened.

/// Points kept of one function; beyond, every second of the older half goes.
export const capacity = 720;

export class History {
    constructor() {
        this.series = new Map();
    }

    /// @param time in ms
    add(id, name, value, time) {
        const key = `${id}\n${name}`;
        const points = this.series.get(key) ?? [];
        points.push({time, value});
        if (points.length > capacity) {
            const half = capacity / 2;
            const old = points.splice(0, half);
            points.unshift(...old.filter((point, index) => index === 0 || index % 2 === 1));
        }
        this.series.set(key, points);
    }

    of(id, name) {
        return this.series.get(`${id}\n${name}`) ?? [];
    }

    remove(id) {
        for (const key of [...this.series.keys()]) {
            if (key.startsWith(`${id}\n`)) {
                this.series.delete(key);
            }
        }
    }
}
