// SPDX-License-Identifier: MIT
#pragma once

/// The status codes of HTTP that the server answers with.
namespace HttpStatus {

constexpr int ok = 200;
constexpr int accepted = 202;
constexpr int badRequest = 400;
constexpr int forbidden = 403;
constexpr int notFound = 404;
constexpr int methodNotAllowed = 405;
constexpr int conflict = 409;
constexpr int payloadTooLarge = 413;
constexpr int uriTooLong = 414;
constexpr int unsupportedMediaType = 415;
constexpr int internalError = 500;
constexpr int unavailable = 503;

} // namespace HttpStatus
