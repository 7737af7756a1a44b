// What the search field finds: every word somewhere in name, room or identifier.

export function matches(words, ...texts) {
    const all = texts.join('\n').toLocaleLowerCase();
    return words.every((word) => all.includes(word));
}

export const wordsOf = (query) => query.toLocaleLowerCase().split(/\s+/).filter((word) => word);
