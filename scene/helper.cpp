// SPDX-License-Identifier: Zlib
#include <keltra/helper.h>

KTHELPER::KTHELPER()
    : radius(1.0f),
      size(1.0f),
      color(1.0f, 0.8f, 0.2f, 0.5f),
      scale(1.0f, 1.0f, 1.0f),
      min(-1.0f, -1.0f, -1.0f),
      max(1.0f, 1.0f, 1.0f) {
    joinClass(KT_HELPER);
    setIdentity(KT_HELPER, "[helper %d]");
}

KTHELPER::KTHELPER(const KTHELPER &other) : KTNODE(other) {
    joinClass(KT_HELPER);
    *this = other;
}

KTHELPER::~KTHELPER() {}

bool KTHELPER::render(void *) { return true; }
