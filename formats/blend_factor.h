// SPDX-License-Identifier: Zlib
#ifndef KELTRA_FORMATS_BLEND_FACTOR_H
#define KELTRA_FORMATS_BLEND_FACTOR_H

namespace keltra {

// Whether GL accepts the factor as source or destination: any other would be an error at every draw.
bool isBlendFactor(int code, bool isSource);

}  // namespace keltra

#endif
