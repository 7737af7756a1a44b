// From the fields of the request builder to a request.

import {requestTopic} from './topics.js';

const list = (text) => text.split(',').map((word) => word.trim()).filter((word) => word !== '');

/// Filters as the API has them; null: none.
export function filtersOf(types, functions) {
    const found = {};
    if (list(types).length > 0) {
        found.types = list(types).map((word) => (/^-?\d+$/.test(word) ? Number(word) : word));
    }
    if (list(functions).length > 0) {
        found.functions = list(functions);
    }
    return Object.keys(found).length === 0 ? null : found;
}

/// {verb, element, topic, payload}; payload is an object, or null for none. Throws a SyntaxError
/// when the values are not JSON.
/// @param fields {what, element, types, functions, values}
export function build(fields, user, client) {
    const verb = fields.what.startsWith('read') ? 'get' : 'set';
    const element = fields.what.endsWith('One') ? fields.element.trim() : '';
    let payload = null;
    if (verb === 'get') {
        const filters = filtersOf(fields.types, fields.functions);
        payload = filters === null ? null : {filters};
    } else {
        const values = JSON.parse(fields.values);
        payload = {data: element === '' ? values : {functions: values}};
    }
    return {verb, element, payload, topic: requestTopic(user, client, verb, element)};
}
