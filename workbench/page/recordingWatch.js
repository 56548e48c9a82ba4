// SPDX-License-Identifier: MIT
// Whether the recording has something in it that was not downloaded.

const steps = ['key', 'record', 'state', 'command', 'console', 'heading'];

export class RecordingWatch {
    isUnsaved = false;

    /// Takes in `entry`, the next one of the session.
    take({ type, status }) {
        if (type === 'recording' && status === 'recording') {
            this.isUnsaved = false;
        } else if (steps.includes(type)) {
            this.isUnsaved = true;
        }
    }

    /// The recording was downloaded just now.
    save() {
        this.isUnsaved = false;
    }
}
