// What of Debian's mqtt.js the console takes, as one file: see web/assemble.
export { connect } from 'mqtt/lib/connect/index.js'
