// In the place of the package ws: a browser has WebSockets itself.
export default WebSocket
