#!/usr/bin/env node
// client.js read [ELEMENT] | write ELEMENT FUNCTION VALUE | follow; see README.md for the rest.
'use strict';
const fail = (text) => { console.error(`client.js: ${text}`); process.exit(1); };
let mqtt;
try {
  mqtt = require('mqtt');
} catch (error) {
  fail(`there is no mqtt.js (${error.message.split('\n')[0]}); npm has it in mqtt, Debian in node-mqtt below
/usr/share/nodejs, ./run unpacks it below build/packages/root/usr/share/nodejs: name the folder in NODE_PATH`);
}
const [verb, element, func, value] = process.argv.slice(2);
const words = { read: [1, 2], write: [4], follow: [1] }[verb] || [];
if (!words.includes(process.argv.length - 2)) fail('read [ELEMENT] | write ELEMENT FUNCTION VALUE | follow');
const { TORLAN_USER: username, TORLAN_PASSWORD: password, TORLAN_HOST: host, TORLAN_PORT: port, TORLAN_WAIT: wait } = process.env;
const root = `local/api/v1/${username}`, own = `${root}/js${process.pid}`, list = 'elements/objects_list';
const home = new Map();  // element: {function: value}
let since = [], sent = false, passedOn = false;  // states since the question; "202": no promise that the value comes
const client = mqtt.connect({ host: host || '127.0.0.1', port: Number(port || 1883), username, password,
  protocolVersion: 5, properties: { receiveMaximum: 65535 }, resubscribe: false });
const broken = (error) => { if (verb !== 'follow' || !error.syscall) fail(error.message); };  // else it comes again
const done = () => client.removeListener('error', broken).on('error', () => {}).end();
client.on('error', broken);
client.on('connect', () => {  // the first time, and after every gap
  since = [];
  client.stream.setNoDelay(true);  // without it a write takes 40 ms more
  client.subscribe([`${root}/status/${list}/+`, `${own}/status/#`], { qos: 1 },
    () => client.publish(`${own}/request/get/${list}`, '{}', { qos: 1 }));
});
function merge(id, functions) {
  if (!home.has(id)) home.set(id, {});
  for (const [name, { value: now }] of Object.entries(functions)) {
    if (verb === 'follow' && home.get(id)[name] !== now) console.log(id, name, now);
    home.get(id)[name] = now;
  }
}
function answered({ data }) {  // everything was read
  for (const [id, state] of since || []) {  // they are newer than the answer
    if (state) data[id] = { functions: { ...data[id]?.functions, ...state.data.functions } }; else delete data[id];
  }
  since = null;
  for (const id of home.keys()) if (!(id in data)) home.delete(id);
  for (const id of Object.keys(data)) merge(id, data[id].functions);
  if (verb === 'read') {
    if (element && !home.has(element)) fail(`${element} cannot be read`);
    done(console.log(JSON.stringify(element ? home.get(element) : Object.fromEntries(home))));
  } else if (verb === 'write' && !sent) {  // not again after a gap
    sent = true;
    client.publish(`${own}/request/set/${list}/${element}`, `{"data":{"functions":{"${func}":${value}}}}`, { qos: 1 });
  }
}
client.on('message', (topic, payload) => {
  const packet = payload.length ? JSON.parse(payload) : null, id = topic.split('/').pop();
  if (topic === `${own}/status/get/${list}`) answered(packet);
  else if (topic.startsWith(own)) passedOn = (packet.data?.functions?.[func] === '202') || fail(`refused: ${payload}`);
  else { since?.push([id, packet]); if (packet) merge(id, packet.data.functions); else home.delete(id); }
  if (passedOn && home.get(element)?.[func] === value) { console.log(element, func, value); passedOn = false; done(); }
});
if (verb !== 'follow') setTimeout(() => fail(`no answer, or ${element} ${func} is not ${value} after ${wait || 10} s`), 1000 * (wait || 10)).unref();
