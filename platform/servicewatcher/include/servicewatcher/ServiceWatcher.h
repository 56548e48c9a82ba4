// SPDX-License-Identifier: MIT
#pragma once

class QString;

/// Readiness of the services of the device. A service is ready while the file
/// `/run/service-watcher/NAME` exists.
namespace ServiceWatcher {

/// Whether the service `name` has declared itself ready. Returns true at once. Before it returns false, waits
/// up to a second for the service to become ready, so that a caller may poll. If the kernel provides no watch
/// on the folder, checks for the file every 50 ms. An invalid file name (empty, with a slash, "." or "..") is
/// never ready.
bool isReady(const QString& name);

/// Declares the service `name` ready or not ready; a failure is one critical log line. Follows no symbolic
/// link, neither as the file nor as its folder. An existing regular file already declares the service ready;
/// any other entry in its place is a failure. If the process was started with a notification socket, `true`
/// also notifies the service manager, even if the file cannot be created.
void setReady(const QString& name, bool ready);

} // namespace ServiceWatcher
