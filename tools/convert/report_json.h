#ifndef KELTRA_CONVERT_REPORT_JSON_H
#define KELTRA_CONVERT_REPORT_JSON_H

#include <nlohmann/json.hpp>
#include <string>

#include "tools/convert/isolated.h"

namespace keltra::convert {

using Json = nlohmann::ordered_json;

// An outcome as it travels from the converting process. Throws Json::exception for what is none.
Json outcomeJson(const Outcome &outcome);
Outcome outcomeOf(const Json &json);

// The document that --json prints, with a line feed. It is UTF-8 whatever the names are: bytes that are not
// become U+FFFD.
std::string documentOf(const std::string &model, const std::string &folder, const Outcome &outcome);

}  // namespace keltra::convert

#endif
