// The page's rules: node --test web/tests/logic.test.js

import assert from 'node:assert/strict';
import {test} from 'node:test';

import * as asked from '../js/logic/asked.js';
import {asJavaScript, asShell, shellWord} from '../js/logic/copies.js';
import {Elements} from '../js/logic/elements.js';
import {capacity, History} from '../js/logic/history.js';
import {kindOf, shapeOf, valueText} from '../js/logic/kinds.js';
import {build, filtersOf} from '../js/logic/request_builder.js';
import {Requests} from '../js/logic/requests.js';
import {noFunction, portion, questions, statusOf, verdicts} from '../js/logic/rights.js';
import {roomsOf, shortName} from '../js/logic/rooms.js';
import {stepPath, timeTicks, valueRange} from '../js/logic/scale.js';
import {matches, wordsOf} from '../js/logic/search.js';
import {elementOf, filters, isAnswer, isLevel, requestTopic} from '../js/logic/topics.js';
import {isOn, isSame, numberOf, toWrite, withUnit} from '../js/logic/values.js';
import {fill} from '../js/texts.js';

test('topics', () => {
    assert.equal(requestTopic('u', 'c', 'get'), 'local/api/v1/u/c/request/get/elements/objects_list');
    assert.equal(requestTopic('u', 'c', 'set', 'e'),
        'local/api/v1/u/c/request/set/elements/objects_list/e');
    assert.equal(elementOf('u', 'local/api/v1/u/status/elements/objects_list/e-1'), 'e-1');
    assert.equal(elementOf('u', 'local/api/v1/u/c/status/get/elements/objects_list'), null);
    assert.equal(elementOf('u', 'local/api/v1/uu/status/elements/objects_list/e'), null);
    assert.ok(isAnswer('u', 'c', 'local/api/v1/u/c/status/get/elements/objects_list'));
    assert.ok(!isAnswer('u', 'c', 'local/api/v1/u/other/status/get/elements/objects_list'));
    assert.ok(filters('u', 'c').every((filter) => filter.startsWith('local/api/v1/u/')));
    for (const name of ['', 'a/b', '+', 'a#', 'a\u0000']) {
        assert.ok(!isLevel(name), name);
    }
    assert.ok(isLevel('alice') && isLevel('é 1'));
});

test('values', () => {
    assert.equal(numberOf('21.50'), 21.5);
    assert.equal(numberOf('-5'), -5);
    for (const text of ['', 'eco', '1e', '0x10', '--1', 'NaN', 'Infinity', null, undefined]) {
        assert.equal(numberOf(text), null, String(text));
    }
    assert.ok(isSame('1', '1.0') && isSame('true', '1') && isSame('eco', 'eco'));
    assert.ok(!isSame('1', '0') && !isSame('eco', 'ECO') && !isSame('', '0'));
    // As the API takes them.
    assert.deepEqual(['1', '100', '21.5', '-5', '1e3', '007'].map(toWrite),
        ['1', '100', 21.5, -5, 1000, '007']);
    assert.deepEqual(['eco', 'true', ''].map(toWrite), [null, null, null]);
    assert.ok(isOn('1') && isOn('true') && isOn('0.5'));
    assert.ok(!isOn('0') && !isOn('false') && !isOn('') && !isOn(null));
    assert.equal(withUnit('21.5', '°C'), '21.5 °C');
    assert.equal(withUnit('eco', '°C'), 'eco');
});

test('kinds', () => {
    assert.equal(kindOf({type: 17}), '17');
    assert.equal(kindOf({type: 11}), 'other');
    assert.equal(kindOf({type: 1, isWriteOnly: true}), 'writeOnly');
    assert.equal(shapeOf({type: 17}, 'thermo/setpoint').control, 'slider');
    assert.equal(shapeOf({type: 17}, 'thermo/mode').control, 'word');
    assert.equal(shapeOf({type: 8}, 'execute').control, 'start');
    assert.equal(shapeOf({type: 1}, 'execute').control, 'switch');
    assert.equal(shapeOf({type: 99}, 'whatever').control, 'text');
    assert.equal(shapeOf({type: 0, isWriteOnly: true}, 'temperature').control, 'text');
    const contact = shapeOf({type: 7}, 'open');
    assert.equal(valueText(contact, 'open', '1'), 'Open');
    assert.equal(valueText(contact, 'open', null), '–');
    assert.equal(valueText(shapeOf({type: 17}, 'thermo/mode'), 'thermo/mode', 'own'), 'own');
});

test('rooms are what several names begin with', () => {
    const rooms = roomsOf(['Kitchen ceiling lamp', 'Kitchen blind', 'Living room tv',
        'Living room terrace blind', 'Living room terrace door', 'Hall', 'Attic lamp']);
    assert.equal(rooms.get('Kitchen blind'), 'Kitchen');
    assert.equal(rooms.get('Living room terrace door'), 'Living room');
    assert.equal(rooms.has('Hall'), false);
    assert.equal(rooms.has('Attic lamp'), false);
    assert.equal(roomsOf(['Same name', 'Same name']).size, 0);
    // Each keeps a word of its own.
    assert.equal(roomsOf(['Hall lamp', 'Hall lamp two']).get('Hall lamp'), 'Hall');
    assert.equal(shortName('Kitchen ceiling lamp', 'Kitchen'), 'Ceiling lamp');
    assert.equal(shortName('Hall', undefined), 'Hall');
});

test('search finds every word', () => {
    assert.ok(matches(wordsOf(' LAMP kit '), 'Ceiling lamp', 'e-1', 'Kitchen'));
    assert.ok(!matches(wordsOf('lamp bath'), 'Ceiling lamp', 'e-1', 'Kitchen'));
    assert.ok(matches(wordsOf(''), 'anything'));
});

test('rights are asked for in portions and read from the answer', () => {
    const ids = Array.from({length: portion + 1}, (value, index) => `e-${index}`);
    const asked_ = questions(ids);
    assert.deepEqual(asked_.map((each) => Object.keys(each.data).length), [portion, 1]);
    assert.deepEqual(asked_[1].data, {[`e-${portion}`]: {functions: {[noFunction]: '0'}}});
    assert.deepEqual(questions([]), []);
    const answer = {data: {
        may: {functions: {[noFunction]: '404'}},
        not: {error: 401, message: 'Configure user on API on App'},
        gone: {error: 404, message: 'Non found element gone'},
    }};
    assert.deepEqual([...verdicts(answer)], [['may', 'yes'], ['not', 'no'], ['gone', 'unknown']]);
    assert.equal(verdicts(null).size, 0);
    assert.equal(statusOf({functions: {execute: '202'}}, 'execute'), '202');
    assert.equal(statusOf({functions: {}}, 'execute'), '404');
});

test('what becomes of a press', () => {
    const press = (before) => asked.begin('1', before);
    const accepted = asked.answered(press('0'), '202', false);
    assert.equal(accepted.phase, 'accepted');
    assert.equal(asked.came(accepted, '1').phase, 'done');
    assert.equal(asked.came(accepted, '0').phase, 'other');
    assert.equal(asked.late(accepted).phase, 'silent');
    // The value may be faster than the answer, or much slower.
    assert.equal(asked.answered(asked.came(press('0'), '1'), '202', false).phase, 'done');
    assert.equal(asked.came(asked.late(accepted), '1').phase, 'done');
    assert.equal(asked.answered(press('1'), '202', false).phase, 'same');
    assert.equal(asked.answered(press(undefined), '202', true).phase, 'handedOn');
    assert.deepEqual([asked.answered(press('0'), '401', false)].map(({phase, error}) =>
        [phase, error]), [['failed', '401']]);
    assert.equal(asked.late(press('0')).error, 'noAnswer');
    assert.ok(!asked.isOver(press('0')) && asked.isOver(asked.late(press('0'))));
});

test('elements keep what a change does not name', () => {
    const elements = new Elements();
    const whole = {name: 'Lamp', type: 2,
        functions: {execute: {value: '0'}, level: {value: '10'}}};
    assert.deepEqual(elements.merge('e', whole), {isNew: true, changed: ['execute', 'level']});
    assert.deepEqual(elements.merge('e', {functions: {level: {value: '20'}}}),
        {isNew: false, changed: ['level']});
    assert.deepEqual([...elements.get('e').functions], [['execute', '0'], ['level', '20']]);
    assert.equal(elements.get('e').name, 'Lamp');
    assert.ok(elements.merge('e', {name: 'Other'}).isNew);
    assert.ok(elements.remove('e'));
    assert.equal(elements.remove('e'), false);
});

test('a list replaces what is known', () => {
    const elements = new Elements();
    const list = (data) => elements.mergeList(elements.beginRead(), data,
        (id, element) => elements.merge(id, element));
    list({e: lamp('1'), f: lamp('2')});
    elements.merge('own', {name: 'own'});
    elements.get('own').isWriteOnly = true;
    list({f: lamp('3')});
    assert.deepEqual([...elements.all.keys()], ['f', 'own']);
    assert.equal(elements.get('f').functions.get('level'), '3');
    assert.equal(elements.reads.size, 0);
});

test('what comes while the list is read is newer than the answer', () => {
    const elements = new Elements();
    const merge = (id, data) => elements.merge(id, data);
    ['revoked', 'changed', 'back', 'left'].forEach((id) => elements.merge(id, lamp('1')));
    const read = elements.beginRead();
    elements.remove('revoked');
    elements.merge('changed', {functions: {level: {value: '2'}}});
    elements.merge('new', lamp('2'));
    elements.remove('back');
    elements.merge('back', lamp('2'));
    const old = {revoked: lamp('1'), changed: lamp('1'), back: lamp('1')};
    elements.mergeList(read, old, merge);
    assert.deepEqual([...elements.all.keys()].sort(), ['back', 'changed', 'new']);
    assert.deepEqual(levels(elements, ['changed', 'back', 'new']), ['2', '2', '2']);
    // What an answer alone says counts still, and the next answer counts whole.
    const next = elements.beginRead();
    elements.merge('changed', {functions: {level: {value: '3'}}});
    elements.mergeList(next, {changed: {functions: {...lamp('2').functions, execute: {value: '0'}}},
        revoked: lamp('4')}, merge);
    assert.equal(elements.get('changed').functions.get('execute'), '0');
    assert.deepEqual(levels(elements, ['changed', 'revoked']), ['3', '4']);
});

const lamp = (level) => ({name: 'Lamp', type: 2, functions: {level: {value: level}}});

const levels = (elements, ids) => ids.map((id) => elements.get(id).functions.get('level'));

test('a history is bounded and keeps its ends', () => {
    const history = new History();
    for (let time = 0; time < capacity * 4; ++time) {
        history.add('e', 'f', time, time);
    }
    const points = history.of('e', 'f');
    assert.ok(points.length <= capacity);
    assert.equal(points[0].time, 0);
    assert.equal(points[points.length - 1].time, capacity * 4 - 1);
    history.remove('e');
    assert.deepEqual(history.of('e', 'f'), []);
});

test('a plot is steps in a box', () => {
    const points = [{time: 0, value: 10}, {time: 50, value: 20}];
    assert.equal(stepPath(points, 0, 100, {low: 10, high: 20}, {width: 200, height: 10}),
        'M0 10H100V0H200');
    assert.equal(stepPath([], 0, 1, {low: 0, high: 1}, {width: 1, height: 1}), '');
    const flat = valueRange([{value: 5}]);
    assert.ok(flat.low < 5 && flat.high > 5);
    const ticks = timeTicks(0, 3600000, 4);
    assert.ok(ticks.length >= 2 && ticks.length <= 5, String(ticks));
    assert.ok(ticks.every((tick) => tick >= 0 && tick <= 3600000));
});

test('copies are what a shell and a program take', () => {
    assert.equal(shellWord('plain/word-1'), 'plain/word-1');
    assert.equal(shellWord('it\'s $(rm)'), '\'it\'\\\'\'s $(rm)\'');
    assert.equal(shellWord(''), '\'\'');
    const request = {host: '127.0.0.1', port: 1883, wsPort: 9001, user: 'a b', topic: 't',
        payload: '{"a":"\'"}'};
    assert.match(asShell(request), /-u 'a b' -P PASSWORD .*-m '\{"a":"'\\''"\}'$/);
    assert.match(asShell({...request, payload: ''}), / -n$/);
    assert.match(asJavaScript(request), /mqtt\.connect\("ws:\/\/127\.0\.0\.1:9001"/);
});

test('requests as the fields say', () => {
    const fields = {what: 'readAll', element: 'e', types: '8, 17', functions: '', values: '{}'};
    assert.deepEqual(build(fields, 'u', 'c').payload, {filters: {types: [8, 17]}});
    assert.equal(build({...fields, types: ''}, 'u', 'c').payload, null);
    const write = build({...fields, what: 'writeOne', values: '{"execute": "1"}'}, 'u', 'c');
    assert.deepEqual(write.payload, {data: {functions: {execute: '1'}}});
    assert.match(write.topic, /request\/set\/elements\/objects_list\/e$/);
    assert.deepEqual(build({...fields, what: 'writeAll', values: '{"e":{}}'}, 'u', 'c').payload,
        {data: {e: {}}});
    assert.throws(() => build({...fields, what: 'writeOne', values: '{'}, 'u', 'c'), SyntaxError);
    assert.deepEqual(filtersOf(' ', 'level,'), {functions: ['level']});
});

test('answers find their requests', async () => {
    const sent = [];
    const requests = new Requests((...request) => sent.push(request) > 0, 'c');
    const first = requests.ask('get', '', {}, 1000);
    const second = requests.ask('get', 'e', {a: 1}, 1000);
    assert.deepEqual(sent.map(([, , payload]) => payload), [{uuid: 'c-1'}, {a: 1, uuid: 'c-2'}]);
    assert.ok(!requests.take({uuid: 'other'}) && !requests.take(null));
    assert.ok(requests.take({uuid: 'c-2', x: 2}));
    assert.equal((await second).x, 2);
    requests.fail();
    await assert.rejects(first, /noAnswer/);
    await assert.rejects(requests.ask('get', '', {}, 1), /noAnswer/);
    await assert.rejects(new Requests(() => false, 'c').ask('get', '', {}, 1), /notConnected/);
});

test('texts are filled in', () => {
    assert.equal(fill('{0} and {1}, {2}', 'a', 'b'), 'a and b, {2}');
});
