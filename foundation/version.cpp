// SPDX-License-Identifier: Zlib
#include <keltra/version.h>

const char *KTVERSION::getString() { return KELTRA_VERSION_STRING; }

int KTVERSION::getNumber() { return KELTRA_VERSION_NUMBER; }
