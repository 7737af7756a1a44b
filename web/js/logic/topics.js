// Topics of the API, version 1.

const root = (user) => `local/api/v1/${user}/`;

/// A name that can be a level of a topic.
export function isLevel(text) {
    return text.length > 0 && !/[/+#\u0000]/.test(text);
}

/// All states of elements; all answers to this client.
export function filters(user, client) {
    return [`${root(user)}status/elements/objects_list/#`, `${root(user)}${client}/status/#`];
}

/// Topic of a request about an element, or about the list when it is empty.
/// @param verb 'get' or 'set'
export function requestTopic(user, client, verb, element = '') {
    const topic = `${root(user)}${client}/request/${verb}/elements/objects_list`;
    return element === '' ? topic : `${topic}/${element}`;
}

/// The element that a state is about; null: the topic is none of a state.
export function elementOf(user, topic) {
    const prefix = `${root(user)}status/elements/objects_list/`;
    return topic.startsWith(prefix) ? topic.slice(prefix.length) : null;
}

/// Whether a topic is that of an answer to this client.
export function isAnswer(user, client, topic) {
    return topic.startsWith(`${root(user)}${client}/status/`);
}
