// What the user may write. No answer of the API tells it, so the page asks for what nothing has: a
// function of this name, of every element at once. Who may write gets "404" for it, who may not gets
// error 401, and nothing changes.

export const noFunction = 'may-this-user-write';

/// At most so many elements in one request.
export const portion = 250;

/// Payloads of list writes that ask about all of these elements.
export function questions(ids) {
    const asked = [];
    for (let start = 0; start < ids.length; start += portion) {
        const data = {};
        for (const id of ids.slice(start, start + portion)) {
            data[id] = {functions: {[noFunction]: '0'}};
        }
        asked.push({data});
    }
    return asked;
}

/// What an answer says: 'yes', 'no' (401), or 'unknown' (there is no such element).
export function verdicts(answer) {
    const found = new Map();
    for (const [id, element] of Object.entries(answer?.data ?? {})) {
        const status = statusOf(element, noFunction);
        found.set(id, status === '401' ? 'no' : status === 'gone' ? 'unknown' : 'yes');
    }
    return found;
}

/// The status of one function in an element's answer: "202", "404", "401"; 'gone': there is no such
/// element.
export function statusOf(element, name) {
    if (element?.error !== undefined) {
        return Number(element.error) === 404 ? 'gone' : String(element.error);
    }
    return String(element?.functions?.[name] ?? '404');
}
