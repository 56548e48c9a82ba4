// SPDX-License-Identifier: MIT

/// What a golden file has done, by its first words.
const verbs = {
    open: (listener, view) => listener.open(view),
    press: async (listener, keys) => {
        for (const key of keys.split(' ')) {
            await listener.keyboard('key', key);
        }
    },
    hold: (listener, key) => listener.keyboard('keydown', key),
    'let go': (listener, key) => listener.keyboard('keyup', key),
    type: (listener, text) => listener.type(text),
    'go to': (listener, what) => control(listener, what).focus(),
    choose: (listener, words) => {
        const [, option, what] = /^(.*) in (.*)$/.exec(words);
        return control(listener, what).selectOption(option);
    },
    disclose: (listener, text) => listener.page.getByText(text, { exact: true }).click(),
    load: (listener, words) => {
        const [, text, name, what] = /^(.*) as (\S+) into (.*)$/.exec(words);
        return listener.page
            .getByLabel(what, { exact: true })
            .setInputFiles({ name, mimeType: 'text/plain', buffer: Buffer.from(text.replaceAll('; ', '\n')) });
    },
    wait: () => {}, // for what `until` says
    'outlast the window of earlier keys': listener => listener.outlastWindow(),
    'device holds': (listener, words) => listener.holdUntil(...words.split(' until ')),
    device: (listener, statements) => listener.simulator.take(...statements.split('; ')),
    'restart the device': listener => listener.simulator.restart(),
    'crash the daemon': listener => listener.simulator.crashDaemon(),
    'hang the daemon': listener => listener.simulator.hangDaemon(),
    'resume the daemon': listener => listener.simulator.resumeDaemon(),
    'cut the connection': listener => listener.relay.cut(),
    'mend the connection': listener => listener.relay.mend(),
};

const notOnPage = /^(wait|outlast|device|restart|crash|hang|resume)\b/;

/// A part of the page by its role and name: button "Release all".
function control(listener, what) {
    const [, role, name] = /^(\w+) "(.*)"$/.exec(what);
    return listener.page.getByRole(role, { name, exact: true }).first();
}

function perform(listener, words) {
    const verb = Object.keys(verbs).find(each => words === each || words.startsWith(`${each} `));
    if (!verb) {
        throw new Error(`Nothing is known of: ${words}`);
    }
    return verbs[verb](listener, words.slice(verb.length + 1));
}

async function waitFor(listener, words) {
    const [, text] = /^page shows (.*)$/.exec(words) ?? [];
    await (text ? listener.page.getByText(text).first().waitFor() : listener.until(words));
}

/// The times of events of the device, to the millisecond, are others in each run.
const deviceTime = /\b\d+\.\d{3} s\b|\b\d+ ms(?=, at )/g;

/// The steps of a golden file: its lines up to what is heard after them.
function stepsOf(text) {
    const steps = [{ lines: [] }];
    for (const line of text.trimEnd().split('\n')) {
        const isNext = /^(do|given):/.test(line) || line === '' || line.startsWith('#');
        if (isNext && steps.at(-1).lines.some(each => /^(do|given):/.test(each))) {
            steps.push({ lines: [] });
        }
        if (!line.startsWith('heard:')) {
            steps.at(-1).lines.push(line);
        }
    }
    return steps;
}

async function play(listener, { lines }) {
    let isGiven = true;
    for (const line of lines) {
        const [, name, words] = /^(do|given|until): (.*)$/.exec(line) ?? [];
        if (name === 'until') {
            await waitFor(listener, words);
        } else if (name) {
            listener.beginStep(!notOnPage.test(words));
            await perform(listener, words);
            isGiven = name === 'given';
        }
    }
    if (lines.every(line => line === '' || line.startsWith('#'))) {
        return lines;
    }
    const heard = await listener.hears();
    return isGiven ? lines : [...lines, ...heard.map(text => `heard: ${text.replaceAll(deviceTime, '(time)')}`)];
}

/// Does what a golden file says; comes back with the file as it should be, with what was heard.
export async function takeAgain(listener, text) {
    await listener.prepare();
    const lines = [];
    for (const step of stepsOf(text)) {
        lines.push(...(await play(listener, step)));
    }
    return `${lines.join('\n')}\n`;
}
