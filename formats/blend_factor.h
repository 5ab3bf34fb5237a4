#ifndef KELTRA_FORMATS_BLEND_FACTOR_H
#define KELTRA_FORMATS_BLEND_FACTOR_H

namespace keltra {

// A factor that GL does not know on this side would be an error at every draw.
bool isBlendFactor(int code, bool isSource);

}  // namespace keltra

#endif
