// SPDX-License-Identifier: MIT
import { once } from 'node:events';
import { createServer, request } from 'node:http';

/// Stands between a page and the simulator, so that their connection can be cut and mended.
export class Relay {
    #target;
    #server;
    #sockets = new Set();

    static async to(url) {
        const relay = new Relay();
        relay.#target = new URL(url);
        await relay.#listen(0);
        return relay;
    }

    get url() {
        return `http://127.0.0.1:${this.port}/`;
    }

    cut() {
        const closed = new Promise(resolve => {
            this.#server.close(resolve);
        });
        this.#sockets.forEach(socket => socket.destroy());
        return closed;
    }

    mend() {
        return this.#listen(this.port);
    }

    close() {
        return this.#server.listening ? this.cut() : undefined;
    }

    async #listen(port) {
        this.#server = createServer((asked, answer) => this.#pass(asked, answer));
        this.#server.on('connection', socket => {
            this.#sockets.add(socket);
            socket.on('close', () => this.#sockets.delete(socket));
        });
        this.#server.listen(port, '127.0.0.1');
        await once(this.#server, 'listening');
        this.port = this.#server.address().port;
    }

    /// The simulator answers only to those that name its own address.
    #pass(asked, answer) {
        const headers = { ...asked.headers, host: this.#target.host };
        if (headers.origin) {
            headers.origin = this.#target.origin;
        }
        const { method, url: path } = asked;
        const onward = request({ host: '127.0.0.1', port: this.#target.port, method, path, headers }, answered => {
            answer.writeHead(answered.statusCode, answered.headers);
            answer.flushHeaders();
            answered.pipe(answer);
            answer.on('close', () => answered.destroy());
        });
        onward.on('error', () => answer.destroy());
        asked.pipe(onward);
    }
}
