// What mqtt.js takes for given in Node.js.
export { Buffer } from 'buffer/index.js'
import process from 'process/browser.js'
export { process }
