// Rooms, as the names of elements say them: what several names begin with alike.

const wordsOf = (name) => name.trim().split(/\s+/).filter((word) => word !== '');

/// How many words all of these begin with alike; each keeps a word of its own.
function commonWords(names) {
    const longest = Math.min(...names.map((words) => words.length)) - 1;
    let count = 0;
    while (count < longest && names.every((words) => words[count] === names[0][count])) {
        ++count;
    }
    return count;
}

/// The room of each name that has one: a Map from name to room. Names of several words that share
/// their first are in one room, called what they all begin with.
export function roomsOf(names) {
    const groups = new Map();
    for (const name of new Set(names)) {
        const words = wordsOf(name);
        if (words.length > 1) {
            groups.set(words[0], [...(groups.get(words[0]) ?? []), {name, words}]);
        }
    }
    const rooms = new Map();
    for (const group of groups.values()) {
        const count = group.length > 1 ? commonWords(group.map((each) => each.words)) : 0;
        for (const {name, words} of count > 0 ? group : []) {
            rooms.set(name, words.slice(0, count).join(' '));
        }
    }
    return rooms;
}

/// A name without its room, beginning with a capital.
export function shortName(name, room) {
    const rest = room && name.startsWith(room) ? name.slice(room.length).trim() : name;
    return rest === '' ? name : rest[0].toUpperCase() + rest.slice(1);
}
