#ifndef KELTRA_FOUNDATION_QUIET_H
#define KELTRA_FOUNDATION_QUIET_H

// Exported functions of the foundation without their faults, for the engine's own use. The caller reports the
// failure, if it is one.

namespace keltra {

void *allocate(unsigned int size);  // vnfMalloc
bool returnId(unsigned int id);     // releaseId
bool adjournTimer(int timer);       // vnfAdjournTimer
bool returnTimer(int timer);        // vnfFreeTimer

}  // namespace keltra

#endif
