// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/HttpAnswer.h"

/// The files of the page by their path, the page itself as "/", and the documents below "/documents/".
const QMap<QByteArray, HttpAnswer>& pageFiles();
