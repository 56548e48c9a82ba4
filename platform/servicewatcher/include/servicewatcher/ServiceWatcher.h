// SPDX-License-Identifier: MIT
#pragma once

class QString;

/// Readiness of the services of the device. A service is ready while the file
/// `/run/service-watcher/NAME` exists.
namespace ServiceWatcher {

/// Whether the service `name` has declared itself ready. A "yes" comes at once. A "no" may be held back
/// for up to a second, and ends when the service becomes ready meanwhile, so that a caller that asks in a
/// loop wakes up twice a second. Where the kernel gives no watch on the folder, the file is looked for every
/// 50 ms. A name that is no file name (empty, with a slash, "." or "..") is never ready.
bool isReady(const QString& name);

/// Declares the service `name` ready or not ready; failure is one critical log line. No symbolic link is
/// followed, neither as the file nor as its folder. A regular file that is there already declares the service
/// ready as it is; anything else in its place is a failure. Becoming ready also tells the service manager
/// when the process was started with a notification socket, even when the file could not be made.
void setReady(const QString& name, bool ready);

} // namespace ServiceWatcher
