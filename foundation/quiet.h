#ifndef KELTRA_FOUNDATION_QUIET_H
#define KELTRA_FOUNDATION_QUIET_H

// For the engine's own use: exported functions of the foundation without their faults. The failure is told by
// the call that fails over it, or it is none.

namespace keltra {

void *allocate(unsigned int size);  // vnfMalloc
bool returnId(unsigned int id);     // releaseId
bool adjournTimer(int timer);       // vnfAdjournTimer
bool returnTimer(int timer);        // vnfFreeTimer

}  // namespace keltra

#endif
