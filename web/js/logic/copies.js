// A request as a line of shell and as a program. The password is in neither.

/// A word for a shell, whatever is in it.
export function shellWord(text) {
    return /^[A-Za-z0-9_\/.:=@%+,-]+$/.test(text) ? text : `'${text.replaceAll('\'', '\'\\\'\'')}'`;
}

export function asShell({host, port, user, topic, payload}) {
    const words = ['mosquitto_pub', '-V', 'mqttv5', '-h', host, '-p', String(port), '-u', user,
        '-P', 'PASSWORD', '-q', '2', '-t', topic];
    const message = payload === '' ? ['-n'] : ['-m', payload];
    return [...words, ...message].map(shellWord).join(' ');
}

/// For Node.js with the package mqtt, or a page with its browser bundle.
export function asJavaScript({host, wsPort, user, topic, payload}) {
    const text = JSON.stringify;
    return `import mqtt from 'mqtt';

const topic = ${text(topic)};
const client = mqtt.connect(${text(`ws://${host}:${wsPort}`)}, {
    protocolVersion: 5, username: ${text(user)}, password: 'PASSWORD',
    properties: {receiveMaximum: 65535},
});
client.on('connect', () => {
    client.subscribe(topic.replaceAll('request', 'status'), {qos: 2}, () => {
        client.publish(topic, ${text(payload)}, {qos: 2});
    });
});
client.on('message', (from, payload) => {
    console.log(from, payload.toString());
    client.end();
});
`;
}
