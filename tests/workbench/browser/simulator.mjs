// SPDX-License-Identifier: MIT
import { spawn } from 'node:child_process';
import { once } from 'node:events';
import { readFile } from 'node:fs/promises';
import { createInterface } from 'node:readline';

import { eventually } from './eventually.mjs';
import { Observer } from './observer.mjs';

/// A separate simulator process that serves the page. Its output is kept, and printed when something fails.
export class Simulator {
    #process;
    #output = [];

    static async start(...options) {
        const simulator = new Simulator();
        await simulator.#start(options);
        return simulator;
    }

    get output() {
        return this.#output.join('\n');
    }

    /// Posts a body; comes back with the answer, whatever its status.
    post(path, body = '', headers = {}) {
        return fetch(new URL(path, this.url), { method: 'POST', body, headers });
    }

    async json(path) {
        return (await fetch(new URL(path, this.url))).json();
    }

    /// Does these statements of a key script at the device.
    async take(...statements) {
        const answer = await this.post('/api/steps', statements.join('\n'), { 'Content-Type': 'text/plain' });
        if (!answer.ok) {
            throw new Error(`${statements.join('; ')}: ${await answer.text()}`);
        }
    }

    observe() {
        return Observer.of(this.url);
    }

    /// Brings the device to Idle with no gesture under way: Menu, unless it follows Help, is announced at once and
    /// makes an end of all.
    async settle() {
        const { status, state, answering } = await this.json('/api/device');
        if (status !== 'ready' || !answering) {
            await this.restart();
        }
        if (state !== 'Idle') {
            await this.enter('Idle');
        }
        const observer = await this.observe();
        await this.take('tap Up Menu');
        await observer.sees({ type: 'announcement', keys: ['Menu'] });
        observer.close();
    }

    /// Waits for the end of the window that earlier keys have opened: it would cut a chord off. A lone key is announced
    /// at that end.
    async outlastWindow() {
        const observer = await this.observe();
        await this.take('tap Up');
        await observer.sees({ type: 'announcement', keys: ['Up'] });
        observer.close();
    }

    /// Changes the state and waits until the daemon knows it: the answer to a command comes behind the change.
    async enter(state) {
        const observer = await this.observe();
        await this.take(`state ${state}`, 'command GetLastKey');
        await observer.sees({ type: 'answer' });
        observer.close();
    }

    /// Restarts the device and waits until it is ready.
    async restart(changes = {}) {
        const observer = await this.observe();
        await this.post('/api/restart', JSON.stringify(changes), { 'Content-Type': 'application/json' });
        await observer.sees({ type: 'device', status: 'ready' });
        observer.close();
    }

    /// Ends the daemon as a crash would.
    async crashDaemon() {
        process.kill(await daemonBelow(this.#process.pid), 'SIGSEGV');
    }

    /// The daemon hangs until `resumeDaemon`.
    async hangDaemon() {
        process.kill(await daemonBelow(this.#process.pid), 'SIGSTOP');
    }

    async resumeDaemon() {
        process.kill(await daemonBelow(this.#process.pid), 'SIGCONT');
    }

    /// Ends it as Ctrl-C does; its exit status.
    async stop() {
        const { exitCode, signalCode } = this.#process;
        if (exitCode === null && signalCode === null) {
            const exit = once(this.#process, 'exit');
            this.#process.kill('SIGINT');
            await exit;
        }
        return this.#process.exitCode;
    }

    async #start(options) {
        const command = process.env.KEYBOARD_HANDLER_SIMULATOR;
        this.#process = spawn(command, ['--serve', '--no-demo', '--model', 'Pellit', '--port', '0', ...options], {
            stdio: ['ignore', 'pipe', 'pipe'],
        });
        for (const stream of [this.#process.stdout, this.#process.stderr]) {
            createInterface({ input: stream }).on('line', line => this.#output.push(line));
        }
        await eventually(() => {
            this.url = /http:\/\/\S+/.exec(this.output)?.[0];
            if (this.#process.exitCode !== null) {
                throw new Error(`The simulator has ended:\n${this.output}`);
            }
            if (!this.url) {
                throw new Error(`The simulator names no address:\n${this.output}`);
            }
        });
        await eventually(async () => {
            if ((await this.json('/api/device')).status !== 'ready') {
                throw new Error(`The daemon is not ready:\n${this.output}`);
            }
        });
    }
}

async function childrenOf(pid) {
    const lists = await readFile(`/proc/${pid}/task/${pid}/children`, 'utf8').catch(() => '');
    return lists.split(' ').filter(Boolean).map(Number);
}

async function daemonBelow(pid) {
    for (const child of await childrenOf(pid)) {
        const words = (await readFile(`/proc/${child}/cmdline`, 'utf8').catch(() => '')).split('\0');
        if (words[0].endsWith('/keyboard-handler')) {
            return child;
        }
        const found = await daemonBelow(child);
        if (found) {
            return found;
        }
    }
    return undefined;
}
