// SPDX-License-Identifier: Zlib
#ifndef KELTRA_CONVERT_REPORT_JSON_H
#define KELTRA_CONVERT_REPORT_JSON_H

#include "tools/convert/outcome.h"

#include <nlohmann/json.hpp>

#include <string>

namespace keltra::convert {

using Json = nlohmann::ordered_json;

// The outcome in a message of the child process. Throws Json::exception if it is not an outcome.
Json outcomeJson(const Outcome &outcome);
Outcome outcomeOf(const Json &json);

// The document that --json prints, with a line feed. It is always UTF-8: invalid bytes become U+FFFD.
std::string documentOf(const std::string &model, const std::string &folder, const Outcome &outcome);
// The same in one line, for one of many models.
std::string documentLineOf(const std::string &model, const std::string &folder, const Outcome &outcome);

}  // namespace keltra::convert

#endif
