// SPDX-License-Identifier: Zlib
#include <keltra/engine_state.h>

#include <keltra/foundation.h>

int KTENGINESTATE::timer = -1;
// Not 0: a stamp that was just zeroed never equals the current frame.
long int KTENGINESTATE::timeStamp = 65536;
unsigned int KTENGINESTATE::videoMemoryTotal = 0;
unsigned int KTENGINESTATE::videoMemoryUsed = 0;
bool KTENGINESTATE::wireframe = false;
bool KTENGINESTATE::shadowing = false;

float KTENGINESTATE::getFPS() { return vnfGetTimerFps(timer); }

float KTENGINESTATE::getFPSfactor() { return vnfGetTimerFactor(timer); }
