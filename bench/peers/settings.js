module.exports = {
    flowFile: "flow.json",
    credentialSecret: false,
    uiHost: "127.0.0.1",
    uiPort: process.env.PEER_UI_PORT,
    httpAdminRoot: false,
    httpNodeRoot: false,
    logging: { console: { level: "info", metrics: false, audit: false } },
};
