// What the browser keeps: no password, nothing that the server says. Each user's own.

const key = (user) => `torlan.write-only.${user}`;

/// Elements that this user may write and not see: [{id, functions: [name, ...]}].
export function keptWriteOnly(user) {
    try {
        const kept = JSON.parse(localStorage.getItem(key(user)) ?? '[]');
        return Array.isArray(kept)
            ? kept.filter((each) => typeof each?.id === 'string' && Array.isArray(each.functions))
            : [];
    } catch {
        return [];  // private windows may keep nothing
    }
}

export function keepWriteOnly(user, list) {
    try {
        localStorage.setItem(key(user), JSON.stringify(list));
    } catch {
        // it lasts as long as the page
    }
}
