// SPDX-License-Identifier: MIT
import { once } from 'node:events';
import { readFile } from 'node:fs/promises';
import { createServer, request } from 'node:http';
import { basename, extname, join } from 'node:path';

const pageTypes = { '.css': 'text/css', '.html': 'text/html', '.js': 'text/javascript' };

/// Relays between a page and the simulator, so that their connection can be cut and mended. With a `folder`, the files of
/// the page are those of this folder.
export class Relay {
    #target;
    #folder;
    #server;
    #sockets = new Set();

    static async to(url, folder = undefined) {
        const relay = new Relay();
        relay.#target = new URL(url);
        relay.#folder = folder;
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
        this.#server = createServer((asked, answer) =>
            this.#folder && !asked.url.startsWith('/api/') ? this.#serve(asked, answer) : this.#pass(asked, answer),
        );
        this.#server.on('connection', socket => {
            this.#sockets.add(socket);
            socket.on('close', () => this.#sockets.delete(socket));
        });
        this.#server.listen(port, '127.0.0.1');
        await once(this.#server, 'listening');
        this.port = this.#server.address().port;
    }

    async #serve({ url }, answer) {
        const name = basename(new URL(url, this.url).pathname) || 'index.html';
        const text = await readFile(join(this.#folder, name)).catch(() => undefined);
        answer.writeHead(text ? 200 : 404, { 'Content-Type': `${pageTypes[extname(name)]}; charset=utf-8` });
        answer.end(text);
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
