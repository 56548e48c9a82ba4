// SPDX-License-Identifier: MIT
#pragma once

#include "workbench/web/HttpAnswer.h"

#include <map>
#include <string>

/// The files of the page by their path, the page itself as "/".
const std::map<std::string, HttpAnswer>& pageFiles();
