// SPDX-License-Identifier: Zlib
#ifndef KELTRA_EXAMPLES_MIXER_H
#define KELTRA_EXAMPLES_MIXER_H

// Eight voices that ring out, added up in whole numbers: the devices have no others. SDL asks for samples in
// a thread of its own.

#include <SDL.h>

#include <cmath>
#include <cstdint>
#include <cstring>

class Mixer {
   public:
    static constexpr int kRate = 22050;  // samples a second
    static constexpr int kVoices = 8;

    Mixer() {
        for (int i = 0; i < kTable; ++i)
            wave[i] =
                static_cast<std::int16_t>(4000.0f * (std::sin(6.2831853f * float(i) / kTable) +
                                                     0.2f * std::sin(4 * 6.2831853f * float(i) / kTable)));
    }
    // A tone begins; the voice that is nearest its end is taken for it. Between SDL_LockAudio and
    // SDL_UnlockAudio.
    void strike(float hertz) {
        Voice *quietest = voices;
        for (Voice &voice : voices)
            if (voice.level < quietest->level) quietest = &voice;
        quietest->step = static_cast<std::uint32_t>(hertz / kRate * 4294967296.0);
        quietest->phase = 0;
        quietest->level = 1 << 16;
    }
    void mix(std::int16_t *samples, int count) {
        for (; count > 0; --count) {
            std::int32_t sum = 0;
            for (Voice &voice : voices) {
                sum += wave[voice.phase >> 24] * (voice.level >> 2) >> 14;
                voice.phase += voice.step;
                voice.level -=
                    (voice.level >> 13) + (voice.level > 0);  // half as loud after a quarter second
            }
            *samples++ = static_cast<std::int16_t>(sum < -32768 ? -32768 : sum > 32767 ? 32767 : sum);
        }
    }

   private:
    static constexpr int kTable = 256;  // what the upper 8 bits of a phase count
    struct Voice {
        std::uint32_t phase = 0, step = 0;
        std::int32_t level = 0;  // 16.16
    } voices[kVoices];
    std::int16_t wave[kTable];
};

inline void giveSamples(void *mixer, Uint8 *bytes, int size) {
    static_cast<Mixer *>(mixer)->mix(reinterpret_cast<std::int16_t *>(bytes), size / 2);
}

// After the engine has started SDL. False, and SDL_GetError tells why, where there is no sound.
inline bool startSound(Mixer *mixer) {
    SDL_AudioSpec wanted;
    std::memset(&wanted, 0, sizeof wanted);
    wanted.freq = Mixer::kRate;
    wanted.format = AUDIO_S16SYS;
    wanted.channels = 1;
    wanted.samples = 512;  // 23 milliseconds
    wanted.callback = giveSamples;
    wanted.userdata = mixer;
    if (SDL_InitSubSystem(SDL_INIT_AUDIO) < 0) return false;
    if (SDL_OpenAudio(&wanted, nullptr) < 0) return false;
    SDL_PauseAudio(0);
    return true;
}

// Before the engine stops SDL.
inline void stopSound() {
    SDL_CloseAudio();
    SDL_QuitSubSystem(SDL_INIT_AUDIO);
}

#endif
