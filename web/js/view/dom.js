// Makes elements of the page. Texts become text, never HTML.

/// @param properties attributes; "class", "on..." handlers, and booleans as the attribute's presence
export function make(tag, properties = {}, ...children) {
    const node = document.createElement(tag);
    for (const [name, value] of Object.entries(properties)) {
        if (name.startsWith('on')) {
            node.addEventListener(name.slice(2), value);
        } else if (value === true) {
            node.setAttribute(name, '');
        } else if (value !== false && value !== null && value !== undefined) {
            node.setAttribute(name, value);
        }
    }
    node.append(...children.filter((child) => child !== null && child !== undefined));
    return node;
}

const svgSpace = 'http://www.w3.org/2000/svg';

export function makeSvg(tag, attributes = {}, ...children) {
    const node = document.createElementNS(svgSpace, tag);
    for (const [name, value] of Object.entries(attributes)) {
        node.setAttribute(name, value);
    }
    node.append(...children);
    return node;
}

let lastId = 0;

/// An id for labels to point at.
export const freshId = () => `n${++lastId}`;

/// A label above a field.
export function field(label, input) {
    input.id = input.id || freshId();
    return make('div', {class: 'field'}, make('label', {for: input.id}, label), input);
}
