// SPDX-License-Identifier: MIT
import { execFile, spawn } from 'node:child_process';
import { once } from 'node:events';
import { createWriteStream } from 'node:fs';
import { mkdir, mkdtemp, readFile, rm, writeFile } from 'node:fs/promises';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { promisify } from 'node:util';

import { eventually } from '../browser/eventually.mjs';

const run = promisify(execFile);

/// A display without a screen, with a window manager, a session bus and the accessibility bus, for the programs that are
/// started in it. Their files are in a folder that is removed with it.
export class Desktop {
    #processes = [];
    #log;

    static async start() {
        const desktop = new Desktop();
        await desktop.#makeFolder();
        await desktop.#startDisplay();
        desktop.start('openbox');
        await desktop.#startBus();
        await desktop.#enableAccessibility();
        return desktop;
    }

    path(name) {
        return join(this.folder, name);
    }

    /// A program of this display, with its own process group; it ends with it. Its output is in the file `log`.
    start(command, ...words) {
        const stdio = ['ignore', 'pipe', 'pipe', 'pipe'];
        const child = spawn(command, words, { env: this.environment, stdio, detached: true });
        child.on('error', fault => this.#log.write(`${command}: ${fault.message}\n`));
        child.stdout.pipe(this.#log, { end: false });
        child.stderr.pipe(this.#log, { end: false });
        this.#processes.unshift(child);
        return child;
    }

    run(command, ...words) {
        return run(command, words, { env: this.environment });
    }

    log() {
        return readFile(this.path('log'), 'utf8');
    }

    async end() {
        for (const child of this.#processes) {
            if (child.exitCode === null && child.signalCode === null) {
                const exit = once(child, 'exit');
                child.kill('SIGKILL');
                await exit;
            }
        }
        this.#log.end();
        await rm(this.folder, { recursive: true, force: true });
    }

    async #makeFolder() {
        this.folder = await mkdtemp(join(tmpdir(), 'heard-'));
        this.#log = createWriteStream(this.path('log'));
        this.environment = {
            PATH: process.env.PATH,
            HOME: this.folder,
            XDG_RUNTIME_DIR: this.path('run'),
            LANG: 'C.UTF-8',
            GSETTINGS_BACKEND: 'memory',
        };
        await mkdir(this.path('run'), { mode: 0o700 });
        // A speech daemon that finds no sound card would stop Orca for ever.
        await this.write('.config/speech-dispatcher/speechd.conf', 'DisableAutoSpawn\n');
    }

    async write(name, text) {
        await mkdir(join(this.path(name), '..'), { recursive: true });
        await writeFile(this.path(name), text);
    }

    async #startDisplay() {
        const server = this.start('Xvfb', '-displayfd', '3', '-screen', '0', '1280x1024x24', '-nolisten', 'tcp');
        this.environment.DISPLAY = `:${await firstLineOf(server)}`;
    }

    async #startBus() {
        const bus = this.start('dbus-daemon', '--session', '--nofork', '--print-address=3');
        this.environment.DBUS_SESSION_BUS_ADDRESS = await firstLineOf(bus);
    }

    async #enableAccessibility() {
        const set = [
            'call',
            '--session',
            '--dest',
            'org.a11y.Bus',
            '--object-path',
            '/org/a11y/bus',
            '--method',
            'org.freedesktop.DBus.Properties.Set',
            'org.a11y.Status',
        ];
        await eventually(() => this.run('gdbus', ...set, 'IsEnabled', '<true>'));
        await this.run('gdbus', ...set, 'ScreenReaderEnabled', '<true>');
    }
}

/// What a program says of itself when it is ready.
async function firstLineOf(child) {
    const [line] = await once(child.stdio[3], 'data');
    return String(line).trim();
}
